#include "image/segmentation/histogramthresholding.h"

#include "image/histogram.h"

#include <algorithm>
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

template <class T> Real<T> HistogramThresholding<T>::computeThreshold(const PixelMatrix<T>& matrix)
{
  return computeThreshold(matrix.data(), matrix.getNumElements());
}

template <class T> Real<T> HistogramThresholding<T>::computeThreshold(const VoxelMatrix<T>& matrix)
{
  return computeThreshold(matrix.data(), matrix.getNumVoxels());
}

template <class T> Real<T> HistogramThresholding<T>::computeThreshold(const T* elements, std::size_t n)
{
  constexpr std::size_t partSize = std::size_t{1} << 24; // elements counted between two reports
  const ProgressStep step(*this, "Choosing a threshold", static_cast<long>(n));
  Vector<long> counts(_numBins);
  counts.setZeros();
  for (std::size_t first = 0; first < n; first += partSize)
  {
    this->throwIfCancelled("Real<T> HistogramThresholding<T>::computeThreshold(const T*, std::size_t)");
    const std::size_t size = std::min(partSize, n - first);
    counts += histogramOf<T>(elements + first, nullptr, size, _origin, _binWidth, _numBins);
    this->progress(static_cast<long>(first + size));
  }
  return _origin + static_cast<Real<T>>(chooseBin(counts)) * _binWidth;
}

template <class T> template <class Matrix> void HistogramThresholding<T>::applyComputed(Matrix& matrix)
{
  const ProgressStep step(*this, "Thresholding", 2); // choosing the threshold, comparing
  try
  {
    const Real<T> threshold = computeThreshold(matrix);
    this->progress(1);
    this->applyBetween(matrix, threshold);
  }
  catch (const Cancelled&)
  {
    return; // before anything was changed
  }
}

template <class T> void HistogramThresholding<T>::apply(PixelMatrix<T>& matrix)
{
  applyComputed(matrix);
}

template <class T> void HistogramThresholding<T>::apply(VoxelMatrix<T>& matrix)
{
  applyComputed(matrix);
}

IMAGE_INSTANTIATE(HistogramThresholding)
