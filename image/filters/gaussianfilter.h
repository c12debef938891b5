#pragma once

#include "image/filters/filterkind.h"

/// The weighted mean of the elements around each element, with the weights of a Gaussian.
///
/// The weights exp(-d^2 / (2 sigma^2)) of the distances d up to four sigma (rounded) along each axis are divided by
/// their sum. Sums are formed in float for float and for integers of 8 and 16 bits, in double for other types, in long
/// double for that; integers are rounded to the nearest.
template <class T> class GaussianFilter : public NeighbourhoodFilter<T>
{
public:
  GaussianFilter() = default;
  /// options.sigma along each axis. \throw ValueError  as setSigma()
  explicit GaussianFilter(const FilterOptions& options) { setSigma(options.sigma); }

  /// Standard deviations along the axes, in elements, 1 at first; 0 leaves an axis alone, planes have no third one.
  /// \throw ValueError  one is negative, NaN or reaches farther than largestRadius
  void setSigma(double rows, double columns, double planes);
  void setSigma(double sigma) { setSigma(sigma, sigma, sigma); }
  /// (rows, columns, planes).
  Vector<double> getSigma() const { return Vector<double>{_sigmas[0], _sigmas[1], _sigmas[2]}; }

protected:
  int numSlicesKept(const SliceView<T>& image) const override;
  int bytesPerPixelKept() const override;
  void filter(const SliceView<T>& image) override;

private:
  double _sigmas[3] = {1, 1, 1}; // by SliceView::Axis
};

IMAGE_EXTERN_TEMPLATE(GaussianFilter)
