#include "geometry/curve.h"

#include "geometry/coordinates.h"
#include "geometry/curveprocessing/curveresampling.h"

#include <algorithm>

template <class T> int Curve<T>::getNumEdges() const
{
  const int size = this->getSize();
  return _open ? std::max(size - 1, 0) : size;
}

template <class T> Edge<T> Curve<T>::getEdge(int i) const
{
  const int next = i + 1 < this->getSize() ? i + 1 : 0;
  return Edge<T>(i, next, (*this)[i], (*this)[next]);
}

template <class T> Real<T> Curve<T>::length() const
{
  const int size = this->getSize();
  const int space = this->getSpace();
  Real<T> sum = 0;
  for (int i = 0; i + 1 < size; ++i) sum += distance(this->data(i), this->data(i + 1), space);
  if (!_open && size > 0) sum += distance(this->data(size - 1), this->data(0), space);
  return sum;
}

template <class T> double Curve<T>::twiceArea(int i, int j) const
{
  const int size = this->getSize();
  if (_open || size < 3) return 0;
  double sum = 0;
  const T* previous = this->data(size - 1);
  for (int k = 0; k < size; ++k)
  {
    const T* const current = this->data(k);
    sum += static_cast<double>(previous[i]) * static_cast<double>(current[j]) -
           static_cast<double>(previous[j]) * static_cast<double>(current[i]);
    previous = current;
  }
  return sum;
}

template <class T> int Curve<T>::projectedAreaSign(int i, int j) const
{
  const double area = twiceArea(i, j);
  const double tolerance = Vector<T>::epsilon();
  return area > tolerance ? 1 : area < -tolerance ? -1 : 0;
}

template <class T> void Curve<T>::setClockwise(bool clockwise, int i, int j)
{
  if (projectedAreaSign(i, j) == (clockwise ? 1 : -1)) this->reverse();
}

template <class T> Curve<T> Curve<T>::resample(int n) const
{
  if (n < 0) throw SizeError("Curve<T> Curve<T>::resample(int) const", "A curve cannot have a negative size");
  Curve<T> curve(this->getSpace(), n);
  resample(curve);
  return curve;
}

template <class T> void Curve<T>::resample(Curve<T>& out) const
{
  CurveResampling<T>().apply(*this, out);
}

GEOMETRY_INSTANTIATE(Curve)
