#include "image/segmentation/histogramthresholding.h"

#include "image/histogram.h"

#include <cmath>

template <class T> void HistogramThresholding<T>::setBins(Real<T> origin, Real<T> width, int count)
{
  const char* const where = "void HistogramThresholding<T>::setBins(Real<T>, Real<T>, int)";
  if (!(width > 0)) throw ValueError(where, "The width of the bins is not positive");
  if (count < 1) throw ValueError(where, "A histogram needs at least one bin");
  if (!std::isfinite(origin) || !std::isfinite(origin + static_cast<Real<T>>(count) * width))
    throw ValueError(where, "The range of the bins is not finite");
  _origin = origin;
  _binWidth = width;
  _numBins = count;
}

template <class T> Real<T> HistogramThresholding<T>::computeThreshold(const PixelMatrix<T>& matrix) const
{
  return computeThreshold(matrix.data(), matrix.getNumElements());
}

template <class T> Real<T> HistogramThresholding<T>::computeThreshold(const VoxelMatrix<T>& matrix) const
{
  return computeThreshold(matrix.data(), matrix.getNumVoxels());
}

template <class T> Real<T> HistogramThresholding<T>::computeThreshold(const T* elements, std::size_t n) const
{
  const int k = chooseBin(histogramOf<T>(elements, nullptr, n, _origin, _binWidth, _numBins));
  return _origin + static_cast<Real<T>>(k) * _binWidth;
}

template <class T> void HistogramThresholding<T>::apply(PixelMatrix<T>& matrix)
{
  this->applyBetween(matrix, computeThreshold(matrix));
}

template <class T> void HistogramThresholding<T>::apply(VoxelMatrix<T>& matrix)
{
  this->applyBetween(matrix, computeThreshold(matrix));
}

IMAGE_INSTANTIATE(HistogramThresholding)
