#include "geometry/boundingbox.h"

#include <algorithm>
#include <limits>

template <class T> BoundingBox<T>::BoundingBox(int space) : _minimum(space), _maximum(space)
{
  _minimum.fill(std::numeric_limits<T>::max());
  _maximum.fill(std::numeric_limits<T>::lowest());
}

template <class T> BoundingBox<T>::BoundingBox(const Vector<T>& minimum, const Vector<T>& maximum)
  : _minimum(minimum), _maximum(maximum)
{
  if (minimum.getSize() != maximum.getSize())
    throw SizeError("BoundingBox<T>::BoundingBox(const Vector<T>&, const Vector<T>&)",
                    "The corners have different dimensions");
}

template <class T> bool BoundingBox<T>::isEmpty() const
{
  for (int k = 0; k < getSpace(); ++k)
    if (!(_minimum[k] <= _maximum[k])) return true;
  return false;
}

template <class T> void BoundingBox<T>::add(const T* point)
{
  for (int k = 0; k < getSpace(); ++k)
  {
    _minimum[k] = std::min(_minimum[k], point[k]);
    _maximum[k] = std::max(_maximum[k], point[k]);
  }
}

template <class T> bool BoundingBox<T>::contains(const Vector<T>& point) const
{
  for (int k = 0; k < getSpace(); ++k)
    if (!(_minimum[k] <= point[k] && point[k] <= _maximum[k])) return false;
  return true;
}

template <class T> BoundingBox<T> BoundingBox<T>::intersection(const BoundingBox<T>& box) const
{
  BoundingBox<T> common(getSpace());
  for (int k = 0; k < getSpace(); ++k)
  {
    common._minimum[k] = std::max(_minimum[k], box._minimum[k]);
    common._maximum[k] = std::min(_maximum[k], box._maximum[k]);
  }
  return common;
}

GEOMETRY_INSTANTIATE(BoundingBox)
