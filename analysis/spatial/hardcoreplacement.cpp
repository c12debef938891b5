#include "analysis/spatial/hardcoreplacement.h"

#include "geometry/coordinates.h"
#include "numeric/randomgenerator.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{

template <class T> std::vector<TreeBox<T>> obstacleBoxes(const Vertices<T>& obstacles, const Vector<T>& sizes)
{
  std::vector<TreeBox<T>> boxes(static_cast<std::size_t>(obstacles.getSize()));
  for (int i = 0; i < obstacles.getSize(); ++i)
  {
    TreeBox<T>& box = boxes[static_cast<std::size_t>(i)];
    box = {{0, 0, 0}, {0, 0, 0}};
    for (std::size_t k = 0; k < static_cast<std::size_t>(obstacles.getSpace()); ++k)
      box.low[k] = obstacles.data(i)[k] - sizes[i], box.high[k] = obstacles.data(i)[k] + sizes[i];
  }
  return boxes;
}

} // namespace

template <class T>
HardcorePlacement<T>::HardcorePlacement(const PositionSampler<T>& sampler, const Vector<T>& hardcoreDistances,
                                        const Vertices<T>& obstacles, const Vector<T>& obstacleSizes)
  : _sampler(sampler),
    _distances(hardcoreDistances),
    _obstacles(obstacles),
    _obstacleSizes(obstacleSizes),
    _obstacleTree(obstacleBoxes(obstacles, obstacleSizes)),
    _pattern(sampler.getSpace(), hardcoreDistances.getSize()),
    _space(sampler.getSpace())
{
  layOutCells();
}

/// About as many cells as objects at most.
template <class T> void HardcorePlacement<T>::layOutCells()
{
  if (_distances.isEmpty()) return;
  _reach = 2 * _distances.max();
  const BoundingBox<T> box = _sampler.getBoundingBox();
  const int maxCells = static_cast<int>(std::ceil(std::pow(_distances.getSize(), 1.0 / _space)));
  for (int k = 0; k < _space; ++k)
  {
    const auto axis = static_cast<std::size_t>(k);
    const T extent = box.getMaximum()[k] - box.getMinimum()[k];
    _origin[axis] = box.getMinimum()[k];
    // A little wider than the reach, so that rounding does not bring two objects too near into cells too far apart.
    const T widest = static_cast<T>(1.001) * _reach;
    const T count = extent > widest * static_cast<T>(maxCells) ? static_cast<T>(maxCells) : extent / widest;
    _numCells[axis] = std::max(1, static_cast<int>(count));
    _cellsPerLength[axis] = extent > 0 ? static_cast<T>(_numCells[axis]) / extent : T(0);
  }
  _firstInCell.resize(static_cast<std::size_t>(_numCells[0]) * static_cast<std::size_t>(_numCells[1]) *
                      static_cast<std::size_t>(_numCells[2]));
  _nextInCell.resize(static_cast<std::size_t>(_distances.getSize()));
}

template <class T> bool HardcorePlacement<T>::cannotFit() const
{
  const SpatialBoundary<T>* const boundary = _sampler.getBoundary();
  if (boundary == nullptr) return false;
  constexpr double tolerance = 1e-9, pi = std::numbers::pi;
  double sum = 0;
  for (const T distance : _distances)
  {
    const double radius = static_cast<double>(distance);
    sum += _space == 2 ? pi * radius * radius : 4 * pi / 3 * radius * radius * radius;
  }
  double room = 1; // of the box: a border that crosses itself may hold more than the area that it encloses
  for (int i = 0; i < _space; ++i)
    room *=
        static_cast<double>(boundary->getBoundingBox().getMaximum()[i] - boundary->getBoundingBox().getMinimum()[i]);
  return sum > (1 + tolerance) * room;
}

