#include "geometry/curvestacktriangulation2.h"

#include "geometry/coordinates.h"
#include "geometry/curvejunction.h"
#include "geometry/junctionshape.h"
#include "geometry/optimaltriangulation.h"
#include "geometry/polygontriangulation.h"
#include "geometry/triangulationcode.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

using Tag = CurveStackTriangulationContourTag;

namespace
{

/// Sum of the squared distances between the vertices of two curves in order.
template <class T> T pairedDistances(const Curve<T>& a, const Curve<T>& b)
{
  T sum = 0;
  for (int i = 0; i < a.getSize(); ++i) sum += squaredDistance(a.data(i), b.data(i), a.getSpace());
  return sum;
}

std::vector<int> indexesFrom(int offset, int size)
{
  std::vector<int> indexes(size);
  std::iota(indexes.begin(), indexes.end(), offset);
  return indexes;
}

template <class T> std::shared_ptr<const MeasuredCurve<T>> measure(const Curve<T>& curve)
{
  return std::make_shared<const MeasuredCurve<T>>(curve);
}

/// The steps along contour a and its copy b, which has the vertices of a and others between them.
TriangulationCode codeOf(const std::vector<int>& origins)
{
  TriangulationCode code;
  for (std::size_t k = 0; k < origins.size(); ++k)
  {
    code.stepsOnB.push_back(true);
    const int next = k + 1 < origins.size() ? origins[k + 1] : origins[0];
    if (next != origins[k]) code.stepsOnB.push_back(false);
  }
  return code;
}

/// The steps along a tour a and the merged contour b, on which several stops may share a vertex.
template <class Stop> TriangulationCode codeOf(const std::vector<Stop>& tour)
{
  TriangulationCode code;
  code.startB = tour[0].merged;
  for (std::size_t k = 0; k < tour.size(); ++k)
  {
    code.stepsOnB.push_back(false);
    const int next = k + 1 < tour.size() ? tour[k + 1].merged : tour[0].merged;
    if (next != tour[k].merged) code.stepsOnB.push_back(true);
  }
  return code;
}

template <class T> Curve<T> reversed(const Curve<T>& curve)
{
  Curve<T> result = curve;
  result.reverse();
  return result;
}

/// True when the open curve b fits a better when it is walked from its end.
template <class T> bool fitsReversed(const Curve<T>& a, const Curve<T>& b)
{
  const int n = std::max(a.getSize(), b.getSize());
  const Curve<T> resampledA = a.resample(n), resampledB = b.resample(n);
  return pairedDistances(resampledA, reversed(resampledB)) < pairedDistances(resampledA, resampledB);
}

} // namespace

// No share of a missing length can be walked.
template <class T> bool CurveStackTriangulation2<T>::isDegenerate(const Curve<T>& curve)
{
  return isDegenerate(MeasuredCurve<T>(curve));
}

template <class T> bool CurveStackTriangulation2<T>::isDegenerate(const MeasuredCurve<T>& curve)
{
  if (curve.getCurve().getSize() < (curve.getCurve().isOpen() ? 2 : 3)) return true;
  return !(curve.getLength() > 0) || !std::isfinite(curve.getLength());
}

template <class T> void CurveStackTriangulation2<T>::apply(const CurveStack<T>& stack)
{
  try
  {
    build(stack);
  }
  catch (...)
  {
    _mesh = TriMesh<T>();
    throw;
  }
}

template <class T> void CurveStackTriangulation2<T>::build(const CurveStack<T>& stack)
{
  _mesh = TriMesh<T>();
  std::vector<Level> stackLevels = levels(stack);
  if (stackLevels.empty()) return;
  _mesh.reserve(stack.getNumVertices());
  _mesh.reserveTriangles(2 * stack.getNumVertices());
  _descending = stackLevels.back()[0].curve->data()[2] < stackLevels.front()[0].curve->data()[2];

  Level lower = firstLowerLevel(stackLevels[0]);
  Level upper;
  for (std::size_t i = 1; i < stackLevels.size(); ++i)
  {
    upper = upperLevel(stackLevels[i]);
    localTriangulation(lower, upper);
    lower = nextLowerLevel(stackLevels[i], upper);
    stackLevels[i].clear(); // what was measured of its curves goes when they are joined
  }
  for (const MeshCurve& curve : upper)
    if (_lastCaps && !curve.isClosed) appendCurveTriangulation(curve, true);
  if (stack.isOpen() && stack.isBranching()) _mesh.orientConsistently(); // lines run as they were drawn
  if (_normals) _mesh.computeNormals();
}

