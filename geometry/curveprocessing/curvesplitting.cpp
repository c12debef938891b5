#include "geometry/curveprocessing/curvesplitting.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace
{
/// Where the line through the segment crosses the curve.
struct Crossing
{
  double alongCurve; ///< edge, and share of the edge
  double alongLine;  ///< 0 at a, 1 at b
  double x, y;

  bool isOnSegment() const { return alongLine >= 0 && alongLine <= 1; }
};

/// Vertex of a piece; that of a crossing has its number.
struct Node
{
  double x, y;
  int crossing = -1;
};

using Ring = std::vector<Node>;

/// The first vertex from which the crossings are counted: of a closed curve one on the negative side of the line, or
/// the number of vertices when there is none.
int firstVertex(const Curve<double>& curve, const std::vector<double>& sides)
{
  if (curve.isOpen()) return 0;
  return static_cast<int>(std::find_if(sides.begin(), sides.end(), [](double side) { return side < 0; }) -
                          sides.begin());
}

/// In the order of the curve's edges. Where the curve comes to the line and leaves it to the side from which it came,
/// begins or ends on it, it does not cross.
std::vector<Crossing> crossingsOf(const Curve<double>& curve, const Vector<double>& a, const Vector<double>& b)
{
  const double dx = b[0] - a[0];
  const double dy = b[1] - a[1];
  const int numVertices = curve.getNumVertices();
  std::vector<double> sides(static_cast<std::size_t>(numVertices));
  for (int i = 0; i < numVertices; ++i)
    sides[static_cast<std::size_t>(i)] = dx * (curve.data(i)[1] - a[1]) - dy * (curve.data(i)[0] - a[0]);
  const auto side = [&](int i) { return sides[static_cast<std::size_t>(i)]; };
  const auto crossingOf = [&](int i, int next)
  {
    const double *p = curve.data(i), *q = curve.data(next);
    const double u = side(i) / (side(i) - side(next));
    const double x = p[0] + u * (q[0] - p[0]);
    const double y = p[1] + u * (q[1] - p[1]);
    const double along = i + u < numVertices ? i + u : 0;
    return Crossing{along, (dx * (x - a[0]) + dy * (y - a[1])) / (dx * dx + dy * dy), x, y};
  };

  std::vector<Crossing> crossings;
  const int first = firstVertex(curve, sides);
  if ((dx == 0 && dy == 0) || first == numVertices) return crossings;
  std::optional<Crossing> arrival;      // on the line, from the negative side
  bool beginsOnLine = side(first) == 0; // and has not left it yet
  for (int k = 0; k < curve.getNumEdges(); ++k)
  {
    const int i = (first + k) % numVertices, next = (i + 1) % numVertices;
    if (side(i) < 0 && side(next) >= 0) arrival = crossingOf(i, next);
    if (side(next) > 0 && arrival) crossings.push_back(*std::exchange(arrival, std::nullopt));
    if (side(i) >= 0 && side(next) < 0 && !std::exchange(arrival, std::nullopt) && !beginsOnLine)
      crossings.push_back(crossingOf(i, next));
    beginsOnLine = beginsOnLine && side(next) == 0;
  }
  std::sort(crossings.begin(), crossings.end(),
            [](const Crossing& c, const Crossing& d) { return c.alongCurve < d.alongCurve; });
  return crossings;
}

/// The vertices of the curve with the crossings between them.
Ring ringThrough(const Curve<double>& curve, const std::vector<Crossing>& crossings)
{
  Ring ring;
  std::size_t next = 0; // crossings come by edges
  for (int i = 0; i < curve.getNumVertices(); ++i)
  {
    ring.push_back({curve.data(i)[0], curve.data(i)[1]});
    for (; next < crossings.size() && crossings[next].alongCurve < i + 1; ++next)
      ring.push_back({crossings[next].x, crossings[next].y, static_cast<int>(next)});
  }
  return ring;
}

Ring::const_iterator findCrossing(const Ring& ring, int crossing)
{
  return std::find_if(ring.begin(), ring.end(), [crossing](const Node& node) { return node.crossing == crossing; });
}

/// Splits the ring that holds both crossings, if one does.
void splitAtChord(std::vector<Ring>& rings, int from, int to)
{
  for (Ring& ring : rings)
  {
    auto first = findCrossing(ring, from);
    auto last = findCrossing(ring, to);
    if (first == ring.end() || last == ring.end()) continue;
    if (last < first) std::swap(first, last);
    Ring rest(last, ring.cend());
    rest.insert(rest.end(), ring.cbegin(), first + 1);
    ring = Ring(first, last + 1);
    rings.push_back(std::move(rest));
    return;
  }
}

std::vector<Ring> splitRing(const Curve<double>& curve, const std::vector<Crossing>& crossings)
{
  std::vector<int> order(crossings.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
  const auto crossing = [&](int i) { return crossings[static_cast<std::size_t>(i)]; };
  std::sort(order.begin(), order.end(), [&](int i, int j) { return crossing(i).alongLine < crossing(j).alongLine; });
  std::vector<Ring> rings = {ringThrough(curve, crossings)};
  for (std::size_t k = 0; k + 1 < order.size(); k += 2) // the line is inside between every other pair
    if (crossing(order[k]).isOnSegment() && crossing(order[k + 1]).isOnSegment())
      splitAtChord(rings, order[k], order[k + 1]);
  return rings;
}

std::vector<Ring> splitChain(const Curve<double>& curve, const std::vector<Crossing>& crossings)
{
  std::vector<Ring> pieces(1);
  for (const Node& node : ringThrough(curve, crossings))
  {
    pieces.back().push_back(node);
    if (node.crossing < 0 || !crossings[static_cast<std::size_t>(node.crossing)].isOnSegment()) continue;
    pieces.push_back({node});
  }
  return pieces;
}

/// Crossings at which nothing came apart are no vertices.
Curve<double> curveOf(const Ring& ring, const std::vector<Crossing>& crossings, bool isOpen)
{
  Curve<double> curve(2);
  curve.setOpen(isOpen);
  for (std::size_t i = 0; i < ring.size(); ++i)
  {
    const bool isEnd = i == 0 || i + 1 == ring.size();
    const int crossing = ring[i].crossing;
    if (crossing < 0 || isEnd || crossings[static_cast<std::size_t>(crossing)].isOnSegment())
      curve.append(Vector<double>{ring[i].x, ring[i].y});
  }
  return curve;
}
} // namespace

std::vector<Curve<double>> splitCurve(const Curve<double>& curve, const Vector<double>& a, const Vector<double>& b)
{
  const std::vector<Crossing> crossings = crossingsOf(curve, a, b);
  const std::vector<Ring> rings = curve.isOpen() ? splitChain(curve, crossings) : splitRing(curve, crossings);
  std::vector<Curve<double>> pieces;
  if (rings.size() < 2) return pieces;
  for (const Ring& ring : rings) pieces.push_back(curveOf(ring, crossings, curve.isOpen()));
  return pieces;
}
