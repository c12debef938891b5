#pragma once

#include "geometry/curve.h"
#include "geometry/vertexstack.h"

/// Ordered list of curves that are all open or all closed (the default).
template <class T> class CurveStack : public VertexStack<T>
{
public:
  explicit CurveStack(int space = 3, bool open = false) : VertexStack<T>(space), _open(open) {}

  CurveStack<T>* clone() const override { return new CurveStack<T>(*this); }
  ShapeType getShapeType() const override { return _open ? OpenCurveStackShape : ClosedCurveStackShape; }

  bool isOpen() const { return _open; }
  bool isClosed() const { return !_open; }
  /// Opens or closes every curve.
  void setOpen(bool open);

  int getNumCurves() const { return this->getNumLevels(); }
  /// Curve i. Unchecked: the caller guarantees 0 <= i < getNumCurves().
  Curve<T>& operator[](int i) { return level(i); }
  const Curve<T>& operator[](int i) const { return level(i); }
  Curve<T>& level(int i) { return static_cast<Curve<T>&>(VertexStack<T>::level(i)); }
  const Curve<T>& level(int i) const { return static_cast<const Curve<T>&>(VertexStack<T>::level(i)); }
  Curve<T>& getFirstCurve() { return level(0); }
  const Curve<T>& getFirstCurve() const { return level(0); }
  Curve<T>& getLastCurve() { return level(getNumCurves() - 1); }
  const Curve<T>& getLastCurve() const { return level(getNumCurves() - 1); }
  using VertexStack<T>::operator[];

  /// Height of curve i: the third coordinate of its first vertex, NaN when it is empty or flat.
  Real<T> getHeight(int i) const;
  /// True when a curve lies at exactly the height of the curve before it.
  bool isBranching() const;

protected:
  std::unique_ptr<Vertices<T>> createLevel(const Vertices<T>& vertices) const override;
  bool isReadable(int shapeType) const override
  {
    return shapeType == ClosedCurveStackShape || shapeType == OpenCurveStackShape;
  }
  void setShapeType(int shapeType) override { _open = shapeType == OpenCurveStackShape; }

private:
  bool _open;
};

GEOMETRY_EXTERN_TEMPLATE(CurveStack)
