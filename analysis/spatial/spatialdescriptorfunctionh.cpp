#include "analysis/spatial/spatialdescriptorfunctionh.h"

#include "analysis/spatial/pairdistances.h"
#include "numeric/exception.h"

#include <algorithm>
#include <array>
#include <limits>

namespace
{

/// The coordinates of a pattern, an array per axis.
template <class T> class Axes
{
public:
  Axes(const Vertices<T>& pattern, const char* where) : _space(pattern.getSpace()), _size(pattern.getSize())
  {
    if (_space != 2 && _space != 3) throw SizeError(where, "The pattern is neither in the plane nor in space");
    for (std::size_t k = 0; k < static_cast<std::size_t>(_space); ++k)
      for (int i = 0; i < _size; ++i) _values[k].push_back(pattern.data(i)[k]);
  }

  int getSize() const { return _size; }
  /// The distances of point i from the points first to first + count - 1.
  void fillDistances(int i, int first, int count, T* distances) const
  {
    const auto at = [this](std::size_t k, int j) { return _values[k].data() + (_values[k].empty() ? 0 : j); };
    const std::array<T, 3> point = {*at(0, i), *at(1, i), _space == 3 ? *at(2, i) : T(0)};
    const std::array<const T*, 3> others = {at(0, first), at(1, first), at(2, first)};
    distancesFrom(point.data(), others.data(), _space, count, distances);
  }

private:
  int _space;
  int _size;
  std::array<std::vector<T>, 3> _values;
};

} // namespace

template <class T> void SpatialDescriptorFunctionH<T>::distances(const Vertices<T>& pattern, Vector<T>& values) const
{
  const char* const where = "void SpatialDescriptorFunctionH<T>::distances(const Vertices<T>&, Vector<T>&) const";
  const Axes<T> axes(pattern, where);
  const std::int64_t n = axes.getSize(), numPairs = n * (n - 1) / 2;
  if (numPairs > std::numeric_limits<int>::max()) throw SizeError(where, "There are too many pairs of objects");
  values.setSize(static_cast<int>(numPairs));
  const int size = axes.getSize();
#pragma omp parallel for schedule(dynamic, 64) if (numPairs > 100000)
  for (int i = 0; i < size - 1; ++i)
  {
    const std::int64_t first = i, begin = first * (n - 1) - first * (first - 1) / 2; // of the pairs before
    axes.fillDistances(i, i + 1, size - i - 1, values.data() + begin);
  }
}

template <class T>
void SpatialDescriptorFunctionH<T>::count(const Vertices<T>& pattern, DistanceCounts<T>& counts) const
{
  constexpr int blockSize = 1024;
  const Axes<T> axes(pattern,
                     "void SpatialDescriptorFunctionH<T>::count(const Vertices<T>&, DistanceCounts<T>&) const");
  std::array<T, blockSize> block;
  for (int i = 0; i + 1 < axes.getSize(); ++i)
    for (int first = i + 1; first < axes.getSize(); first += blockSize)
    {
      const int count = std::min(blockSize, axes.getSize() - first);
      axes.fillDistances(i, first, count, block.data());
      counts.add({block.data(), static_cast<std::size_t>(count)});
    }
}

GEOMETRY_INSTANTIATE_REAL(SpatialDescriptorFunctionH)
