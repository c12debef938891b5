#pragma once

#include <functional>

/// Runs the windows and gives their result. An exception that escapes is reported on standard output under the line
/// "*** Exception ***", and 0 is returned, so that settings are still saved.
int guardedRun(const std::function<int()>& windows);