/// The runs of curves of exactly equal height, without the degenerate curves.
template <class T>
std::vector<typename CurveStackTriangulation2<T>::Level> CurveStackTriangulation2<T>::levels(const CurveStack<T>& stack)
{
  const char* const where = "void CurveStackTriangulation2<T>::apply(const CurveStack<T>&)";
  if (stack.getSpace() != 3) throw SizeError(where, "The curves are not in three dimensions");
  if (!_tags.isEmpty() && _tags.getSize() != stack.getNumCurves())
    throw SizeError(where, "The number of contour tags is not that of the curves");
  _ignoredCurves.clear();
  std::vector<Level> stackLevels;
  for (int i = 0; i < stack.getNumCurves(); ++i)
  {
    const Curve<T>& curve = stack[i];
    const std::shared_ptr<const MeasuredCurve<T>> measured = measure(curve);
    if (isDegenerate(*measured))
    {
      _ignoredCurves.push_back(i);
      continue;
    }
    if (stackLevels.empty() || curve.data()[2] != stackLevels.back()[0].curve->data()[2]) stackLevels.emplace_back();
    stackLevels.back().push_back({&curve, measured, _tags.isEmpty() ? Tag::None : _tags[i]});
  }
  return stackLevels;
}

template <class T>
typename CurveStackTriangulation2<T>::Level CurveStackTriangulation2<T>::firstLowerLevel(const Level& level)
{
  const auto isTaken = [](Tag tag) { return tag != Tag::End; };
  const auto isCapped = [this](Tag tag) { return _firstCaps || (_caps && tag == Tag::Begin); };
  return addToMesh(level, isTaken, isCapped, false);
}

/// The curves of a level that are joined to the level below.
template <class T>
typename CurveStackTriangulation2<T>::Level CurveStackTriangulation2<T>::upperLevel(const Level& level)
{
  const auto isTaken = [](Tag tag) { return tag != Tag::Begin; };
  const auto isCapped = [this](Tag tag) { return _caps && tag == Tag::End; };
  return addToMesh(level, isTaken, isCapped, true);
}

/// The curves of a level that are joined to the level above: those carried on, then those that begin.
template <class T> typename CurveStackTriangulation2<T>::Level
CurveStackTriangulation2<T>::nextLowerLevel(const Level& level, const Level& upper)
{
  Level lower;
  for (const MeshCurve& curve : upper)
    if (curve.tag != Tag::End) lower.push_back(curve);
  const auto isTaken = [](Tag tag) { return tag == Tag::Begin; };
  const auto isCapped = [this](Tag) { return _caps; };
  const Level beginning = addToMesh(level, isTaken, isCapped, false);
  lower.insert(lower.end(), beginning.begin(), beginning.end());
  return lower;
}

/// Adds the vertices and caps of curves that are chosen by their tags.
template <class T> template <class IsTaken, class IsCapped> typename CurveStackTriangulation2<T>::Level
CurveStackTriangulation2<T>::addToMesh(const Level& level, IsTaken isTaken, IsCapped isCapped, bool isEndCap)
{
  Level added;
  for (MeshCurve curve : level)
  {
    if (!isTaken(curve.tag)) continue;
    curve.offset = _mesh.getSize();
    _mesh.append(*curve.curve);
    if (isCapped(curve.tag)) appendCurveTriangulation(curve, isEndCap);
    curve.isClosed = isEndCap && isCapped(curve.tag);
    added.push_back(curve);
  }
  return added;
}

