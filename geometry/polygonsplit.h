#pragma once

#include "geometry/predicates.h"

#include <array>
#include <vector>

/// Parts of a counter-clockwise polygon that hang together only at points.
///
/// Where vertices at one point have the inside between them, the polygon is cut apart there. A part touches itself at
/// most from outside, and crosses none of the others. Polygons that cross themselves stay in one piece.
template <class R> class PolygonSplit
{
public:
  using Triangle = std::array<int, 3>;

  explicit PolygonSplit(const std::vector<PlanePoint<R>>& points);

  /// The vertices of each part, three or more, in order.
  const std::vector<std::vector<int>>& getParts() const { return _parts; }
  /// The triangles without area between the parts: with those of all parts they make n - 2.
  const std::vector<Triangle>& getFlatTriangles() const { return _flatTriangles; }

private:
  std::vector<std::vector<int>> _parts;
  std::vector<Triangle> _flatTriangles;
};

extern template class PolygonSplit<double>;
extern template class PolygonSplit<long double>;
