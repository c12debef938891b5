// Curve stacks and the quad meshes of their surfaces.
#include "geometry/coordinates.h"
#include "geometry/curvestack.h"
#include "geometry/cyclicmatch.h"
#include "geometry/kdtree.h"
#include "geometry/quadmesh.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <vector>

namespace
{
/// A closed curve clockwise in the x-y plane, from the same vertex on.
template <class T> Curve<T> clockwise(Curve<T> curve)
{
  if (!(curve.twiceArea(0, 1) > 0)) return curve; // without a tolerance: coordinates may be of any unit
  curve.reverse();
  curve.setOrigin(curve.getSize() - 1);
  return curve;
}

/// Sum of the squared distances between the vertices of two curves in order.
template <class T> Real<T> pairedDistances(const Curve<T>& a, const Curve<T>& b)
{
  Real<T> sum = 0;
  for (int i = 0; i < a.getSize(); ++i) sum += squaredDistance(a.data(i), b.data(i), a.getSpace());
  return sum;
}

/// Numbers the vertices of a curve so that they come closest to those of the curve before.
template <class T> void fit(Curve<T>& curve, const Curve<T>& previous)
{
  if (curve.isClosed()) return curve.setOrigin(centeredMatch<T>({&curve}, {&previous}));
  Curve<T> reversed = curve;
  reversed.reverse();
  if (pairedDistances(reversed, previous) < pairedDistances(curve, previous)) curve = reversed;
}

/// The stack's curves, resampled to one size and each fitted to the one before.
template <class T> std::vector<Curve<T>> fittedCurves(const CurveStack<T>& stack, int size)
{
  std::vector<Curve<T>> curves;
  for (int i = 0; i < stack.getNumCurves(); ++i)
  {
    curves.push_back((stack.isOpen() ? stack[i] : clockwise(stack[i])).resample(size));
    if (i > 0 && size > 0) fit(curves[static_cast<std::size_t>(i)], curves[static_cast<std::size_t>(i) - 1]);
  }
  return curves;
}

/// The place on a list of m curves of item k of n that are spread evenly over it: between curves `lower` and lower + 1.
struct Place
{
  Place(int k, int n, int m)
  {
    if (n < 2) return;
    const std::int64_t index = std::int64_t{k} * (m - 1); // over n - 1
    lower = static_cast<int>(index / (n - 1));
    numerator = static_cast<int>(index % (n - 1));
    denominator = n - 1;
  }

  int lower = 0;
  int numerator = 0;
  int denominator = 1;
};

/// The curve at a place, linear between neighbours. Curves is indexed by numbers and holds curves of equal size.
template <class T, class Curves> Curve<T> curveAt(const Curves& curves, const Place& place)
{
  const Curve<T>& lower = curves[place.lower];
  if (place.numerator == 0) return lower;
  const Curve<T>& upper = curves[place.lower + 1];
  const Real<T> weight = static_cast<Real<T>>(place.numerator) / static_cast<Real<T>>(place.denominator);
  Curve<T> curve = lower;
  T* const coordinates = curve.data();
  const T* const upperCoordinates = upper.data();
  const std::ptrdiff_t numCoordinates = static_cast<std::ptrdiff_t>(lower.getSize()) * lower.getSpace();
  for (std::ptrdiff_t k = 0; k < numCoordinates; ++k)
  {
    const auto start = static_cast<Real<T>>(coordinates[k]);
    coordinates[k] = toCoordinate<T>(start + weight * (static_cast<Real<T>>(upperCoordinates[k]) - start));
  }
  return curve;
}

/// Numbers of columns worth a try below a limit, ascending: the smallest ones, as many as are cheap, and the curves'
/// numbers of vertices with their divisors, with which columns meet vertices.
template <class T> std::vector<int> widthsBelow(int limit, int fewest, const CurveStack<T>& stack)
{
  constexpr int cheapWork = 200000, numOthers = 100; // in vertices of the stack, and in widths
  const int numSmallest = std::max(16, cheapWork / stack.getNumVertices());
  std::set<int> sizes, widths;
  for (int k = 0; k < stack.getNumCurves(); ++k) sizes.insert(stack[k].getSize());
  for (const int size : sizes)
    for (int divisor = 1; divisor <= size / divisor; ++divisor)
      if (size % divisor == 0) widths.insert({divisor, size / divisor});
  for (int width = fewest; width < limit && width - fewest < numSmallest; ++width) widths.insert(width);
  std::vector<int> below(widths.lower_bound(fewest), widths.lower_bound(limit));
  if (below.size() > static_cast<std::size_t>(numSmallest + numOthers))
    below.resize(static_cast<std::size_t>(numSmallest + numOthers));
  return below;
}

template <class T> void requireMesh(const QuadMesh<T>& mesh, const CurveStack<T>& stack, const char* where)
{
  if (mesh.getWidth() == 0) throw SizeError(where, "The mesh has no vertices");
  if (!mesh.isGrid()) throw SizeError(where, "The rows of a quad mesh differ in size");
  if (mesh.getSpace() != stack.getSpace()) throw SizeError(where, "The vertices have different dimensions");
}
} // namespace

