#include "geometry/curvejunction.h"

#include "geometry/coordinates.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace
{
constexpr int space = 3;

int following(int i, int size)
{
  return i + 1 < size ? i + 1 : 0;
}

int preceding(int i, int size)
{
  return i > 0 ? i - 1 : size - 1;
}

template <class T> struct Box
{
  T minX, maxX, minY, maxY;
};

/// The box of a number of vertices from the given one on, around the curve.
template <class T> Box<T> boxOf(const Curve<T>& curve, int first, int count)
{
  const T* p = curve.data(first);
  Box<T> box = {p[0], p[0], p[1], p[1]};
  for (int i = first, k = 1; k < count; ++k)
  {
    p = curve.data(i = following(i, curve.getSize()));
    box = {std::min(box.minX, p[0]), std::max(box.maxX, p[0]), std::min(box.minY, p[1]), std::max(box.maxY, p[1])};
  }
  return box;
}

constexpr int piece = 32; // edges that are passed over together

/// The boxes of the pieces of a closed curve.
template <class T> std::vector<Box<T>> pieceBoxes(const Curve<T>& curve)
{
  std::vector<Box<T>> boxes;
  for (int first = 0; first < curve.getSize(); first += piece)
    boxes.push_back(boxOf(curve, first, std::min(piece, curve.getSize() - first) + 1));
  return boxes;
}

/// A lower bound of the squared distance of what lies in two boxes.
template <class T> T squaredDistance(const Box<T>& a, const Box<T>& b)
{
  const T x = std::max({T(0), a.minX - b.maxX, b.minX - a.maxX});
  const T y = std::max({T(0), a.minY - b.maxY, b.minY - a.maxY});
  return x * x + y * y;
}

/// The share of the way from a to b at which the point of the segment closest to p lies, 0 to 1.
template <class T> T closestShare(const T* p, const T* a, const T* b)
{
  const T dx = b[0] - a[0], dy = b[1] - a[1];
  const T square = dx * dx + dy * dy;
  return square > 0 ? std::clamp(((p[0] - a[0]) * dx + (p[1] - a[1]) * dy) / square, T(0), T(1)) : T(0);
}

/// Angle from one direction to another, 0 to 2 pi, counter-clockwise or clockwise.
template <class T> T angleBetween(T fromX, T fromY, T toX, T toY, bool isClockwise)
{
  const T angle = std::atan2(fromX * toY - fromY * toX, fromX * toX + fromY * toY);
  const T directed = isClockwise ? -angle : angle;
  return directed < 0 ? directed + 2 * std::acos(T(-1)) : directed;
}
} // namespace

template <class T>
CurveJunction<T>::CurveJunction(const std::vector<const Curve<T>*>& contours, T copyHeight, T mergedHeight)
  : _copies(contours.size())
{
  findBridges(contours);
  for (std::size_t i = 0; i < contours.size(); ++i) makeCopy(static_cast<int>(i), *contours[i], copyHeight);
  for (Copy& copy : _copies) sortBridges(copy);
  walk(mergedHeight);
  closeMerged();
}

/// A minimum spanning tree of the contours by their distances in the plane.
/// Source: Prim, "Shortest connection networks and some generalizations", 1957.
template <class T> void CurveJunction<T>::findBridges(const std::vector<const Curve<T>*>& contours)
{
  std::vector<Box<T>> boxes;
  for (const Curve<T>* contour : contours) boxes.push_back(boxOf(*contour, 0, contour->getSize()));
  std::vector<int> outside(contours.size() - 1);
  std::iota(outside.begin(), outside.end(), 1);
  // The shortest bridge from the tree to each contour outside.
  std::vector<Bridge> bridges(contours.size(), {std::numeric_limits<T>::max(), {}, {}});
  for (std::size_t i = 0; i < contours.size(); ++i) bridges[i].to.copy = static_cast<int>(i);
  int added = 0;
  while (!outside.empty())
  {
    for (const int i : outside)
    {
      if (!(squaredDistance(boxes[added], boxes[i]) < bridges[i].squaredLength)) continue;
      const Bridge bridge = closestPlaces(contours, added, i, bridges[i].squaredLength);
      if (bridge.squaredLength < bridges[i].squaredLength) bridges[i] = bridge;
    }
    const auto next =
        std::min_element(outside.begin(), outside.end(),
                         [&](int i, int j) { return bridges[i].squaredLength < bridges[j].squaredLength; });
    added = *next;
    _bridgeEnds.push_back(bridges[added].from);
    _bridgeEnds.push_back(bridges[added].to);
    outside.erase(next);
  }
}

