// Storage, pieces and filling of voxel matrices.
#include "image/voxelmatrix.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ostream>

namespace
{
template <class T>
void requireBlock(const VoxelMatrix<T>& matrix, const long (&first)[3], const long (&size)[3], const char* where)
{
  const long sizes[] = {matrix.getSize1(), matrix.getSize2(), matrix.getSize3()};
  for (int d = 0; d < 3; ++d)
    if (first[d] < 0 || size[d] < 0 || first[d] + size[d] > sizes[d])
      throw RangeError(where, "The block is not inside the voxel matrix");
}

/// Refuses more bytes than can be counted, and views of very many planes where there is nothing to view.
void requireAddressable(std::uint64_t planeSize, std::uint64_t numPlanes, std::size_t elementSize, const char* where)
{
  constexpr std::uint64_t mostBytes = std::numeric_limits<std::int64_t>::max(), mostEmptyPlanes = 1 << 16;
  const bool isTooLarge =
      planeSize == 0 ? numPlanes > mostEmptyPlanes : numPlanes > mostBytes / elementSize / planeSize;
  if (isTooLarge) throw SizeError(where, "The voxel matrix is too large");
}
} // namespace

template <class T> VoxelMatrix<T>::VoxelMatrix(const VoxelMatrix& other)
{
  setSize(other._size1, other._size2, other._size3);
  std::copy_n(other._block, getNumVoxels(), _block);
  setVoxelCalibration(other._voxelCalibration);
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator=(const VoxelMatrix& other)
{
  if (this == &other) return *this;
  setSize(other._size1, other._size2, other._size3);
  std::copy_n(other._block, getNumVoxels(), _block);
  setVoxelCalibration(other._voxelCalibration);
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator=(VoxelMatrix&& other) noexcept
{
  VoxelMatrix taken(std::move(other));
  swap(taken);
  return *this;
}

template <class T> void VoxelMatrix<T>::setSize(int size1, int size2, int size3)
{
  if (size1 == _size1 && size2 == _size2 && size3 == _size3) return;
  constexpr const char* where = "void VoxelMatrix<T>::setSize(int, int, int)";
  if (size1 < 0 || size2 < 0 || size3 < 0) throw SizeError(where, "Negative voxel matrix size");
  const auto planeSize = static_cast<std::uint64_t>(size1) * static_cast<std::uint64_t>(size2);
  requireAddressable(planeSize, static_cast<std::uint64_t>(size3), sizeof(T), where);
  VoxelMatrix fresh;
  fresh._planes.reserve(static_cast<std::size_t>(size3));
  fresh._block = allocateElements<T>(planeSize * static_cast<std::uint64_t>(size3));
  fresh._size1 = size1;
  fresh._size2 = size2;
  fresh._size3 = size3;
  for (int k = 0; k < size3; ++k)
    fresh._planes.emplace_back(size1, size2, fresh._block + static_cast<std::size_t>(k) * planeSize);
  fresh.setVoxelCalibration(_voxelCalibration);
  swap(fresh);
}

template <class T> void VoxelMatrix<T>::swap(VoxelMatrix& other) noexcept
{
  std::swap(_size1, other._size1);
  std::swap(_size2, other._size2);
  std::swap(_size3, other._size3);
  std::swap(_block, other._block);
  _planes.swap(other._planes);
  std::swap(_voxelCalibration, other._voxelCalibration);
}

template <class T> void VoxelMatrix<T>::setVoxelCalibration(const VoxelCalibration& calibration)
{
  _voxelCalibration = calibration;
  const PixelCalibration ofPlanes = calibration.pixelCalibration();
  for (PixelMatrix<T>& plane : _planes) plane.setPixelCalibration(ofPlanes);
}

template <class T> bool VoxelMatrix<T>::operator==(const VoxelMatrix& other) const
{
  return sameSizeAs(other) && std::equal(_block, _block + getNumVoxels(), other._block);
}

template <class T> template <class U> VoxelMatrix<U> VoxelMatrix<T>::toType() const
{
  VoxelMatrix<U> converted(_size1, _size2, _size3);
  std::transform(_block, _block + getNumVoxels(), converted.data(), [](T x) { return static_cast<U>(x); });
  converted.setVoxelCalibration(_voxelCalibration);
  return converted;
}

template <class T> void VoxelMatrix<T>::fill(T value)
{
  std::fill_n(_block, getNumVoxels(), value);
}

template <class T> void VoxelMatrix<T>::reverse()
{
  for (int k = 0; k < _size3 / 2; ++k)
  {
    PixelMatrix<T>& plane = (*this)[k];
    std::swap_ranges(plane.data(), plane.data() + plane.getNumElements(), (*this)[_size3 - 1 - k].data());
  }
}

template <class T> void VoxelMatrix<T>::paste(int i, int j, int k, const VoxelMatrix& block)
{
  requireBlock(*this, {i, j, k}, {block._size1, block._size2, block._size3},
               "void VoxelMatrix<T>::paste(int, int, int, const VoxelMatrix<T>&)");
  for (int plane = 0; plane < block._size3; ++plane)
    for (int row = 0; row < block._size1; ++row)
      std::copy_n(&block._block[block.indexOf(row, 0, plane)], block._size2, &_block[indexOf(i + row, j, k + plane)]);
}

template <class T> VoxelMatrix<T> VoxelMatrix<T>::copy(int i0, int j0, int k0, int i1, int j1, int k1) const
{
  const long size[] = {1L + i1 - i0, 1L + j1 - j0, 1L + k1 - k0};
  requireBlock(*this, {i0, j0, k0}, size, "VoxelMatrix<T> VoxelMatrix<T>::copy(int, int, int, int, int, int) const");
  VoxelMatrix block(static_cast<int>(size[0]), static_cast<int>(size[1]), static_cast<int>(size[2]));
  for (int plane = 0; plane < block._size3; ++plane)
    for (int row = 0; row < block._size1; ++row)
      std::copy_n(&_block[indexOf(i0 + row, j0, k0 + plane)], block._size2,
                  &block._block[block.indexOf(row, 0, plane)]);
  block.setVoxelCalibration(_voxelCalibration);
  return block;
}

template <class T> Vector<T> VoxelMatrix<T>::cat() const
{
  if (getNumVoxels() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
    throw SizeError("Vector<T> VoxelMatrix<T>::cat() const", "There are more voxels than a vector can hold");
  Vector<T> voxels(static_cast<int>(getNumVoxels()));
  std::copy_n(_block, getNumVoxels(), voxels.begin());
  return voxels;
}

template <class T> void VoxelMatrix<T>::print(std::ostream& stream) const
{
  for (const PixelMatrix<T>& plane : _planes)
  {
    for (int i = 0; i < _size1; ++i)
    {
      for (const T& x : plane[i]) stream << +x << " "; // the sign makes a number of a char
      stream << "\n";
    }
    stream << "\n";
  }
}

IMAGE_INSTANTIATE(VoxelMatrix)

#define IMAGE_INSTANTIATE_CONVERSIONS(T)                                                                               \
  template VoxelMatrix<unsigned char> VoxelMatrix<T>::toType<unsigned char>() const;                                   \
  template VoxelMatrix<int> VoxelMatrix<T>::toType<int>() const;                                                       \
  template VoxelMatrix<float> VoxelMatrix<T>::toType<float>() const;                                                   \
  template VoxelMatrix<double> VoxelMatrix<T>::toType<double>() const;                                                 \
  template VoxelMatrix<long double> VoxelMatrix<T>::toType<long double>() const;
IMAGE_FOR_EACH_TYPE(IMAGE_INSTANTIATE_CONVERSIONS)
