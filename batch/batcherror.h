#pragma once

#include "numeric/exception.h"

#include <string>

/// Exit status of the program: done, a finding of `check`, bad arguments or input.
enum ExitStatus
{
  Done = 0,
  Finding = 1,
  Bad = 2
};

/// Bad arguments or input. The text says what, which file and why, in one line.
class BatchError : public UsageError
{
public:
  explicit BatchError(const std::string& what) : UsageError("mirelo-batch", what) {}
};

/// What, which file and why of a library's error, in one line.
std::string describe(const Exception& error);

/// Prints one line on the error stream, behind the program's name.
void warn(const std::string& line);
