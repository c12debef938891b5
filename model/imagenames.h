#pragma once

#include "image/imagesource.h"

#include <memory>
#include <string>

/// A copy of the source in which relative file names are resolved against a folder.
std::unique_ptr<ImageSource> withResolvedNames(const ImageSource& source, const std::string& folder);
