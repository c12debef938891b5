#pragma once

#include "image/segmentation/thresholding.h"

/// Thresholding whose apply() chooses the threshold from a histogram first, and remembers it.
///
/// Bin k covers [origin + k width, origin + (k + 1) width); elements beyond either end are counted in the end bins. The
/// default bins hold the grey levels 0 to 255, one each. The threshold is the lower edge of a bin; for integers
/// getThreshold() is the least one that is not below that edge.
template <class T> class HistogramThresholding : public Thresholding<T>
{
public:
  Real<T> getOrigin() const { return _origin; }
  Real<T> getBinWidth() const { return _binWidth; }
  int getNumBins() const { return _numBins; }
  /// \throw ValueError  a width that is not positive, no bin, or an edge that is not finite
  void setBins(Real<T> origin, Real<T> width, int count);

  /// The threshold that apply() takes for these elements; the origin when there are none. \throw Cancelled
  Real<T> computeThreshold(const PixelMatrix<T>& matrix);
  Real<T> computeThreshold(const VoxelMatrix<T>& matrix);

  /// Cancelled before the threshold is known, the matrix and the old threshold stay.
  void apply(PixelMatrix<T>& matrix) override;
  void apply(VoxelMatrix<T>& matrix) override;

protected:
  /// Index of the first bin above the threshold.
  virtual int chooseBin(const Vector<long>& counts) const = 0;

private:
  Real<T> computeThreshold(const T* elements, std::size_t n);
  template <class Matrix> void applyComputed(Matrix& matrix);

  Real<T> _origin = static_cast<Real<T>>(-0.5);
  Real<T> _binWidth = 1;
  int _numBins = 256;
};

IMAGE_EXTERN_TEMPLATE(HistogramThresholding)
