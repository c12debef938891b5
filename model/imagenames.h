#pragma once

#include "image/imagesource.h"

#include <memory>
#include <string>

/// A copy of the source in which relative file names are absolute ones, counted from a folder (itself counted from the
/// program's folder when it is relative).
std::unique_ptr<ImageSource> withResolvedNames(const ImageSource& source, const std::string& folder);
