#pragma once

#include "image/filters/filterkind.h"

/// The mean of the elements in a box around each element; integers are rounded to the nearest (there is no tie, since
/// the number of elements in a box is odd). The time hardly depends on the size of the box.
///
/// Sums of integers of 8 and 16 bits are exact in 32 bits as long as they fit, others are formed in double or, for long
/// double, in that type; of float volumes, the means within slices are rounded to float before those across slices.
/// However large the box, the memory taken is hardly more than that of the image once more.
template <class T> class MeanFilter : public NeighbourhoodFilter<T>
{
public:
  MeanFilter() = default;
  /// A box of options.size elements along each axis. \throw ValueError  as setSize()
  explicit MeanFilter(const FilterOptions& options) { setSize(options.size); }

  /// Numbers of elements along the axes, 3 at first; planes have no third axis.
  /// \throw ValueError  one is even, below 1 or beyond 2 * largestRadius + 1
  void setSize(int rows, int columns, int planes);
  void setSize(int size) { setSize(size, size, size); }
  /// (rows, columns, planes).
  Vector<int> getSize() const { return Vector<int>{_sizes[0], _sizes[1], _sizes[2]}; }

protected:
  int numSlicesKept(const SliceView<T>& image) const override;
  int bytesPerPixelKept() const override;
  void filter(const SliceView<T>& image) override;

private:
  int _sizes[3] = {3, 3, 3}; // by SliceView::Axis
};

IMAGE_EXTERN_TEMPLATE(MeanFilter)
