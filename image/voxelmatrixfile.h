#pragma once

#include "image/voxelmatrixheader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

class ProgressSubject;

/// A voxel-matrix file opened for reading: an optional header of 48 bytes, then the voxels, plane after plane, row
/// after row, all little-endian.
///
/// Sizes are checked against the file's length before anybody believes them. Voxel sizes that are NaN or infinite count
/// as 1, which is held for tellWarning(); a unit that no prefix has (beyond 10^24 or 10^-24 metres) is refused.
class VoxelMatrixFile
{
public:
  /// Opens the file and reads its header.
  /// \throw FileReadError    it cannot be opened
  /// \throw FileFormatError  it is no voxel-matrix file, or its length does not fit its sizes
  explicit VoxelMatrixFile(const std::string& filename);
  VoxelMatrixFile(const VoxelMatrixFile&) = delete;
  VoxelMatrixFile& operator=(const VoxelMatrixFile&) = delete;
  ~VoxelMatrixFile();

  const VoxelMatrixHeader& getHeader() const { return _header; }
  const std::string& getFilename() const { return _filename; }

  /// Copies `count` voxels from voxel `first` on. \throw FileReadError  the disk fails
  void read(void* voxels, std::size_t first, std::size_t count) const;

  /// Smallest and largest finite voxel of the file (the first is the larger one when there is none), from one pass over
  /// it; files asked for last are remembered until they change. Safe to call from any thread.
  /// \throw FileReadError  the disk fails   \throw Cancelled  the subject is
  std::pair<long double, long double> getRange(const ProgressSubject& subject) const;

private:
  [[noreturn]] void fail(const std::string& what) const;
  void readHeader();
  void readFormat1();
  void checkLength();
  Vector<float> knownSizes(Vector<float> sizes) const;

  std::string _filename;
  int _descriptor = -1;
  std::uint64_t _length = 0;
  VoxelMatrixHeader _header;
};

/// Calls f(T()) with the element type T of a voxel-matrix file; where the file does not tell it, its voxels are 1 byte
/// unsigned char, 2 unsigned short, 4 float and 8 double.
template <class Function> auto withElementType(const VoxelMatrixHeader& header, Function f)
{
  switch (header.typeId)
  {
  case voxelTypeId<int>():
    return f(int());
  case voxelTypeId<unsigned int>():
    return f(0u);
  default:
    break;
  }
  switch (header.elementSize)
  {
  case sizeof(unsigned char):
    return f(static_cast<unsigned char>(0));
  case sizeof(unsigned short):
    return f(static_cast<unsigned short>(0));
  case sizeof(float):
    return f(float());
  case sizeof(double):
    return f(double());
  default:
    return f(static_cast<long double>(0));
  }
}
