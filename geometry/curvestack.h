#pragma once

#include "geometry/curve.h"
#include "geometry/vertexstack.h"

template <class T> class QuadMesh;

/// Ordered list of curves that are all open or all closed (the default).
template <class T> class CurveStack : public VertexStack<T>
{
public:
  explicit CurveStack(int space = 3, bool open = false) : VertexStack<T>(space), _open(open) {}

  /// Becomes a copy of the other stack.
  void assign(const CurveStack<T>& stack) { *this = stack; }
  CurveStack<T>* clone() const override { return new CurveStack<T>(*this); }
  ShapeType getShapeType() const override { return _open ? OpenCurveStackShape : ClosedCurveStackShape; }

  bool isOpen() const { return _open; }
  bool isClosed() const { return !_open; }
  /// Opens or closes every curve.
  void setOpen(bool open);

  int getNumCurves() const { return this->getNumLevels(); }
  int getNumBlockEdges(int i) const override { return level(i).getNumEdges(); }
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

  /// Fills a mesh of W by H vertices with this stack's surface. Each of the n curves is resampled to W vertices and
  /// fitted to the one before: a closed curve is turned clockwise in the x-y plane and rotated to the best match, an
  /// open curve is reversed when that is closer. Row r lies at curve index r (n - 1) / (H - 1), linear between curves;
  /// a mesh of one row is the first curve. The mesh becomes open or closed as this stack is. \throw SizeError  the
  /// stack or one of its curves is empty, or its space is not 2 or 3
  void resample(QuadMesh<T>& mesh) const;
  /// Replaces curve k of the n curves by the mesh at row index k (H - 1) / (n - 1), linear between rows.
  /// \throw SizeError  the mesh has no rows, or another space dimension
  void interpolate(const QuadMesh<T>& mesh);
  /// Root of the mean squared distance from this stack's vertices to the mesh where interpolate() cuts it.
  /// \throw SizeError  as interpolate(), or the stack has no vertices, or coordinates are not finite
  Real<T> resamplingError(const QuadMesh<T>& mesh) const;
  /// The resampled mesh with one row per curve and about the fewest columns that keep the error within the given one;
  /// never more than four times the vertices of the largest curve. The error need not fall with every column: besides
  /// those of a bisection, the first 16 numbers of columns, more in small stacks, and the curves' numbers of vertices
  /// with their divisors (the first 100 of these) are tried, and none of those below the result keeps the error.
  /// \throw SizeError  as resample()
  QuadMesh<T> optimalResampling(Real<T> maxError) const;
  /// A stack of the same curves, each vertex replaced by the other stack's vertex that is closest to it. A vertex that
  /// is not finite stays.
  /// \throw SizeError  the other stack has no vertices, or another space dimension
  CurveStack<T> closestPointMap(const CurveStack<T>& other) const;

protected:
  std::unique_ptr<Vertices<T>> createLevel(const Vertices<T>& vertices) const override;
  bool isReadable(int shapeType) const override
  {
    return shapeType == ClosedCurveStackShape || shapeType == OpenCurveStackShape;
  }
  void setShapeType(int shapeType) override { setOpen(shapeType == OpenCurveStackShape); }

private:
  bool _open;
};

GEOMETRY_EXTERN_TEMPLATE(CurveStack)