template <class T> void CurveStackTriangulation2<T>::localTriangulation(Level& lower, Level& upper)
{
  if (lower.empty() || upper.empty() || (_method != ganapathy && _method != optimal)) return;
  const T lowerHeight = lower[0].curve->data()[2], upperHeight = upper[0].curve->data()[2];
  for (CurveGroup& group : findCurveCorrespondances(lower, upper))
  {
    const Seam below = seamOf(lower, group.lower, upperHeight);
    Seam above = seamOf(upper, group.upper, lowerHeight);
    if (above.curve().isOpen() && fitsReversed(below.curve(), above.curve()))
    {
      std::reverse(group.upper.begin(), group.upper.end());
      for (const int member : group.upper) upper[member].isReversed = !upper[member].isReversed;
      above = seamOfOpenCurves(upper, group.upper);
    }
    const bool branches = group.lower.size() + group.upper.size() > 2 && !below.curve().isOpen();
    branches ? joinBranches(below, above, group) : computeMeshBetweenTwoCurves(below, above);
  }
}

template <class T> typename CurveStackTriangulation2<T>::Seam
CurveStackTriangulation2<T>::seamOf(Level& level, std::vector<int>& members, T otherHeight)
{
  const MeshCurve& first = level[members[0]];
  if (first.curve->isOpen())
  {
    chainOpenCurves(level, members);
    return seamOfOpenCurves(level, members);
  }
  if (members.size() > 1) return junctionTriangulation(level, members, otherHeight);
  return {first.measured, indexesFrom(first.offset, first.curve->getSize())};
}

template <class T> std::vector<CurveGroup>
CurveStackTriangulation2<T>::findCurveCorrespondances(const Level& lower, const Level& upper) const
{
  if (lower.size() == 1 && upper.size() == 1) return {{{0}, {0}}};
  const auto curvesOf = [](const Level& level)
  {
    std::vector<const Curve<T>*> curves;
    for (const MeshCurve& curve : level) curves.push_back(curve.curve);
    return curves;
  };
  return associationSearch(meshCost(_costCriterion, curvesOf(lower), curvesOf(upper)));
}

template <class T> typename CurveStackTriangulation2<T>::Seam
CurveStackTriangulation2<T>::junctionTriangulation(const Level& level, const std::vector<int>& members, T otherHeight)
{
  // Below the middle, so that there is room for a junction on the other side.
  constexpr T copyShare = T(1) / 4, mergedShare = T(9) / 20;
  const T height = level[0].curve->data()[2];
  const bool isUpwards = otherHeight >= height;
  std::vector<const Curve<T>*> curves;
  for (const int member : members) curves.push_back(level[member].curve);
  const CurveJunction<T> junction(curves, height + copyShare * (otherHeight - height),
                                  height + mergedShare * (otherHeight - height));

  std::vector<std::vector<int>> copyIndexes;
  for (std::size_t i = 0; i < members.size(); ++i)
  {
    const std::vector<int> drawn = indexesFrom(level[members[i]].offset, curves[i]->getSize());
    copyIndexes.push_back(appendToMesh(junction.getCopy(static_cast<int>(i))));
    addStrip(drawn, copyIndexes.back(), codeOf(junction.getOrigins(static_cast<int>(i))), isUpwards);
  }
  Seam merged = {measure(junction.getMerged()), appendToMesh(junction.getMerged())};
  std::vector<int> tour;
  for (const auto& stop : junction.getTour()) tour.push_back(copyIndexes[stop.copy][stop.vertex]);
  addStrip(tour, merged.indexes, codeOf(junction.getTour()), isUpwards);
  return merged;
}

