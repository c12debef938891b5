#include "geometry/curvestacktriangulation2.h"

#include "geometry/coordinates.h"
#include "geometry/optimaltriangulation.h"
#include "geometry/polygontriangulation.h"
#include "geometry/triangulationcode.h"

#include <cmath>
#include <map>
#include <numeric>
#include <sstream>

using Tag = CurveStackTriangulationContourTag;

namespace
{

/// Sets of numbers that grow together by links.
class LinkedSets
{
public:
  explicit LinkedSets(int size) : _parent(size) { std::iota(_parent.begin(), _parent.end(), 0); }

  int find(int i)
  {
    while (_parent[i] != i) i = _parent[i] = _parent[_parent[i]];
    return i;
  }
  void link(int i, int j) { _parent[find(i)] = find(j); }

private:
  std::vector<int> _parent;
};

template <class T> std::vector<Vector<T>> centersOfGravity(const std::vector<const Curve<T>*>& curves)
{
  std::vector<Vector<T>> centers;
  centers.reserve(curves.size());
  for (const Curve<T>* curve : curves) centers.push_back(curve->cog());
  return centers;
}

/// Squared distance between the centres of gravity of every pair.
template <class T>
Matrix<T> meshCost1(const std::vector<const Curve<T>*>& lower, const std::vector<const Curve<T>*>& upper)
{
  const std::vector<Vector<T>> lowerCenters = centersOfGravity(lower), upperCenters = centersOfGravity(upper);
  Matrix<T> costs(static_cast<int>(lower.size()), static_cast<int>(upper.size()));
  for (int i = 0; i < costs.getSize1(); ++i)
    for (int j = 0; j < costs.getSize2(); ++j)
      costs(i, j) = squaredDistance(lowerCenters[i].data(), upperCenters[j].data(), 3);
  return costs;
}

/// Squared distance between the closest vertices of every pair.
template <class T>
Matrix<T> meshCost2(const std::vector<const Curve<T>*>& lower, const std::vector<const Curve<T>*>& upper)
{
  Matrix<T> costs(static_cast<int>(lower.size()), static_cast<int>(upper.size()));
  for (int i = 0; i < costs.getSize1(); ++i)
  {
    for (int j = 0; j < costs.getSize2(); ++j)
    {
      int a, b;
      lower[i]->closestPoints(*upper[j], a, b);
      costs(i, j) = squaredDistance(lower[i]->data(a), upper[j]->data(b), 3);
    }
  }
  return costs;
}

template <class T> int cheapestColumn(const Matrix<T>& costs, int row)
{
  int cheapest = 0;
  for (int j = 1; j < costs.getSize2(); ++j)
    if (costs(row, j) < costs(row, cheapest)) cheapest = j;
  return cheapest;
}

template <class T> int cheapestRow(const Matrix<T>& costs, int column)
{
  int cheapest = 0;
  for (int i = 1; i < costs.getSize1(); ++i)
    if (costs(i, column) < costs(cheapest, column)) cheapest = i;
  return cheapest;
}

/// Sum of the squared distances between the vertices of two curves in order.
template <class T> T pairedDistances(const Curve<T>& a, const Curve<T>& b)
{
  T sum = 0;
  for (int i = 0; i < a.getSize(); ++i) sum += squaredDistance(a.data(i), b.data(i), a.getSpace());
  return sum;
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

template <class T> void CurveStackTriangulation2<T>::setCostCriterion(unsigned int criterion)
{
  if (criterion >= 3 && criterion <= 5)
    throw ValueError("void CurveStackTriangulation2<T>::setCostCriterion(unsigned int)",
                     "Cost criterion " + std::to_string(criterion) + " is not available");
  _costCriterion = criterion;
}

// No share of a missing length can be walked.
template <class T> bool CurveStackTriangulation2<T>::isDegenerate(const Curve<T>& curve)
{
  if (curve.getSize() < (curve.isOpen() ? 2 : 3)) return true;
  const T length = curve.length();
  return !(length > 0) || !std::isfinite(length);
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
  const std::vector<Level> stackLevels = levels(stack);
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
  }
  for (const MeshCurve& curve : upper)
    if (_lastCaps && !curve.isClosed) appendCurveTriangulation(curve, true);
  _mesh.computeNormals();
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
    if (isDegenerate(curve))
    {
      _ignoredCurves.push_back(i);
      continue;
    }
    if (stackLevels.empty() || curve.data()[2] != stackLevels.back()[0].curve->data()[2]) stackLevels.emplace_back();
    stackLevels.back().push_back({&curve, 0, _tags.isEmpty() ? Tag::None : _tags[i]});
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

template <class T> void CurveStackTriangulation2<T>::localTriangulation(const Level& lower, Level& upper)
{
  if (lower.empty() || upper.empty()) return;
  for (const Group& group : findCurveCorrespondances(lower, upper))
  {
    const int numLower = static_cast<int>(group.lower.size()), numUpper = static_cast<int>(group.upper.size());
    if (numLower > 1)
      junctionTriangulation(upper[group.upper[0]], numLower);
    else if (numUpper == 1)
      computeMeshBetweenTwoCurves(lower[group.lower[0]], upper[group.upper[0]]);
    else
      junctionTriangulation(lower[group.lower[0]], numUpper);
  }
}

template <class T> std::vector<typename CurveStackTriangulation2<T>::Group>
CurveStackTriangulation2<T>::findCurveCorrespondances(const Level& lower, const Level& upper) const
{
  const auto curvesOf = [](const Level& level)
  {
    std::vector<const Curve<T>*> curves;
    for (const MeshCurve& curve : level) curves.push_back(curve.curve);
    return curves;
  };
  const auto meshCost = _costCriterion == 2 ? meshCost2<T> : meshCost1<T>;
  return associationSearch(meshCost(curvesOf(lower), curvesOf(upper)));
}

template <class T> std::vector<typename CurveStackTriangulation2<T>::Group>
CurveStackTriangulation2<T>::associationSearch(const Matrix<T>& costs)
{
  const int numLower = costs.getSize1(), numUpper = costs.getSize2();
  LinkedSets sets(numLower + numUpper); // the lower curves, then the upper ones
  for (int i = 0; i < numLower; ++i) sets.link(i, numLower + cheapestColumn(costs, i));
  for (int j = 0; j < numUpper; ++j) sets.link(cheapestRow(costs, j), numLower + j);

  std::map<int, int> groupOf; // by the representative of its set
  std::vector<Group> groups;
  for (int i = 0; i < numLower + numUpper; ++i)
  {
    const auto [position, isNew] = groupOf.try_emplace(sets.find(i), static_cast<int>(groups.size()));
    if (isNew) groups.emplace_back();
    Group& group = groups[position->second];
    if (i < numLower)
      group.lower.push_back(i);
    else
      group.upper.push_back(i - numLower);
  }
  return groups;
}

template <class T>
void CurveStackTriangulation2<T>::junctionTriangulation(const MeshCurve& single, int numSeveral) const
{
  std::ostringstream text;
  text << "The contour at height " << single.curve->data()[2] << " meets " << numSeveral
       << " contours of the neighbouring level: branching surfaces cannot be joined yet";
  throw ValueError("void CurveStackTriangulation2<T>::junctionTriangulation(...)", text.str());
}

template <class T> void CurveStackTriangulation2<T>::computeMeshBetweenTwoCurves(const MeshCurve& a, MeshCurve& b)
{
  const Curve<T> curveA = a.isReversed ? reversed(*a.curve) : *a.curve;
  b.isReversed = curveA.isOpen() && fitsReversed(curveA, *b.curve);
  const Curve<T> curveB = b.isReversed ? reversed(*b.curve) : *b.curve;

  const int na = curveA.getSize(), nb = curveB.getSize();
  const auto indexA = [&a, na](int i) { return a.offset + (a.isReversed ? na - 1 - i : i); };
  const auto indexB = [&b, nb](int j) { return b.offset + (b.isReversed ? nb - 1 - j : j); };
  const auto addTriangle = [this, isUpwards = curveB.data()[2] >= curveA.data()[2]](int i, int j, int k)
  { isUpwards ? _mesh.addTriangle(i, j, k) : _mesh.addTriangle(i, k, j); };

  const TriangulationCode code = computeTriangulationCode(curveA, curveB);
  int i = code.startA, j = code.startB;
  for (const bool isStepOnB : code.stepsOnB)
  {
    int& moving = isStepOnB ? j : i;
    const int size = isStepOnB ? nb : na;
    const int next = moving + 1 < size ? moving + 1 : 0;
    if (isStepOnB)
      addTriangle(indexA(i), indexB(j), indexB(next));
    else
      addTriangle(indexA(i), indexB(j), indexA(next));
    moving = next;
  }
}

template <class T>
TriangulationCode CurveStackTriangulation2<T>::computeTriangulationCode(const Curve<T>& a, const Curve<T>& b) const
{
  if (_method == ganapathy) return computeTriangulationCodeGanapathy(a, b);
  if (_method == optimal) return computeOptimalTriangulationCode(a, b);
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