template <class T> typename CurveJunction<T>::Bridge
CurveJunction<T>::closestPlaces(const std::vector<const Curve<T>*>& contours, int from, int to, T squaredLimit)
{
  Bridge closest = {squaredLimit, {from, {}, 0}, {to, {}, 0}};
  const auto search =
      [&closest](const Curve<T>& vertices, const Curve<T>& edges, BridgeEnd& vertexEnd, BridgeEnd& edgeEnd)
  {
    const int numVertices = vertices.getSize(), numEdges = edges.getSize();
    const std::vector<Box<T>> boxes = pieceBoxes(edges);
    for (int i = 0; i < numVertices; ++i)
    {
      const T* const p = vertices.data(i);
      for (int j = 0; j < numEdges; ++j)
      {
        if (j % piece == 0 &&
            !(squaredDistance(Box<T>{p[0], p[0], p[1], p[1]}, boxes[j / piece]) < closest.squaredLength))
        {
          j += piece - 1;
          continue;
        }
        const T *a = edges.data(j), *b = edges.data(following(j, numEdges));
        const T share = closestShare(p, a, b);
        const T q[] = {a[0] + share * (b[0] - a[0]), a[1] + share * (b[1] - a[1])};
        const T square = squaredDistance(p, q, 2);
        if (!(square < closest.squaredLength)) continue;
        closest.squaredLength = square;
        vertexEnd.place = {i, 0};
        edgeEnd.place = share < 1 ? Place{j, share} : Place{following(j, numEdges), 0};
      }
    }
  };
  search(*contours[from], *contours[to], closest.from, closest.to);
  search(*contours[to], *contours[from], closest.to, closest.from);
  return closest;
}

template <class T> void CurveJunction<T>::makeCopy(int i, const Curve<T>& contour, T height)
{
  std::vector<int> ends; // of bridges at this contour, along it
  for (int end = 0; end < static_cast<int>(_bridgeEnds.size()); ++end)
    if (_bridgeEnds[end].copy == i) ends.push_back(end);
  const auto placeOf = [this](int end)
  { return std::make_pair(_bridgeEnds[end].place.edge, _bridgeEnds[end].place.share); };
  std::stable_sort(ends.begin(), ends.end(), [&](int a, int b) { return placeOf(a) < placeOf(b); });

  Copy& copy = _copies[i];
  const auto append = [&copy, height](T x, T y, int origin)
  {
    copy.curve.append(Vector<T>{x, y, height});
    copy.origins.push_back(origin);
    copy.bridgesAt.emplace_back();
  };
  const int size = contour.getSize();
  auto end = ends.begin();
  for (int edge = 0; edge < size; ++edge)
  {
    const T *a = contour.data(edge), *b = contour.data(following(edge, size));
    append(a[0], a[1], edge);
    T share = 0;
    for (; end != ends.end() && _bridgeEnds[*end].place.edge == edge; ++end)
    {
      if (_bridgeEnds[*end].place.share > share)
      {
        share = _bridgeEnds[*end].place.share;
        append(a[0] + share * (b[0] - a[0]), a[1] + share * (b[1] - a[1]), edge);
      }
      _bridgeEnds[*end].vertex = copy.curve.getSize() - 1;
      copy.bridgesAt.back().push_back(*end);
    }
  }
}

