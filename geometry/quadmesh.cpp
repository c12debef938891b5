#include "geometry/quadmesh.h"

#include "geometry/coordinates.h"
#include "geometry/cyclicmatch.h"

#include <algorithm>

namespace
{
template <class T> VertexRows<T> rowsOf(const QuadMesh<T>& mesh)
{
  VertexRows<T> rows;
  for (int i = 0; i < mesh.getHeight(); ++i) rows.push_back(&mesh.level(i));
  return rows;
}

/// Rotates the vertices of every row so that vertex k comes first.
template <class T> void setOrigin(QuadMesh<T>& mesh, int k)
{
  for (int i = 0; i < mesh.getHeight(); ++i) mesh.level(i).setOrigin(k);
}
} // namespace

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
  _colors.reset();
}

template <class T> bool QuadMesh<T>::isGrid() const
{
  for (int i = 1; i < getHeight(); ++i)
    if (this->level(i).getSize() != getWidth()) return false;
  return true;
}

template <class T> int QuadMesh<T>::findMatch(const QuadMesh<T>& other) const
{
  const char* const where = "int QuadMesh<T>::findMatch(const QuadMesh<T>&) const";
  requireSizeOf(other, where);
  if (this->isOpen()) return 0;
  if (this->getSpace() != 2 && this->getSpace() != 3)
    throw SizeError(where, "The vertices are not in two or three dimensions");
  return centeredMatch(rowsOf(*this), rowsOf(other));
}

template <class T> void QuadMesh<T>::match(const QuadMesh<T>& other)
{
  const int shift = findMatch(other);
  setOrigin(*this, shift);
  if (!hasVertexColors()) return;
  QuadMesh<int> colors = *_colors;
  setOrigin(colors, shift);
  _colors = std::make_shared<const QuadMesh<int>>(colors);
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
  requireGrid(where);
  other.requireGrid(where);
}

template <class T> void QuadMesh<T>::requireGrid(const char* where) const
{
  if (!isGrid()) throw SizeError(where, "The rows of a quad mesh differ in size");
}

GEOMETRY_INSTANTIATE(QuadMesh)
