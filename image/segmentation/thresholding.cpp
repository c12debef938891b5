#include "image/segmentation/thresholding.h"

#include "image/parallelloop.h"
#include "image/segmentation/boundarytracer.h"
#include "numeric/targetclones.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr long groupSize = 1 << 16; // elements of a volume that a thread takes at a time

template <class T, class Out> struct Levels
{
  T threshold;
  Out lower;
  Out upper;
};

/// Writes the lower or upper value of each of the n elements; `to` may be the elements themselves.
template <class T, class Out>
__attribute__((always_inline)) inline void compare(const T* from, Out* to, long n, Levels<T, Out> levels)
{
  for (long i = 0; i < n; ++i) to[i] = from[i] < levels.threshold ? levels.lower : levels.upper;
}

#define IMAGE_COMPARE_ROW(T)                                                                                           \
  MIRELO_TARGET_CLONES void compareRow(const T* from, T* to, long n, Levels<T, T> levels)                              \
  {                                                                                                                    \
    compare(from, to, n, levels);                                                                                      \
  }
IMAGE_FOR_EACH_TYPE(IMAGE_COMPARE_ROW)

#define IMAGE_MASK_ROW(T)                                                                                              \
  MIRELO_TARGET_CLONES void maskRow(const T* from, unsigned char* to, long n, T level)                                 \
  {                                                                                                                    \
    compare<T, unsigned char>(from, to, n, {level, 0, 255});                                                           \
  }
IMAGE_FOR_EACH_TYPE(IMAGE_MASK_ROW)

/// The number of rows that make a group.
long rowsPerGroup(long rowSize)
{
  return std::max(1L, groupSize / std::max(rowSize, 1L));
}

template <class T>
void maskOf(const T* elements, unsigned char* mask, std::size_t size, T level, ProgressSubject& subject)
{
  const auto n = static_cast<long>(size);
  const ProgressStep step(subject, "Thresholding", n);
  forEachRange(subject, n, groupSize,
               [=](long first, long last) { maskRow(elements + first, mask + first, last - first, level); });
}
} // namespace

template <class T> void Thresholding<T>::apply(PixelMatrix<T>& matrix)
{
  apply(matrix.data(), matrix.getSize1(), matrix.getSize2(), 1);
}

template <class T> void Thresholding<T>::apply(VoxelMatrix<T>& matrix)
{
  const long numRows = static_cast<long>(matrix.getSize1()) * matrix.getSize3();
  apply(matrix.data(), numRows, matrix.getSize2(), rowsPerGroup(matrix.getSize2()));
}

template <class T> void Thresholding<T>::apply(T* elements, long numRows, long rowSize, long grain)
{
  const ProgressStep step(*this, "Thresholding", numRows);
  const Levels<T, T> levels{_threshold, lowerValue(), upperValue()};
  forEachRange(*this, numRows, grain,
               [=](long first, long last) {
                 compareRow(elements + first * rowSize, elements + first * rowSize, (last - first) * rowSize, levels);
               });
}

template <class T> void Thresholding<T>::applyBetween(PixelMatrix<T>& matrix, Real<T> threshold)
{
  if (setLeastNotBelow(threshold))
    Thresholding::apply(matrix);
  else
    matrix.fill(lowerValue());
}

template <class T> void Thresholding<T>::applyBetween(VoxelMatrix<T>& matrix, Real<T> threshold)
{
  if (setLeastNotBelow(threshold))
    Thresholding::apply(matrix);
  else
    matrix.fill(lowerValue());
}

/// False when even the largest T, which is then remembered, is below the threshold.
template <class T> bool Thresholding<T>::setLeastNotBelow(Real<T> threshold)
{
  if constexpr (std::is_floating_point_v<T>)
    _threshold = threshold;
  else
  {
    using Limits = std::numeric_limits<T>;
    const double least = std::ceil(threshold);
    _threshold = static_cast<T>(std::clamp<double>(least, Limits::lowest(), Limits::max()));
    return least <= Limits::max();
  }
  return true;
}

template <class T> PixelMatrix<unsigned char> Thresholding<T>::levelSetMask(const PixelMatrix<T>& matrix, T level)
{
  PixelMatrix<unsigned char> mask(matrix.getSize1(), matrix.getSize2());
  ProgressSubject unobserved;
  maskOf(matrix.data(), mask.data(), matrix.getNumElements(), level, unobserved);
  mask.setPixelCalibration(matrix.getPixelCalibration());
  return mask;
}

template <class T> VoxelMatrix<unsigned char> Thresholding<T>::levelSetMask(const VoxelMatrix<T>& matrix, T level)
{
  ProgressSubject unobserved;
  return levelSetMask(matrix, level, unobserved);
}

template <class T> VoxelMatrix<unsigned char> Thresholding<T>::levelSetMask(const VoxelMatrix<T>& matrix, T level,
                                                                            ProgressSubject& subject)
{
  VoxelMatrix<unsigned char> mask(matrix.getSize1(), matrix.getSize2(), matrix.getSize3());
  maskOf(matrix.data(), mask.data(), matrix.getNumVoxels(), level, subject);
  subject.throwIfCancelled("VoxelMatrix<unsigned char> Thresholding<T>::levelSetMask(const VoxelMatrix<T>&, T, "
                           "ProgressSubject&)");
  mask.setVoxelCalibration(matrix.getVoxelCalibration());
  return mask;
}

template <class T>
void Thresholding<T>::extractCurve(Curve<int>& curve, int row, int column, const PixelMatrix<T>& matrix, T label)
{
  const char* const where = "void Thresholding<T>::extractCurve(Curve<int>&, int, int, const PixelMatrix<T>&, T)";
  if (!matrix.contains(row, column)) throw RangeError(where, "The starting point is outside the matrix");
  if (matrix(row, column) != label) throw ValueError(where, "The starting point is outside the region");
  const auto isInside = [&matrix, label](int i, int j) { return matrix.contains(i, j) && matrix(i, j) == label; };
  curve = outerBoundary(row, column, isInside);
}

template <class T> std::vector<Curve<int>> Thresholding<T>::contours(const PixelMatrix<T>& matrix) const
{
  const auto isInside = [this, &matrix](int i, int j)
  { return matrix.contains(i, j) && (matrix(i, j) < _threshold) != _foregroundIsAbove; };
  return allBoundaries(matrix.getSize1(), matrix.getSize2(), isInside);
}

IMAGE_INSTANTIATE(Thresholding)
