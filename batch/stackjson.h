#pragma once

#include "batch/json.h"

#include <filesystem>

struct StackFile;

/// All that a stack file says. Lengths are in the stack's unit; file names are relative to the stack file's folder
/// where they lie below it.
Json toJson(const StackFile& file, const std::filesystem::path& stackFolder);
