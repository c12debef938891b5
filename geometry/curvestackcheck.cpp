#include "geometry/curvestackcheck.h"

#include "geometry/curvestacktriangulation2.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>
#include <utility>

using Kind = CurveStackFinding::Kind;

namespace
{
template <class T> bool isHorizontal(const Curve<T>& curve)
{
  for (int i = 1; i < curve.getSize(); ++i)
    if (curve.data(i)[2] != curve.data()[2]) return false;
  return true;
}

/// A curve of a level and its extent in x.
template <class T> struct Extent
{
  T from, to;
  int curve;
};

template <class T> Extent<T> extentOf(const Curve<T>& curve, int number)
{
  Extent<T> extent = {curve.data()[0], curve.data()[0], number};
  for (int i = 1; i < curve.getSize(); ++i)
  {
    extent.from = std::min(extent.from, curve.data(i)[0]);
    extent.to = std::max(extent.to, curve.data(i)[0]);
  }
  return extent;
}

template <class T> void comparePair(const CurveStack<T>& stack, int a, int b, std::vector<CurveStackFinding>& findings)
{
  if (stack[a].contains(stack[b]))
    findings.push_back({Kind::Nested, b, a});
  else if (stack[b].contains(stack[a]))
    findings.push_back({Kind::Nested, a, b});
  else if (stack[a].intersects(stack[b]))
    findings.push_back({Kind::Touches, std::min(a, b), std::max(a, b)});
}

/// Compares the closed curves of a level whose extents in x overlap.
template <class T>
void compareCurves(const CurveStack<T>& stack, std::vector<Extent<T>> level, std::vector<CurveStackFinding>& findings)
{
  std::sort(level.begin(), level.end(), [](const auto& a, const auto& b) { return a.from < b.from; });
  for (std::size_t i = 0; i < level.size(); ++i)
    for (std::size_t k = i + 1; k < level.size() && level[k].from <= level[i].to; ++k)
      comparePair(stack, level[i].curve, level[k].curve, findings);
}

/// Tells for the first curve of each level, in order, whether it goes on in the direction of the levels before.
template <class T> class LevelOrder
{
public:
  bool continues(T height)
  {
    const bool isNew = _heights.insert(height).second;
    if (_heights.size() == 2 && isNew) _isAscending = height > _last;
    const bool isInOrder = isNew && (_heights.size() < 3 || (height > _last) == _isAscending);
    _last = height;
    return isInOrder;
  }

private:
  std::set<T> _heights;
  T _last = 0;
  bool _isAscending = true;
};
} // namespace

std::string CurveStackFinding::text() const
{
  const std::string subject = "curve " + std::to_string(curve), object = " curve " + std::to_string(other);
  switch (kind)
  {
  case NoExtent:
    return subject + " has no extent";
  case NotHorizontal:
    return subject + " does not lie at one height";
  case OutOfOrder:
    return subject + " lies at a height that is out of order";
  case CrossesItself:
    return subject + " crosses itself";
  case Touches:
    return subject + " touches or crosses" + object;
  case Nested:
    return subject + " lies inside" + object;
  case WrongTags:
    return "the number of contour tags is not that of the curves";
  }
  return "";
}

template <class T> std::vector<CurveStackFinding> checkCurveStack(const CurveStack<T>& stack, int numTags)
{
  if (stack.getSpace() != 3)
    throw SizeError("std::vector<CurveStackFinding> checkCurveStack(const CurveStack<T>&, int)",
                    "The curves are not in three dimensions");
  std::vector<CurveStackFinding> findings;
  if (numTags > 0 && numTags != stack.getNumCurves()) findings.push_back({Kind::WrongTags});
  LevelOrder<T> order;
  std::vector<Extent<T>> level;
  T height = 0;
  const auto endLevel = [&] { compareCurves(stack, std::exchange(level, {}), findings); };
  bool isFirst = true;
  for (int i = 0; i < stack.getNumCurves(); ++i)
  {
    const Curve<T>& curve = stack[i];
    if (CurveStackTriangulation2<T>::isDegenerate(curve))
    {
      findings.push_back({Kind::NoExtent, i});
      continue;
    }
    if (isFirst || curve.data()[2] != height)
    {
      endLevel();
      height = curve.data()[2];
      isFirst = false;
      if (!order.continues(height)) findings.push_back({Kind::OutOfOrder, i});
    }
    if (!isHorizontal(curve)) findings.push_back({Kind::NotHorizontal, i});
    if (curve.isOpen()) continue;
    if (curve.selfIntersects()) findings.push_back({Kind::CrossesItself, i});
    level.push_back(extentOf(curve, i));
  }
  endLevel();
  std::sort(findings.begin(), findings.end(),
            [](const auto& a, const auto& b)
            { return std::tuple(a.curve, a.kind, a.other) < std::tuple(b.curve, b.kind, b.other); });
  return findings;
}

template std::vector<CurveStackFinding> checkCurveStack(const CurveStack<float>&, int);
template std::vector<CurveStackFinding> checkCurveStack(const CurveStack<double>&, int);
template std::vector<CurveStackFinding> checkCurveStack(const CurveStack<long double>&, int);