/// Orders the bridges at each vertex as they follow each other outside the contour, from the edge on which the tour
/// arrives to the one on which it goes on.
template <class T> void CurveJunction<T>::sortBridges(Copy& copy) const
{
  const bool isClockwise = copy.curve.twiceArea(0, 1) < 0;
  const int size = copy.curve.getSize();
  for (int i = 0; i < size; ++i)
  {
    std::vector<int>& ends = copy.bridgesAt[i];
    if (ends.size() < 2) continue;
    const T *p = std::as_const(copy.curve).data(i), *before = std::as_const(copy.curve).data(preceding(i, size));
    const auto angle = [&](int end)
    {
      const T* const across = pointAcross(end);
      return angleBetween(before[0] - p[0], before[1] - p[1], across[0] - p[0], across[1] - p[1], isClockwise);
    };
    std::stable_sort(ends.begin(), ends.end(), [&](int a, int b) { return angle(a) < angle(b); });
  }
}

template <class T> void CurveJunction<T>::walk(T mergedHeight)
{
  constexpr int edgeOfCopy = -1;
  int c = 0, vertex = 0, arriving = edgeOfCopy;
  do
  {
    const Copy& copy = _copies[c];
    const std::vector<int>& ends = copy.bridgesAt[vertex];
    const auto next = arriving == edgeOfCopy ? ends.begin() : std::find(ends.begin(), ends.end(), arriving) + 1;
    const int leaving = next == ends.end() ? edgeOfCopy : *next;
    appendStop(c, vertex, arriving, leaving, mergedHeight);
    if (leaving == edgeOfCopy)
    {
      vertex = following(vertex, copy.curve.getSize());
      arriving = edgeOfCopy;
      continue;
    }
    arriving = leaving ^ 1;
    c = _bridgeEnds[arriving].copy;
    vertex = _bridgeEnds[arriving].vertex;
  } while (c != 0 || vertex != 0 || arriving != edgeOfCopy);
}

template <class T> void CurveJunction<T>::appendStop(int copy, int vertex, int arriving, int leaving, T mergedHeight)
{
  const T* const p = std::as_const(_copies[copy].curve).data(vertex);
  T point[space] = {p[0], p[1], mergedHeight};
  if (arriving >= 0 || leaving >= 0) moveApart(point, _copies[copy], vertex, arriving, leaving);
  const int last = _merged.getSize() - 1;
  const bool isSame = last >= 0 && std::equal(point, point + space, std::as_const(_merged).data(last));
  if (!isSame) _merged.append(Vector<T>{point[0], point[1], point[2]});
  _tour.push_back({copy, vertex, _merged.getSize() - 1});
}

template <class T>
void CurveJunction<T>::moveApart(T* point, const Copy& copy, int vertex, int arriving, int leaving) const
{
  const Curve<T>& curve = copy.curve;
  const T* const p = curve.data(vertex);
  const int size = curve.getSize();
  if (arriving >= 0 && leaving >= 0) // into the wedge between two bridges
  {
    const T *a = pointAcross(arriving), *b = pointAcross(leaving);
    for (int k = 0; k < 2; ++k) point[k] += (a[k] - p[k]) / 8 + (b[k] - p[k]) / 8;
    return;
  }
  const T* const along = curve.data(arriving < 0 ? preceding(vertex, size) : following(vertex, size));
  const T edge = distance(p, along, 2), bridge = distance(p, pointAcross(arriving < 0 ? leaving : arriving), 2);
  // A quarter of the edge, and no more than half the bridge, so that the corridor keeps off what lies beside it.
  const T share = bridge > 0 && bridge < edge / 2 ? bridge / 2 / edge : T(1) / 4;
  for (int k = 0; k < 2; ++k) point[k] += share * (along[k] - p[k]);
}

/// Lets the last stops share the first vertex of the merged contour when they are at its place.
template <class T> void CurveJunction<T>::closeMerged()
{
  const Curve<T>& merged = _merged;
  int size = merged.getSize();
  while (size > 3 && std::equal(merged.data(size - 1), merged.data(size - 1) + space, merged.data())) --size;
  for (Stop& stop : _tour)
    if (stop.merged >= size) stop.merged = 0;
  _merged.setSize(size);
}

GEOMETRY_INSTANTIATE_REAL(CurveJunction)
