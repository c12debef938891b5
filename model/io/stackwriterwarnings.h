#pragma once

#include "model/stack.h"

#include <string>
#include <vector>

/// What a stack file will not say as the stack does: one line per length that loses more than half a percent with the
/// decimals that are written, per name that occurs twice, per note that holds an escape and per item that cannot be
/// written.
/// \throw ValueError  a number is not finite or beyond what the reader takes
std::vector<std::string> stackWriterWarnings(const Stack& stack);
