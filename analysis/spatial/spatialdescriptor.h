#pragma once

#include "analysis/spatial/distancecounts.h"
#include "geometry/shapeset.h"
#include "geometry/vertices.h"
#include "numeric/matrix.h"

/// Turns a pattern of objects, in the plane or in space, into a list of distances and their cumulative distribution
/// function (CDF).
template <class T> class SpatialDescriptor
{
public:
  virtual ~SpatialDescriptor() = default;

  /// The distances of a pattern in increasing order, and their CDF, see CDFTools::cdf().
  /// \throw SizeError  the pattern is neither in the plane nor in space, or has more distances than a vector can hold
  virtual void eval(const Vertices<T>& pattern, Vector<T>& values, Vector<T>& cdf) const;
  /// The sorted distances of each pattern, one pattern per row.
  /// \throw TypeError  a shape is no set of vertices   \throw SizeError  their numbers of distances differ
  void eval(const ShapeSet<T>& patterns, Matrix<T>& values) const;
  /// The mean over the patterns: of their smallest distances, of the second smallest and so on.
  /// \throw TypeError, SizeError  as above, or there is no pattern
  void evalAverage(const ShapeSet<T>& patterns, Vector<T>& average) const;
  /// Counts the distances of a pattern; any order will do. Several threads may call it at once.
  /// \throw ValueError  as DistanceCounts<T>::add()
  virtual void count(const Vertices<T>& pattern, DistanceCounts<T>& counts) const;

protected:
  /// The distances of a pattern in any order.
  virtual void distances(const Vertices<T>& pattern, Vector<T>& values) const = 0;
};

/// The vertices that a shape of a set of patterns is. \throw TypeError  it is something else
template <class T> const Vertices<T>& asPattern(const Shape<T>& shape);

GEOMETRY_EXTERN_TEMPLATE_REAL(SpatialDescriptor)
extern template const Vertices<float>& asPattern(const Shape<float>&);
extern template const Vertices<double>& asPattern(const Shape<double>&);
extern template const Vertices<long double>& asPattern(const Shape<long double>&);
