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

  TiffDirectories walk()
  {
    TiffDirectories directories;
    if (_version != tiffVersion && _version != bigTiffVersion) return directories;
    std::unordered_set<std::uint64_t> seen;
    std::uint64_t offset = isBigTiff() ? number(8, 8) : number(4, 4);
    while (offset != 0 && seen.insert(offset).second)
    {
      const TiffDirectory directory = describe(offset);
      directories.all.push_back(directory);
      if (!directory.isThumbnail) directories.withoutThumbnails.push_back(directory);
      offset = next(offset);
    }
    if (directories.withoutThumbnails.empty()) directories.withoutThumbnails = directories.all;
    return directories;
  }

private:
  static constexpr std::uint64_t tiffVersion = 42, bigTiffVersion = 43;

  bool isBigTiff() const { return _version == bigTiffVersion; }
  std::uint64_t countSize() const { return isBigTiff() ? 8 : 2; }
  std::uint64_t entrySize() const { return isBigTiff() ? 20 : 12; }

  /// Of the tags looked for, which come by their numbers, NewSubfileType is the first and Compression the sixth at
  /// most; a few more entries are searched for the sake of directories out of order.
  TiffDirectory describe(std::uint64_t offset)
  {
    constexpr std::uint64_t newSubfileType = 254, compression = 259, reducedImage = 1, mostEntries = 16;
    TiffDirectory directory;
    directory.offset = offset;
    const std::uint64_t numEntries = std::min(number(offset, countSize()), mostEntries);
    for (std::uint64_t i = 0; i < numEntries; ++i)
    {
      const std::uint64_t entry = offset + countSize() + i * entrySize(), tag = number(entry, 2);
      if (tag == newSubfileType) directory.isThumbnail = (valueOf(entry) & reducedImage) != 0;
      if (tag == compression) directory.compression = static_cast<std::uint16_t>(valueOf(entry));
    }
    return directory;
  }

  /// The one number of an entry.
  std::uint64_t valueOf(std::uint64_t entry)
  {
    constexpr std::uint64_t shortType = 3;
    return number(entry + (isBigTiff() ? 12 : 8), number(entry + 2, 2) == shortType ? 2 : 4);
  }

  /// Offset of the directory behind the given one; 0 behind the last.
  std::uint64_t next(std::uint64_t directory)
  {
    const std::uint64_t numEntries = number(directory, countSize());
    constexpr std::uint64_t maxEntries = 65535; // of a sound directory, even in a BigTIFF file
    if (numEntries == 0 || numEntries > maxEntries) return 0;
    return number(directory + countSize() + numEntries * entrySize(), isBigTiff() ? 8 : 4);
  }

  /// The number of `size` bytes at an offset; 0 behind the end of the file.
  std::uint64_t number(std::uint64_t offset, std::size_t size)
  {
    if (!isInPiece(offset, size)) readPiece(offset);
    if (!isInPiece(offset, size)) return 0;
    const unsigned char* const bytes = _bytes.data() + (offset - _start);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes[_isBigEndian ? i : size - 1 - i];
    return value;
  }

  /// Without sums, which offsets near the greatest number would overflow.
  bool isInPiece(std::uint64_t offset, std::size_t size) const
  {
    return offset >= _start && offset - _start <= _numBytes && size <= _numBytes - (offset - _start);
  }

  /// Most directories fit one piece.
  void readPiece(std::uint64_t offset)
  {
    const bool isOffset = static_cast<off_t>(offset) >= 0;
    const ssize_t numRead = isOffset ? pread(_descriptor, _bytes.data(), _bytes.size(), static_cast<off_t>(offset)) : 0;
    _start = offset;
    _numBytes = static_cast<std::uint64_t>(std::max<ssize_t>(numRead, 0));
  }

  int _descriptor;
  std::array<unsigned char, 512> _bytes; // a piece of the file
  std::uint64_t _start = 0;              // of the piece in the file
  std::uint64_t _numBytes = 0;           // of the piece
  bool _isBigEndian = false;
  std::uint64_t _version = 0;
};
} // namespace

std::shared_ptr<const TiffDirectories> tiffDirectories(int descriptor)
{
  static FileCache<TiffDirectories> cache;
  return cache.get(descriptor, [descriptor] { return DirectoryWalk(descriptor).walk(); });
}
