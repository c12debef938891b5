#include "geometry/quadmesh.h"

#include "geometry/coordinates.h"

#include <algorithm>

template <class T> QuadMesh<T>::QuadMesh(int space, int width, int height, bool open) : CurveStack<T>(space, open)
{
  if (width < 0 || height < 0)
    throw SizeError("QuadMesh<T>::QuadMesh(int, int, int, bool)", "A quad mesh cannot have a negative size");
  for (int i = 0; i < height; ++i) insert(i, Vertices<T>(space, width));
}

template <class T> QuadMesh<T>::QuadMesh(const CurveStack<T>& stack) : CurveStack<T>(stack.getSpace(), stack.isOpen())
{
  this->setName(stack.getName());
  for (int i = 0; i < stack.getNumCurves(); ++i) insert(i, stack[i]);
}

template <class T> void QuadMesh<T>::insert(int i, const Vertices<T>& row)
{
  if (getHeight() > 0 && row.getSize() != getWidth())
    throw SizeError("void QuadMesh<T>::insert(int, const Vertices<T>&)", "The rows of a quad mesh differ in size");
  CurveStack<T>::insert(i, row);
}

template <class T> int QuadMesh<T>::findMatch(const QuadMesh<T>& other) const
{
  requireSizeOf(other, "int QuadMesh<T>::findMatch(const QuadMesh<T>&) const");
  if (this->isOpen()) return 0;
  const int width = getWidth();
  const auto numCoordinates = static_cast<std::ptrdiff_t>(width) * this->getSpace();
  std::vector<Real<T>> sums(static_cast<std::size_t>(width), Real<T>(0)); // of scalar products, for each shift
  for (int i = 0; i < getHeight(); ++i)
  {
    const T *const row = std::as_const(*this).level(i).data(), *const otherRow = other.level(i).data();
    for (int shift = 0; shift < width; ++shift)
    {
      const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(shift) * this->getSpace();
      Real<T> sum = 0;
      for (std::ptrdiff_t m = start; m < numCoordinates; ++m) sum += Real<T>(row[m]) * Real<T>(otherRow[m - start]);
      for (std::ptrdiff_t m = 0; m < start; ++m) sum += Real<T>(row[m]) * Real<T>(otherRow[numCoordinates - start + m]);
      sums[static_cast<std::size_t>(shift)] += sum;
    }
  }
  return static_cast<int>(std::max_element(sums.begin(), sums.end()) - sums.begin());
}

template <class T> void QuadMesh<T>::match(const QuadMesh<T>& other)
{
  const int shift = findMatch(other);
  for (int i = 0; i < getHeight(); ++i) this->level(i).setOrigin(shift);
  _colors.reset();
}

template <class T> void QuadMesh<T>::buildBeginCap()
{
  requireCaps(canHaveCaps(), "void QuadMesh<T>::buildBeginCap()");
  _beginCap = true;
}

template <class T> void QuadMesh<T>::buildEndCap()
{
  requireCaps(canHaveCaps(), "void QuadMesh<T>::buildEndCap()");
  _endCap = true;
}

template <class T> void QuadMesh<T>::buildCaps()
{
  buildBeginCap();
  buildEndCap();
}

template <class T> QuadMesh<T> QuadMesh<T>::getBeginCap() const
{
  requireCaps(hasBeginCap(), "QuadMesh<T> QuadMesh<T>::getBeginCap() const");
  QuadMesh<T> cap(this->getSpace());
  cap.append(centerOf(this->getFirstCurve()));
  cap.append(this->getFirstCurve());
  return cap;
}

template <class T> QuadMesh<T> QuadMesh<T>::getEndCap() const
{
  requireCaps(hasEndCap(), "QuadMesh<T> QuadMesh<T>::getEndCap() const");
  QuadMesh<T> cap(this->getSpace());
  cap.append(this->getLastCurve());
  cap.append(centerOf(this->getLastCurve()));
  return cap;
}

template <class T> void QuadMesh<T>::extendToCaps()
{
  if (!hasAnyCap()) return;
  if (hasBeginCap()) this->prepend(centerOf(this->getFirstCurve()));
  if (hasEndCap()) this->append(centerOf(this->getLastCurve()));
  destroyCaps();
  _colors.reset();
}

template <class T> Curve<T> QuadMesh<T>::centerOf(const Curve<T>& row) const
{
  const Vector<Real<T>> center = row.cog();
  Curve<T> curve(this->getSpace(), getWidth());
  for (int j = 0; j < getWidth(); ++j) std::transform(center.begin(), center.end(), curve.data(j), toCoordinate<T>);
  return curve;
}

template <class T> void QuadMesh<T>::requireCaps(bool isPossible, const char* where) const
{
  if (!isPossible) throw UsageError(where, "This quad mesh is open or empty, or has no such cap");
}

template <class T> void QuadMesh<T>::requireSizeOf(const QuadMesh<T>& other, const char* where) const
{
  if (other.getWidth() != getWidth() || other.getHeight() != getHeight() || other.getSpace() != this->getSpace())
    throw SizeError(where, "Size mismatch");
}

GEOMETRY_INSTANTIATE(QuadMesh)
