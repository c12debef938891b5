#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Writes a picture of red, green, blue and alpha, the top line first, to a PNG file.
/// \throw FileWriteError  the file exists and `overwrite` is false, or cannot be written
void writePng(const std::string& filename, const std::vector<std::uint8_t>& pixels, int width, int height,
              bool overwrite);
