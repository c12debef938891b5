#include "image/tiffdirectories.h"

#include "image/filecache.h"

#include <algorithm>
#include <array>
#include <unistd.h>
#include <unordered_set>

namespace
{
/// Reads numbers of a file in the file's byte order; a TIFF file has 4-byte offsets, a BigTIFF file 8-byte ones.
class DirectoryWalk
{
public:
  explicit DirectoryWalk(int descriptor) : _descriptor(descriptor)
  {
    _isBigEndian = number(0, 2) == 0x4D4D; // "MM"
    _version = number(2, 2);
  }

  TiffDirectories walk() const
  {
    TiffDirectories directories;
    if (_version != tiffVersion && _version != bigTiffVersion) return directories;
    std::unordered_set<std::uint64_t> seen;
    std::uint64_t offset = isBigTiff() ? number(8, 8) : number(4, 4);
    while (offset != 0 && seen.insert(offset).second)
    {
      directories.all.push_back(offset);
      if (!isThumbnail(offset)) directories.withoutThumbnails.push_back(offset);
      offset = next(offset);
    }
    if (directories.withoutThumbnails.empty()) directories.withoutThumbnails = directories.all;
    return directories;
  }

private:
  static constexpr std::uint64_t tiffVersion = 42, bigTiffVersion = 43;

  bool isBigTiff() const { return _version == bigTiffVersion; }
  std::uint64_t countSize() const { return isBigTiff() ? 8 : 2; }

  /// What NewSubfileType says; it has the least number of all tags and thus comes first.
  bool isThumbnail(std::uint64_t directory) const
  {
    constexpr std::uint64_t newSubfileType = 254, shortType = 3;
    const std::uint64_t entry = directory + countSize();
    if (number(entry, 2) != newSubfileType) return false;
    const std::uint64_t value = number(entry + (isBigTiff() ? 12 : 8), number(entry + 2, 2) == shortType ? 2 : 4);
    return (value & 1) != 0;
  }

  /// Offset of the directory behind the given one; 0 behind the last.
  std::uint64_t next(std::uint64_t directory) const
  {
    const std::uint64_t entrySize = isBigTiff() ? 20 : 12;
    const std::uint64_t numEntries = number(directory, countSize());
    constexpr std::uint64_t maxEntries = 65535; // of a sound directory, even in a BigTIFF file
    if (numEntries == 0 || numEntries > maxEntries) return 0;
    return number(directory + countSize() + numEntries * entrySize, isBigTiff() ? 8 : 4);
  }

  /// The number of `size` bytes at an offset; 0 behind the end of the file.
  std::uint64_t number(std::uint64_t offset, std::size_t size) const
  {
    std::array<unsigned char, 8> bytes;
    const bool isRead =
        static_cast<off_t>(offset) >= 0 &&
        pread(_descriptor, bytes.data(), size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
    if (!isRead) return 0;
    if (!_isBigEndian) std::reverse(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes[i];
    return value;
  }

  int _descriptor;
  bool _isBigEndian = false;
  std::uint64_t _version = 0;
};
} // namespace

std::shared_ptr<const TiffDirectories> tiffDirectories(int descriptor)
{
  static FileCache<TiffDirectories> cache;
  return cache.get(descriptor, [descriptor] { return DirectoryWalk(descriptor).walk(); });
}
