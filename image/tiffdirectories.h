#pragma once

#include <cstdint>
#include <memory>
#include <vector>

/// What is known of a directory of a TIFF file without reading it whole.
struct TiffDirectory
{
  std::uint64_t offset = 0;
  bool isThumbnail = false;
  std::uint16_t compression = 1; ///< by its number in the format; 1 for none
};

/// The directories of a TIFF file in their order.
struct TiffDirectories
{
  std::vector<TiffDirectory> all;
  std::vector<TiffDirectory> withoutThumbnails; ///< all, when there is nothing but reduced versions of other images
};

/// The directories of a TIFF file, found by walking along them once per file: reading plane
/// k later does not walk k directories. The files asked for last are remembered until they change; safe to call from
/// any thread. A chain that is broken or leads back to itself ends there; there are none in what is no TIFF file.
std::shared_ptr<const TiffDirectories> tiffDirectories(int descriptor);
