#include "batch/terminalprogress.h"

#include <unistd.h>

#include <iostream>

TerminalProgress::TerminalProgress() : _isTerminal(isatty(STDERR_FILENO) == 1) {}

void TerminalProgress::started(const std::string& message)
{
  if (_message.empty()) _message = message;
}

void TerminalProgress::progressed(double share)
{
  const int percent = static_cast<int>(share * 100);
  if (!_isTerminal || percent == _percent) return;
  _percent = percent;
  _isDrawn = true;
  constexpr int width = 30;
  const auto filled = static_cast<std::size_t>(share * width);
  std::cerr << "\r" << _message << " [" << std::string(filled, '=') << std::string(width - filled, ' ') << "] "
            << percent << "%" << std::flush;
}

void TerminalProgress::finished()
{
  if (_isDrawn) std::cerr << "\r\033[K" << std::flush;
  _isDrawn = false;
  _message.clear();
}
