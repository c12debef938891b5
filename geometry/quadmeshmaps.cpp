// Values, colours and statistics of the vertices of quad meshes.
#include "geometry/coordinates.h"
#include "geometry/quadmesh.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
/// Where a value lies between two others, 0 to 1.
template <class R> R shareOf(R value, R smallest, R largest)
{
  if (std::isnan(value) || !(smallest < largest)) return 0;
  return std::clamp<R>((value / 2 - smallest / 2) / (largest / 2 - smallest / 2), 0, 1); // halves do not overflow
}

/// The smallest and the largest of the finite values; the first is the larger one when there are none.
template <class R> std::pair<R, R> finiteRange(const Matrix<R>& values)
{
  std::pair<R, R> range(std::numeric_limits<R>::max(), std::numeric_limits<R>::lowest());
  const R* const end = values.data() + values.getNumElements();
  for (const R* value = values.data(); value != end; ++value)
  {
    if (!std::isfinite(*value)) continue;
    range.first = std::min(range.first, *value);
    range.second = std::max(range.second, *value);
  }
  return range;
}
} // namespace

template <class T> QuadMesh<T> QuadMesh<T>::closestPointMap(const QuadMesh<T>& other) const
{
  return QuadMesh<T>(CurveStack<T>::closestPointMap(other));
}

template <class T> bool QuadMesh<T>::hasVertexColors() const
{
  return _colors && _colors->getWidth() == getWidth() && _colors->getHeight() == getHeight();
}

template <class T> void QuadMesh<T>::buildVertexColors(const Matrix<Real<T>>& values, const Colormap& colormap)
{
  const char* const where = "void QuadMesh<T>::buildVertexColors(const Matrix<T>&, const Colormap&)";
  if (values.getSize1() != getHeight() || (getHeight() > 0 && values.getSize2() != getWidth()))
    throw SizeError(where, "Size mismatch");
  if (colormap.getSize() == 0) throw SizeError(where, "The colormap has no colours");
  const auto [smallest, largest] = finiteRange(values);
  QuadMesh<int> colors(3, getWidth(), getHeight());
  for (int i = 0; i < getHeight(); ++i)
    for (int j = 0; j < getWidth(); ++j)
    {
      const Real<T> share = shareOf<Real<T>>(values(i, j), smallest, largest);
      const Colormap::Color& color = colormap.getColor(static_cast<int>(std::lround(share * (colormap.getSize() - 1))));
      std::copy(color.begin(), color.end(), colors.level(i).data(j));
    }
  _colors = std::make_shared<const QuadMesh<int>>(colors);
}

template <class T> const QuadMesh<int>& QuadMesh<T>::getVertexColors() const
{
  if (!hasVertexColors())
    throw UsageError("const QuadMesh<int>& QuadMesh<T>::getVertexColors() const", "This mesh has no colours");
  return *_colors;
}

template <class T> QuadMesh<T> QuadMesh<T>::mean(const std::vector<QuadMesh<T>>& meshes)
{
  const char* const where = "QuadMesh<T> QuadMesh<T>::mean(const std::vector<QuadMesh<T>>&)";
  if (meshes.empty()) throw SizeError(where, "There are no meshes");
  for (const QuadMesh<T>& mesh : meshes) meshes[0].requireSizeOf(mesh, where);
  QuadMesh<T> result = meshes[0];
  result._colors.reset();
  const std::ptrdiff_t numCoordinates = static_cast<std::ptrdiff_t>(result.getWidth()) * result.getSpace();
  for (int i = 0; i < result.getHeight(); ++i)
  {
    T* const row = result.level(i).data();
    for (std::ptrdiff_t k = 0; k < numCoordinates; ++k)
    {
      Real<T> sum = 0;
      for (const QuadMesh<T>& mesh : meshes) sum += mesh.level(i).data()[k];
      row[k] = toCoordinate<T>(sum / static_cast<Real<T>>(meshes.size()));
    }
  }
  return result;
}

template <class T>
Matrix<Real<T>> QuadMesh<T>::varianceMap(const QuadMesh<T>& mean, const std::vector<QuadMesh<T>>& meshes)
{
  const char* const where = "Matrix<T> QuadMesh<T>::varianceMap(const QuadMesh<T>&, const std::vector<QuadMesh<T>>&)";
  if (meshes.empty()) throw SizeError(where, "There are no meshes");
  for (const QuadMesh<T>& mesh : meshes) mean.requireSizeOf(mesh, where);
  Matrix<Real<T>> variances(mean.getHeight(), mean.getWidth());
  for (int i = 0; i < mean.getHeight(); ++i)
    for (int j = 0; j < mean.getWidth(); ++j)
    {
      Real<T> sum = 0;
      for (const QuadMesh<T>& mesh : meshes)
        sum += squaredDistance(mesh.level(i).data(j), mean.level(i).data(j), mean.getSpace());
      variances(i, j) = sum / static_cast<Real<T>>(meshes.size());
    }
  return variances;
}

GEOMETRY_INSTANTIATE(QuadMesh)
