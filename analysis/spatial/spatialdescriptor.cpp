#include "analysis/spatial/spatialdescriptor.h"

#include "analysis/spatial/cdftools.h"
#include "analysis/spatial/distancesort.h"
#include "numeric/exception.h"

template <class T> void SpatialDescriptor<T>::eval(const Vertices<T>& pattern, Vector<T>& values, Vector<T>& cdf) const
{
  distances(pattern, values);
  sortDistances(std::span<T>(values.data(), static_cast<std::size_t>(values.getSize())));
  cdf = CDFTools<T>::cdf(values);
}

template <class T> void SpatialDescriptor<T>::eval(const ShapeSet<T>& patterns, Matrix<T>& values) const
{
  Vector<T> row, cdf;
  for (int i = 0; i < patterns.getSize(); ++i)
  {
    eval(asPattern(patterns[i]), row, cdf);
    if (i == 0) values.setSize(patterns.getSize(), row.getSize());
    if (row.getSize() != values.getSize2())
      throw SizeError("void SpatialDescriptor<T>::eval(const ShapeSet<T>&, Matrix<T>&) const",
                      "The patterns have different numbers of distances");
    values.setRow(i, row);
  }
  if (patterns.getSize() == 0) values.setSize(0, 0);
}

template <class T> void SpatialDescriptor<T>::evalAverage(const ShapeSet<T>& patterns, Vector<T>& average) const
{
  Matrix<T> values;
  eval(patterns, values);
  average = CDFTools<T>::average(values);
}

template <class T> void SpatialDescriptor<T>::count(const Vertices<T>& pattern, DistanceCounts<T>& counts) const
{
  Vector<T> values;
  distances(pattern, values);
  counts.add({values.data(), static_cast<std::size_t>(values.getSize())});
}

template <class T> const Vertices<T>& asPattern(const Shape<T>& shape)
{
  if (const auto* vertices = dynamic_cast<const Vertices<T>*>(&shape)) return *vertices;
  throw TypeError("const Vertices<T>& asPattern(const Shape<T>&)", "A pattern is not a set of vertices");
}

GEOMETRY_INSTANTIATE_REAL(SpatialDescriptor)
template const Vertices<float>& asPattern(const Shape<float>&);
template const Vertices<double>& asPattern(const Shape<double>&);
template const Vertices<long double>& asPattern(const Shape<long double>&);
