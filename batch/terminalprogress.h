#pragma once

#include "numeric/progresssubject.h"

#include <string>

/// A progress bar on the error stream, drawn only when that is a terminal.
class TerminalProgress : public ProgressObserver
{
public:
  TerminalProgress();
  void started(const std::string& message) override;
  void progressed(double share) override;
  void finished() override;

private:
  bool _isTerminal;
  bool _isDrawn = false;
  std::string _message;
  int _percent = 0;
};
