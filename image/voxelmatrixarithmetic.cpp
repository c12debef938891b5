// Arithmetic and statistics of voxel matrices.
#include "image/histogram.h"
#include "image/voxelmatrix.h"

#include <algorithm>

template <class T> void VoxelMatrix<T>::requireSameSize(const VoxelMatrix& other, const char* where) const
{
  if (!sameSizeAs(other)) throw SizeError(where, "The two voxel matrices have different sizes");
}

template <class T> void VoxelMatrix<T>::requireVoxels(const char* where) const
{
  if (getNumVoxels() == 0) throw SizeError(where, "This voxel matrix is empty.");
}

template <class T> template <class Function> void VoxelMatrix<T>::forEachRow(Function f)
{
  for (PixelMatrix<T>& plane : _planes)
    for (int i = 0; i < _size1; ++i) f(plane[i]);
}

template <class T> template <class Function>
void VoxelMatrix<T>::forEachRow(const VoxelMatrix& other, Function f, const char* where)
{
  requireSameSize(other, where);
  for (int k = 0; k < _size3; ++k)
    for (int i = 0; i < _size1; ++i) f((*this)[k][i], other[k][i]);
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator+=(const VoxelMatrix& other)
{
  forEachRow(
      other, [](Vector<T>& a, const Vector<T>& b) { a += b; },
      "VoxelMatrix<T>& VoxelMatrix<T>::operator+=(const VoxelMatrix<T>&)");
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator-=(const VoxelMatrix& other)
{
  forEachRow(
      other, [](Vector<T>& a, const Vector<T>& b) { a -= b; },
      "VoxelMatrix<T>& VoxelMatrix<T>::operator-=(const VoxelMatrix<T>&)");
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator*=(const VoxelMatrix& other)
{
  forEachRow(
      other, [](Vector<T>& a, const Vector<T>& b) { a *= b; },
      "VoxelMatrix<T>& VoxelMatrix<T>::operator*=(const VoxelMatrix<T>&)");
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator/=(const VoxelMatrix& other)
{
  constexpr const char* where = "VoxelMatrix<T>& VoxelMatrix<T>::operator/=(const VoxelMatrix<T>&)";
  requireSameSize(other, where);
  if constexpr (std::is_integral_v<T>)
    if (std::find(other._block, other._block + other.getNumVoxels(), T(0)) != other._block + other.getNumVoxels())
      throw MathError(where, "Division by zero");
  forEachRow(
      other, [](Vector<T>& a, const Vector<T>& b) { a /= b; }, where);
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator+=(T x)
{
  forEachRow([x](Vector<T>& row) { row += x; });
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator-=(T x)
{
  forEachRow([x](Vector<T>& row) { row -= x; });
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator*=(T x)
{
  forEachRow([x](Vector<T>& row) { row *= x; });
  return *this;
}

template <class T> VoxelMatrix<T>& VoxelMatrix<T>::operator/=(T x)
{
  forEachRow([x](Vector<T>& row) { row /= x; });
  return *this;
}

template <class T> typename VoxelMatrix<T>::Sum VoxelMatrix<T>::sum() const
{
  Sum total = 0;
  for (const PixelMatrix<T>& plane : _planes)
  {
    Sum ofPlane = 0;
    for (const T *x = plane.data(), *const end = x + plane.getNumElements(); x != end; ++x)
      ofPlane += static_cast<Sum>(*x);
    total += ofPlane;
  }
  return total;
}

template <class T> T VoxelMatrix<T>::min() const
{
  return range()[0];
}

template <class T> T VoxelMatrix<T>::max() const
{
  return range()[1];
}

template <class T> Vector<T> VoxelMatrix<T>::range() const
{
  requireVoxels("Vector<T> VoxelMatrix<T>::range() const");
  Vector<T> lows(_size3), highs(_size3);
  for (int k = 0; k < _size3; ++k)
  {
    const Vector<T> ofPlane = (*this)[k].range();
    lows[k] = ofPlane[0];
    highs[k] = ofPlane[1];
  }
  return Vector<T>{lows.min(), highs.max()};
}

template <class T> Vector<long> VoxelMatrix<T>::histogram(Real<T> origin, Real<T> width, int count) const
{
  return histogramOf<T>(_block, nullptr, getNumVoxels(), origin, width, count);
}

template <class T>
Vector<long> VoxelMatrix<T>::histogram(Real<T> origin, Real<T> width, int count, const VoxelMatrix& mask) const
{
  requireSameSize(mask, "Vector<long> VoxelMatrix<T>::histogram(Real<T>, Real<T>, int, const VoxelMatrix<T>&) const");
  return histogramOf<T>(_block, mask._block, getNumVoxels(), origin, width, count);
}

IMAGE_INSTANTIATE(VoxelMatrix)
