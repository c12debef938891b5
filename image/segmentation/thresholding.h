#pragma once

#include "geometry/curve.h"
#include "image/pixelmatrixprocessing.h"
#include "image/voxelmatrixprocessing.h"

#include <vector>

/// Turns a plane or a volume into foreground and background by comparison with one threshold.
///
/// Elements below the threshold get the lower value, all others (NaN as well) the upper one. The upper value is the
/// foreground and the lower one the background, or the other way round when the foreground is not above.
template <class T> class Thresholding : public PixelMatrixProcessing<T>, public VoxelMatrixProcessing<T>
{
public:
  T getThreshold() const { return _threshold; }
  void setThreshold(T threshold) { _threshold = threshold; }
  T getForeground() const { return _foreground; }
  void setForeground(T value) { _foreground = value; }
  T getBackground() const { return _background; }
  void setBackground(T value) { _background = value; }
  bool foregroundIsAbove() const { return _foregroundIsAbove; }
  void setForegroundIsAbove(bool isAbove) { _foregroundIsAbove = isAbove; }

  /// Progress is told after each row, or group of rows of a volume, that the calling thread has done: how many rows are
  /// done by all threads.
  void apply(PixelMatrix<T>& matrix) override;
  void apply(VoxelMatrix<T>& matrix) override;

  /// 255 where an element is not below the level (NaN is not), 0 elsewhere; the calibration is kept.
  static PixelMatrix<unsigned char> levelSetMask(const PixelMatrix<T>& matrix, T level);
  static VoxelMatrix<unsigned char> levelSetMask(const VoxelMatrix<T>& matrix, T level);
  /// The same as a step of the subject. \throw Cancelled
  static VoxelMatrix<unsigned char> levelSetMask(const VoxelMatrix<T>& matrix, T level, ProgressSubject& subject);

  /// The outer boundary of the region around an element: the elements equal to the label that are connected with it
  /// through common sides.
  ///
  /// Element (i, j) is the square from (x, y) = (j, i) to (j + 1, i + 1). The boundary runs along the sides of these
  /// squares, with a vertex wherever it turns, so that it encloses exactly the region (and its holes). It is closed and
  /// counter-clockwise: its area in the plane (0, 1) is positive.
  /// \throw RangeError  (row, column) is outside the matrix   \throw ValueError  it has another label
  static void extractCurve(Curve<int>& curve, int row, int column, const PixelMatrix<T>& matrix, T label);

  /// All boundaries of what apply() would make foreground, as in extractCurve(): outer ones counter-clockwise, those
  /// of holes clockwise, in the raster order of the first element that each of them meets with its left side.
  std::vector<Curve<int>> contours(const PixelMatrix<T>& matrix) const;

protected:
  /// apply() for a threshold between the values of T. Remembers the least T that is not below it.
  void applyBetween(PixelMatrix<T>& matrix, Real<T> threshold);
  void applyBetween(VoxelMatrix<T>& matrix, Real<T> threshold);

private:
  T lowerValue() const { return _foregroundIsAbove ? _background : _foreground; }
  T upperValue() const { return _foregroundIsAbove ? _foreground : _background; }
  bool setLeastNotBelow(Real<T> threshold);
  void apply(T* elements, long numRows, long rowSize, long grain);

  T _threshold = 0;
  T _foreground = static_cast<T>(255);
  T _background = 0;
  bool _foregroundIsAbove = true;
};

IMAGE_EXTERN_TEMPLATE(Thresholding)
