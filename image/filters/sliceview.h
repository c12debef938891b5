#pragma once

#include "image/pixelmatrix.h"
#include "image/voxelmatrix.h"

#include <cstddef>

/// A plane or a volume as a pile of slices, each of which is a pile of lines of contiguous elements.
///
/// The slices of a volume are its planes or, when it has more rows than planes, the rows of all planes, so that slices
/// are small; those of a plane are its rows, of one line each.
template <class T> class SliceView
{
public:
  enum Axis
  {
    Rows,
    Columns,
    Planes
  };

  explicit SliceView(PixelMatrix<T>& matrix)
    : _data(matrix.data()),
      _width(matrix.getSize2()),
      _numSlices(matrix.getSize1()),
      _numLines(1),
      _sliceStep(_width),
      _lineStep(0),
      _sliceAxis(Rows),
      _lineAxis(Planes)
  {
  }

  explicit SliceView(VoxelMatrix<T>& matrix)
    : _data(matrix.data()),
      _width(matrix.getSize2()),
      _numSlices(matrix.getSize3()),
      _numLines(matrix.getSize1()),
      _sliceStep(static_cast<std::ptrdiff_t>(_width) * _numLines),
      _lineStep(_width),
      _sliceAxis(Planes),
      _lineAxis(Rows)
  {
    if (_numLines <= _numSlices) return;
    std::swap(_numSlices, _numLines);
    std::swap(_sliceStep, _lineStep);
    std::swap(_sliceAxis, _lineAxis);
  }

  T* line(int slice, int line) const { return _data + slice * _sliceStep + line * _lineStep; }

  int width() const { return _width; }
  int numLines() const { return _numLines; }
  int numSlices() const { return _numSlices; }
  /// The axis along which slices, and lines in a slice, follow each other.
  Axis sliceAxis() const { return _sliceAxis; }
  Axis lineAxis() const { return _lineAxis; }
  /// Number of elements along an axis.
  int size(Axis axis) const { return axis == Columns ? _width : axis == _lineAxis ? _numLines : _numSlices; }

private:
  T* _data;
  int _width;
  int _numSlices;
  int _numLines;
  std::ptrdiff_t _sliceStep;
  std::ptrdiff_t _lineStep;
  Axis _sliceAxis;
  Axis _lineAxis;
};
