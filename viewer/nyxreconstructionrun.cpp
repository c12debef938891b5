#include "viewer/nyxreconstructionrun.h"

void NYXReconstructionRun::start(ShownStack shown)
{
  _shown = std::move(shown);
  _painted.clear();
  startThread([this](ProgressSubject& progress) { _painted = paintModels(_shown, progress); });
}
