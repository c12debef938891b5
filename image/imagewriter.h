#pragma once

#include <string>

class Image;

/// Writes images as TIFF files; the same image gives the same bytes.
class ImageWriter
{
public:
  /// Palette, gray or RGB by the depth, always 8 bits per sample: 16-bit pixels become two samples, which
  /// ImageReader does not read back. Pixel size and unit are written so that the reader finds them again.
  /// \throw FileWriteError  the file exists and must not be overwritten, cannot be written, or no resolution can be
  /// that of the pixel size; the file is then as it was
  static void write(const Image& image, const std::string& filename, bool overwrite);
};
