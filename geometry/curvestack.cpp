#include "geometry/curvestack.h"

#include <limits>

template <class T> void CurveStack<T>::setOpen(bool open)
{
  _open = open;
  for (int i = 0; i < getNumCurves(); ++i) level(i).setOpen(open);
}

template <class T> Real<T> CurveStack<T>::getHeight(int i) const
{
  const Curve<T>& curve = level(i);
  return curve.getSize() > 0 && curve.getSpace() > 2 ? static_cast<Real<T>>(curve.data()[2])
                                                     : std::numeric_limits<Real<T>>::quiet_NaN();
}

template <class T> bool CurveStack<T>::isBranching() const
{
  for (int i = 1; i < getNumCurves(); ++i)
    if (getHeight(i) == getHeight(i - 1)) return true;
  return false;
}

template <class T> std::unique_ptr<Vertices<T>> CurveStack<T>::createLevel(const Vertices<T>& vertices) const
{
  return std::make_unique<Curve<T>>(vertices, _open);
}

GEOMETRY_INSTANTIATE(CurveStack)
