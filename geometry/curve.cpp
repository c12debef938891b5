#include "geometry/curve.h"

#include "geometry/coordinates.h"
#include "geometry/curveprocessing/curveresampling.h"

#include <algorithm>
#include <utility>

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

template <class T> std::vector<Real<T>> Curve<T>::edgeLengths() const
{
  const int numEdges = getNumEdges(), space = this->getSpace(), size = this->getSize();
  const T* const points = this->data();
  std::vector<Real<T>> lengths(static_cast<std::size_t>(numEdges));
  for (int i = 0; i < numEdges; ++i)
    lengths[i] =
        distance(points + std::ptrdiff_t{i} * space, points + std::ptrdiff_t{i + 1 < size ? i + 1 : 0} * space, space);
  return lengths;
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

template <class T> void Curve<T>::join(const Curve<T>& curve)
{
  const int space = this->getSpace(), size = this->getSize();
  if (curve.getSpace() != space)
    throw SizeError("void Curve<T>::join(const Curve<T>&)", "The curves have different dimensions");
  const T* const last = std::as_const(*this).data(std::max(size - 1, 0));
  const bool isRepeated = size > 0 && curve.getSize() > 0 && std::equal(last, last + space, curve.data());
  this->append(curve);
  if (isRepeated) this->remove(size);
}

template <class T> std::vector<Curve<T>> Curve<T>::split(std::vector<int> indexes) const
{
  const int size = this->getSize();
  for (const int i : indexes)
    if (i < 0 || i >= size)
      throw RangeError("std::vector<Curve<T>> Curve<T>::split(std::vector<int>) const",
                       "There is no vertex " + std::to_string(i));
  if (indexes.empty()) return {*this};
  if (_open) indexes.insert(indexes.end(), {0, size - 1});
  std::sort(indexes.begin(), indexes.end());
  indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
  if (!_open) indexes.push_back(indexes.front() + size);
  std::vector<Curve<T>> pieces;
  for (std::size_t k = 1; k < indexes.size(); ++k) pieces.push_back(piece(indexes[k - 1], indexes[k]));
  return pieces;
}

/// The open curve from vertex first to vertex last, counted around the curve.
template <class T> Curve<T> Curve<T>::piece(int first, int last) const
{
  const int space = this->getSpace();
  Curve<T> piece(space, last - first + 1);
  piece.setOpen(true);
  T* to = piece.data();
  for (int i = first; i <= last; ++i) to = std::copy_n(this->data(i % this->getSize()), space, to);
  return piece;
}

template <class T> void Curve<T>::square(T side)
{
  if (this->getSpace() < 2) throw SizeError("void Curve<T>::square(T)", "A curve of one coordinate cannot be a square");
  this->clear();
  this->setSize(4);
  _open = false;
  for (const int k : {1, 2}) this->data(k)[0] = side;
  for (const int k : {2, 3}) this->data(k)[1] = side;
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
