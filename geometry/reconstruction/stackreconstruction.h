#pragma once

#include "geometry/curvestack.h"
#include "geometry/curvestacktriangulationcontourtag.h"

#include <vector>

class Model;
class ModelItem;
class Stack;

/// How a stack as a whole lies in the 3D frame.
enum class StackPlacement
{
  AsAligned,        ///< as the registration of the first slice says
  FirstSliceUpright ///< as without it: what is computed does not depend on it, not even by rounding
};

/// Places the items drawn on the slices of a stack in one common 3D frame, in the stack's length unit.
///
/// Pixel (u, v) of slice k goes to x = m0 u + m1 v + m2, y = m3 u + m4 v + m5, z = zMap[k]: pixels are counted from the
/// image's centre, scaled by the pixel size, rows upwards, and turned and shifted by the registrations up to the slice.
template <class T> class StackReconstruction
{
public:
  StackReconstruction() = default;
  /// As setStack().
  explicit StackReconstruction(const Stack& stack, StackPlacement placement = StackPlacement::AsAligned)
    : _placement(placement)
  {
    setStack(stack);
  }

  /// Binds a stack, which must outlive this object, and computes its maps. \throw FileError  as computeMaps()
  void setStack(const Stack& stack);
  /// Computes the maps anew, after slices, their calibration, registration or depth have changed.
  /// \throw FileError  the size of a slice's image is not known
  void computeMaps();

  /// The six coefficients m0 to m5 of slice i. Unchecked.
  const Vector<T>& getMap(int i) const { return _maps[i]; }
  /// The area of a pixel of slice i. Unchecked.
  T pixelArea(int i) const;
  /// The height of each slice.
  const Vector<T>& getZMap() const { return _zMap; }

  /// Fills the output with the item's vertices in 3D. An item on a slice outside the stack leaves it as it was, with a
  /// line on the error stream.
  void map(Vertices<T>& output, const ModelItem& item) const;
  /// The item in 3D: a curve or, for points and regions, a vertex set. The caller owns it.
  Shape<T>* apply(const ModelItem& item) const;
  /// The model in 3D, slices in stack order and their items in list order: a CurveStack of closed or open curves, or a
  /// VertexStack for points. Each region becomes its outer boundaries, closed curves along the sides of its pixels.
  /// Items on slices outside the stack are left out, with a line on the error stream for each. The caller owns the
  /// result.
  Shape<T>* apply(const Model& model) const;
  /// The tag of the item of each curve or vertex set, in the order of apply(Model).
  Vector<CurveStackTriangulationContourTag> contourTags(const Model& model) const;
  /// The item of each curve or vertex set, in the order of apply(Model); a region once per outer boundary.
  std::vector<const ModelItem*> itemsOfLevels(const Model& model) const;
  /// The model's items in the order of apply(Model), without those on slices outside the stack.
  std::vector<const ModelItem*> itemsInStackOrder(const Model& model) const;

private:
  /// The index of the item's slice, -1 with a line on the error stream when it is not one of the mapped slices.
  int findSlice(const ModelItem& item) const;
  void appendBoundaries(VertexStack<T>& stack, const ModelItem& item) const;

  const Stack* _stack = nullptr;
  StackPlacement _placement = StackPlacement::AsAligned;
  std::vector<Vector<T>> _maps;
  Vector<T> _zMap;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(StackReconstruction)
