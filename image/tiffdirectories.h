#pragma once

#include <cstdint>
#include <memory>
#include <vector>

/// One image of a TIFF file.
struct TiffDirectory
{
  std::uint64_t offset; ///< in the file
  bool isThumbnail;     ///< a reduced version of another image
};

/// The directories of a TIFF file in their order, found by walking along them once per file: reading plane
/// k later does not walk k directories. The files asked for last are remembered until they change; safe to call from
/// any thread. A chain that is broken or leads back to itself ends there; there are none in what is no TIFF file.
std::shared_ptr<const std::vector<TiffDirectory>> tiffDirectories(int descriptor);
