#include "analysis/spatial/spatialdescriptorfunctionb.h"

#include "numeric/exception.h"

template <class T>
void SpatialDescriptorFunctionB<T>::eval2D(const Vertices<T>& pattern, Vector<T>& values, Vector<T>& cdf) const
{
  requireSpace(2, "void SpatialDescriptorFunctionB<T>::eval2D(const Vertices<T>&, Vector<T>&, Vector<T>&) const");
  this->eval(pattern, values, cdf);
}

template <class T>
void SpatialDescriptorFunctionB<T>::eval3D(const Vertices<T>& pattern, Vector<T>& values, Vector<T>& cdf) const
{
  requireSpace(3, "void SpatialDescriptorFunctionB<T>::eval3D(const Vertices<T>&, Vector<T>&, Vector<T>&) const");
  this->eval(pattern, values, cdf);
}

template <class T> void SpatialDescriptorFunctionB<T>::distances(const Vertices<T>& pattern, Vector<T>& values) const
{
  const char* const where = "void SpatialDescriptorFunctionB<T>::distances(const Vertices<T>&, Vector<T>&) const";
  if (!_boundary) throw UsageError(where, "There is no boundary");
  if (pattern.getSpace() != _boundary->getSpace())
    throw SizeError(where, "The pattern has another dimension than the boundary");
  values.setSize(pattern.getSize());
  _boundary->distances(pattern.data(), pattern.getSize(), values.data());
}

template <class T> void SpatialDescriptorFunctionB<T>::requireSpace(int space, const char* where) const
{
  if (!_boundary || _boundary->getSpace() != space)
    throw UsageError(where, space == 2 ? "There is no boundary curve" : "There is no boundary mesh");
}

GEOMETRY_INSTANTIATE_REAL(SpatialDescriptorFunctionB)