/// Where the deep bays of a merged contour would make the strip cross itself, the bays are filled first.
template <class T> void CurveStackTriangulation2<T>::joinBranches(Seam below, Seam above, const CurveGroup& group)
{
  const auto crossings = [this](const Seam& a, const Seam& b)
  { return numSectionCrossings(a.curve(), b.curve(), computeTriangulationCode(a, b)); };
  const bool isUpwards = above.curve().data()[2] >= below.curve().data()[2];
  if (const int numCrossings = crossings(below, above); numCrossings > 0)
  {
    const bool mergesBelow = group.lower.size() > 1, mergesAbove = group.upper.size() > 1;
    const Seam filledBelow = mergesBelow ? hullOf(below) : below, filledAbove = mergesAbove ? hullOf(above) : above;
    if (crossings(filledBelow, filledAbove) < numCrossings)
    {
      if (mergesBelow) fillPockets(below, filledBelow, isUpwards);
      if (mergesAbove) fillPockets(above, filledAbove, !isUpwards);
      below = filledBelow;
      above = filledAbove;
    }
  }
  computeMeshBetweenTwoCurves(below, above);
}

template <class T> typename CurveStackTriangulation2<T>::Seam CurveStackTriangulation2<T>::hullOf(const Seam& merged)
{
  Curve<T> hull(3);
  std::vector<int> indexes;
  for (const int i : convexHull(merged.curve()))
  {
    hull.append(merged.curve()[i]);
    indexes.push_back(merged.indexes[i]);
  }
  return {measure(hull), indexes};
}

template <class T> void CurveStackTriangulation2<T>::fillPockets(const Seam& merged, const Seam& hull, bool isUpwards)
{
  const int size = static_cast<int>(merged.indexes.size());
  const int offset = merged.indexes[0]; // the indexes follow each other
  for (std::size_t k = 0; k < hull.indexes.size(); ++k)
  {
    const int first = hull.indexes[k] - offset;
    const int next = hull.indexes[k + 1 < hull.indexes.size() ? k + 1 : 0] - offset;
    const int last = next > first ? next : next + size;
    if (last - first > 1) fillPocket(merged, first, last, isUpwards);
  }
}

/// The pocket between vertices first and last, counted around the contour, with the edge between them as its lid.
template <class T> void CurveStackTriangulation2<T>::fillPocket(const Seam& merged, int first, int last, bool isUpwards)
{
  const int size = static_cast<int>(merged.indexes.size());
  Curve<T> pocket(3);
  for (int i = first; i <= last; ++i) pocket.append(merged.curve()[i % size]);
  const bool isReversed = pocket.twiceArea(0, 1) < 0;
  if (isReversed) pocket.reverse();
  PolygonTriangulation<T> triangulation;
  const TriMesh<T>& triangles = triangulation.apply(pocket, 0, 1);
  const auto index = [&](int k) { return merged.indexes[(isReversed ? last - k : first + k) % size]; };
  for (int i = 0; i < triangles.getNumTriangleSlots(); ++i)
  {
    const int p = index(triangles.corners(i)[0]), q = index(triangles.corners(i)[1]),
              r = index(triangles.corners(i)[2]);
    isReversed == isUpwards ? _mesh.addTriangle(p, q, r) : _mesh.addTriangle(p, r, q);
  }
}

template <class T> void CurveStackTriangulation2<T>::chainOpenCurves(Level& level, std::vector<int>& members)
{
  const auto endOf = [&level](int member, bool isLast)
  {
    const Curve<T>& curve = *level[member].curve;
    return curve.data(isLast != level[member].isReversed ? curve.getSize() - 1 : 0);
  };
  for (std::size_t placed = 1; placed < members.size(); ++placed)
  {
    T shortest = std::numeric_limits<T>::max();
    std::size_t next = placed;
    bool isInFront = false, isTurned = false;
    for (std::size_t k = placed; k < members.size(); ++k)
      for (const bool inFront : {false, true})
        for (const bool turned : {false, true})
        {
          const T* const end = inFront ? endOf(members[0], false) : endOf(members[placed - 1], true);
          const T square = squaredDistance(end, endOf(members[k], inFront != turned), 3);
          if (!(square < shortest)) continue;
          shortest = square;
          next = k;
          isInFront = inFront;
          isTurned = turned;
        }
    const int member = members[next];
    level[member].isReversed = level[member].isReversed != isTurned;
    members.erase(members.begin() + static_cast<std::ptrdiff_t>(next));
    members.insert(members.begin() + static_cast<std::ptrdiff_t>(isInFront ? 0 : placed), member);
  }
}

