#pragma once

#include "image/tifffile.h"

#include <tiffio.h>

/// A tag of one number, or of a text; `absent` when the current directory does not have it.
template <class T> T readTag(const TiffFile& file, std::uint32_t tag, T absent)
{
  T value = absent;
  return TIFFGetField(file.get(), tag, &value) == 1 ? value : absent;
}

/// A tag of one number; the default of the TIFF format when the current directory does not have it.
template <class T> T readTagOrDefault(const TiffFile& file, std::uint32_t tag)
{
  T value = 0;
  TIFFGetFieldDefaulted(file.get(), tag, &value);
  return value;
}
