#pragma once

/// One of the bytes of a pixel of 24 or 32 bits.
enum class ImageChannel
{
  Red,
  Green,
  Blue,
  Alpha ///< the fourth byte of 32-bit pixels
};
