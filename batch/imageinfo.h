#pragma once

#include "batch/json.h"

#include <string>

/// What an image or voxel-matrix file says of itself, read from its header only.
/// \throw FileError  the file cannot be read
Json imageInfo(const std::string& filename);

/// The same for people.
std::string imageText(const std::string& filename);