template <class T> void CurveStack<T>::resample(QuadMesh<T>& mesh) const
{
  const char* const where = "void CurveStack<T>::resample(QuadMesh<T>&) const";
  if (getNumCurves() == 0) throw SizeError(where, "The stack has no curves");
  if (this->getSpace() != 2 && this->getSpace() != 3)
    throw SizeError(where, "The curves are not in two or three dimensions");
  const std::vector<Curve<T>> curves = fittedCurves(*this, mesh.getWidth());
  QuadMesh<T> resampled(this->getSpace(), _open);
  resampled.setName(mesh.getName());
  const int height = mesh.getHeight();
  for (int r = 0; r < height; ++r) resampled.append(curveAt<T>(curves, Place(r, height, getNumCurves())));
  mesh = resampled;
}

template <class T> void CurveStack<T>::interpolate(const QuadMesh<T>& mesh)
{
  requireMesh(mesh, *this, "void CurveStack<T>::interpolate(const QuadMesh<T>&)");
  const QuadMesh<T> rows = mesh; // it may be this stack
  for (int k = 0; k < getNumCurves(); ++k)
  {
    level(k) = curveAt<T>(rows, Place(k, getNumCurves(), rows.getHeight()));
    level(k).setOpen(_open);
  }
}

template <class T> Real<T> CurveStack<T>::resamplingError(const QuadMesh<T>& mesh) const
{
  const char* const where = "T CurveStack<T>::resamplingError(const QuadMesh<T>&) const";
  requireMesh(mesh, *this, where);
  if (this->getNumVertices() == 0) throw SizeError(where, "The stack has no vertices");
  Real<T> sum = 0;
  for (int k = 0; k < getNumCurves(); ++k)
  {
    const Curve<T> section = curveAt<T>(mesh, Place(k, getNumCurves(), mesh.getHeight()));
    const Real<T> error = level(k).resamplingError(section);
    sum += error * error * static_cast<Real<T>>(level(k).getSize());
  }
  return std::sqrt(sum / static_cast<Real<T>>(this->getNumVertices()));
}

template <class T> QuadMesh<T> CurveStack<T>::optimalResampling(Real<T> maxError) const
{
  const auto resampledTo = [this](int width)
  {
    QuadMesh<T> mesh(this->getSpace(), width, getNumCurves());
    resample(mesh);
    return mesh;
  };
  int largest = 0;
  for (int k = 0; k < getNumCurves(); ++k) largest = std::max(largest, level(k).getSize());
  const int fewest = isOpen() ? 2 : 3,
            most = std::max(4 * std::min(largest, std::numeric_limits<int>::max() / 4), fewest);
  int tooFew = fewest - 1, width = fewest;
  QuadMesh<T> mesh = resampledTo(width);
  while (width < most && !(resamplingError(mesh) <= maxError))
  {
    tooFew = width;
    width = width > most / 2 ? most : 2 * width;
    mesh = resampledTo(width);
  }
  while (width - tooFew > 1) // as if the error fell with every column
  {
    const int middle = tooFew + (width - tooFew) / 2;
    QuadMesh<T> smaller = resampledTo(middle);
    if (!(resamplingError(smaller) <= maxError))
    {
      tooFew = middle;
      continue;
    }
    width = middle;
    mesh = smaller;
  }
  for (const int smallerWidth : widthsBelow(width, fewest, *this)) // for it does not fall with every column
    if (QuadMesh<T> smaller = resampledTo(smallerWidth); resamplingError(smaller) <= maxError) return smaller;
  return mesh;
}

template <class T> CurveStack<T> CurveStack<T>::closestPointMap(const CurveStack<T>& other) const
{
  const char* const where = "CurveStack<T> CurveStack<T>::closestPointMap(const CurveStack<T>&) const";
  const int space = this->getSpace();
  if (other.getSpace() != space) throw SizeError(where, "The vertices have different dimensions");
  if (other.getNumVertices() == 0) throw SizeError(where, "The other stack has no vertices");
  const std::vector<Real<T>> there = other.realCoordinates();
  const std::vector<Neighbour<Real<T>>> neighbours = KdTree<Real<T>>(space, there).nearest(this->realCoordinates());
  CurveStack<T> map = *this;
  auto neighbour = neighbours.begin();
  for (int i = 0; i < map.getNumCurves(); ++i)
    for (int j = 0; j < map[i].getSize(); ++j, ++neighbour)
    {
      if (neighbour->index < 0) continue; // one of the vertices is not finite
      const Real<T>* const nearest = there.data() + static_cast<std::ptrdiff_t>(neighbour->index) * space;
      std::transform(nearest, nearest + space, map[i].data(j), toCoordinate<T>);
    }
  return map;
}

GEOMETRY_INSTANTIATE(CurveStack)
