#pragma once

#include "model/stack.h"

#include <optional>
#include <string>
#include <vector>

/// The lengths of a stack that lose more than half a percent with the decimals that are written, a line each, and the
/// coarsest finer length unit in which no length is lost that any unit keeps; none when no unit helps.
struct LengthLosses
{
  std::vector<std::string> lines;
  std::optional<LengthUnit> keepingUnit;
};
/// \throw ValueError  a calibration is beyond what the reader takes
LengthLosses lengthLosses(const Stack& stack);

/// What a stack file will not say as the stack does: one line per length that loses more than half a percent with the
/// decimals that are written, per name that occurs twice, per note that holds an escape and per item that cannot be
/// written, and one when slices have a thickness.
/// \throw ValueError  a number is not finite or beyond what the reader takes
std::vector<std::string> stackWriterWarnings(const Stack& stack);