template <class T>
std::optional<Vertices<T>> HardcorePlacement<T>::attempt(RandomGenerator& generator, const ProgressSubject& subject)
{
  std::fill(_firstInCell.begin(), _firstInCell.end(), none);
  Vector<int> order(_distances.getSize());
  order.setSequence(0);
  order.shuffle(generator);
  for (const int object : order)
    if (!place(object, generator, subject)) return std::nullopt;
  return _pattern;
}

template <class T>
bool HardcorePlacement<T>::place(int object, RandomGenerator& generator, const ProgressSubject& subject)
{
  subject.throwIfCancelled("bool HardcorePlacement<T>::place(int, RandomGenerator&, const ProgressSubject&)");
  T* const position = _pattern.data(object);
  for (int i = 0; i < maxNumPositions; ++i)
  {
    _sampler.draw(generator, position, subject);
    if (!isClearOfObjects(object) || !isClearOfObstacles(object) || !isClearOfBorder(object)) continue;
    int& first = _firstInCell[indexOf(cellOf(position))];
    _nextInCell[static_cast<std::size_t>(object)] = first;
    first = object;
    return true;
  }
  return false;
}

template <class T> bool HardcorePlacement<T>::isClearOfObstacles(int object) const
{
  const T* const position = std::as_const(_pattern).data(object);
  return !_obstacleTree.findOverlap(boxAround(position, _distances[object]),
                                    [&](int obstacle)
                                    {
                                      const T apart = distance(position, _obstacles.data(obstacle), _space);
                                      return apart < _obstacleSizes[obstacle] + _distances[object];
                                    });
}

template <class T> bool HardcorePlacement<T>::isClearOfObjects(int object) const
{
  if (_reach == 0) return true;
  const T* const position = std::as_const(_pattern).data(object);
  const Cell cell = cellOf(position);
  const auto low = [&cell](std::size_t k) { return std::max(cell[k] - 1, 0); };
  const auto high = [&cell, this](std::size_t k) { return std::min(cell[k] + 1, _numCells[k] - 1); };
  for (int z = low(2); z <= high(2); ++z)
    for (int y = low(1); y <= high(1); ++y)
      for (int x = low(0); x <= high(0); ++x)
        for (int other = _firstInCell[indexOf({x, y, z})]; other != none;
             other = _nextInCell[static_cast<std::size_t>(other)])
        {
          const T apart = distance(position, std::as_const(_pattern).data(other), _space);
          if (!(apart >= _distances[object] + _distances[other])) return false;
        }
  return true;
}

template <class T> bool HardcorePlacement<T>::isClearOfBorder(int object) const
{
  const SpatialBoundary<T>* const boundary = _sampler.getBoundary();
  if (!boundary || _distances[object] == 0) return true;
  return boundary->distance(std::as_const(_pattern).data(object)) >= _distances[object];
}

template <class T> TreeBox<T> HardcorePlacement<T>::boxAround(const T* point, T radius) const
{
  TreeBox<T> box = {{0, 0, 0}, {0, 0, 0}};
  for (std::size_t k = 0; k < static_cast<std::size_t>(_space); ++k)
  {
    box.low[k] = point[k] - radius;
    box.high[k] = point[k] + radius;
  }
  return box;
}

template <class T> typename HardcorePlacement<T>::Cell HardcorePlacement<T>::cellOf(const T* point) const
{
  Cell cell = {};
  for (std::size_t k = 0; k < static_cast<std::size_t>(_space); ++k)
    cell[k] = std::clamp(static_cast<int>((point[k] - _origin[k]) * _cellsPerLength[k]), 0, _numCells[k] - 1);
  return cell;
}

template <class T> std::size_t HardcorePlacement<T>::indexOf(const Cell& cell) const
{
  const auto x = static_cast<std::size_t>(cell[0]), y = static_cast<std::size_t>(cell[1]);
  const auto z = static_cast<std::size_t>(cell[2]);
  return (z * static_cast<std::size_t>(_numCells[1]) + y) * static_cast<std::size_t>(_numCells[0]) + x;
}

GEOMETRY_INSTANTIATE_REAL(HardcorePlacement)