template <class T> typename CurveStackTriangulation2<T>::Seam
CurveStackTriangulation2<T>::seamOfOpenCurves(const Level& level, const std::vector<int>& members)
{
  Curve<T> chain(3);
  chain.setOpen(true);
  std::vector<int> chainIndexes;
  for (const int member : members)
  {
    const MeshCurve& part = level[member];
    std::vector<int> indexes = indexesFrom(part.offset, part.curve->getSize());
    if (part.isReversed) std::reverse(indexes.begin(), indexes.end());
    chain.Vertices<T>::append(part.isReversed ? reversed(*part.curve) : *part.curve);
    chainIndexes.insert(chainIndexes.end(), indexes.begin(), indexes.end());
  }
  return {measure(chain), chainIndexes};
}

template <class T> std::vector<int> CurveStackTriangulation2<T>::appendToMesh(const Curve<T>& curve)
{
  const int offset = _mesh.getSize();
  _mesh.append(curve);
  return indexesFrom(offset, curve.getSize());
}

template <class T> void CurveStackTriangulation2<T>::addStrip(const std::vector<int>& a, const std::vector<int>& b,
                                                              const TriangulationCode& code, bool isUpwards)
{
  const int na = static_cast<int>(a.size()), nb = static_cast<int>(b.size());
  std::vector<int> corners(3 * code.stepsOnB.size());
  int* triangle = corners.data();
  int i = code.startA, j = code.startB;
  for (const bool isStepOnB : code.stepsOnB)
  {
    int& moving = isStepOnB ? j : i;
    const int next = moving + 1 < (isStepOnB ? nb : na) ? moving + 1 : 0;
    const int third = isStepOnB ? b[next] : a[next];
    *triangle++ = a[i];
    *triangle++ = isUpwards ? b[j] : third;
    *triangle++ = isUpwards ? third : b[j];
    moving = next;
  }
  _mesh.addTriangles(corners);
}

template <class T> void CurveStackTriangulation2<T>::computeMeshBetweenTwoCurves(const Seam& a, const Seam& b)
{
  addStrip(a.indexes, b.indexes, computeTriangulationCode(a, b), b.curve().data()[2] >= a.curve().data()[2]);
}

template <class T>
TriangulationCode CurveStackTriangulation2<T>::computeTriangulationCode(const Seam& a, const Seam& b) const
{
  if (_method == ganapathy) return computeTriangulationCodeGanapathy(*a.measured, *b.measured);
  if (_method == optimal)
    return withoutFullTurn(computeOptimalTriangulationCode(a.curve(), b.curve()), a.curve(), b.curve());
  return TriangulationCode();
}

// Begin caps close the surface where the stack begins, end caps where it ends; both face away from the stack.
template <class T> void CurveStackTriangulation2<T>::appendCurveTriangulation(const MeshCurve& curve, bool isEndCap)
{
  if (curve.curve->isOpen()) return;
  const bool isReversed = curve.curve->twiceArea(0, 1) < 0;
  const bool facesUp = isEndCap != _descending;
  const int last = curve.curve->getSize() - 1;
  const auto index = [&](int k) { return curve.offset + (isReversed ? last - k : k); };
  PolygonTriangulation<T> triangulation;
  const TriMesh<T>& cap = triangulation.apply(isReversed ? reversed(*curve.curve) : *curve.curve, 0, 1);
  for (int i = 0; i < cap.getNumTriangleSlots(); ++i)
  {
    const int p = index(cap.corners(i)[0]), q = index(cap.corners(i)[1]), r = index(cap.corners(i)[2]);
    facesUp ? _mesh.addTriangle(p, q, r) : _mesh.addTriangle(p, r, q);
  }
}

GEOMETRY_INSTANTIATE_REAL(CurveStackTriangulation2)
