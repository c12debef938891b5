#pragma once

#include "app/core/nyxthreadrun.h"
#include "viewer/scene/shownstack.h"
#include "viewer/scene/stackpainters.h"

/// Reconstructs models in a thread of its own.
class NYXReconstructionRun : public NYXThreadRun
{
  Q_OBJECT

public:
  explicit NYXReconstructionRun(QObject* parent = nullptr) : NYXThreadRun(parent) {}
  ~NYXReconstructionRun() override { stop(); }

  /// Takes over the copy to work on. To be called when nothing is running.
  void start(ShownStack shown);

  /// What the last run has worked on, and what came out: a painter for each of its models, none if it was not done.
  const ShownStack& shown() const { return _shown; }
  std::vector<PaintedModel>& painted() { return _painted; }

private:
  ShownStack _shown;
  std::vector<PaintedModel> _painted;
};
