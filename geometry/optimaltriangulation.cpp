#include "geometry/optimaltriangulation.h"

#include "geometry/coordinates.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace
{

/// The grid of pairs of vertices. Rows count steps on a from its vertex 0, over two laps; columns count steps on b.
template <class T> class PairGrid
{
public:
  PairGrid(const Curve<T>& a, const Curve<T>& b)
    : _twoLapsA(a), _b(b), _numStepsA(a.getNumEdges()), _numStepsB(b.getNumEdges())
  {
    _twoLapsA.append(a);
    _twoLapsA.append(a[0]);
  }

  int numStepsA() const { return _numStepsA; }
  int numStepsB() const { return _numStepsB; }
  /// Squared distance of the pair at row k and column l.
  T distance(int k, int l) const { return squaredDistance(_twoLapsA.data(k), _b.data(l < _b.getSize() ? l : 0), 3); }

private:
  Vertices<T> _twoLapsA;
  const Curve<T>& _b;
  int _numStepsA;
  int _numStepsB;
};

/// A path from (startRow, 0) to (startRow + numStepsA, numStepsB) that never steps back.
template <class T> struct GridPath
{
  int startRow;
  T cost;
  std::vector<bool> stepsOnB;
  std::vector<int> firstRows; // of each column, the rows that the path passes
  std::vector<int> lastRows;
};

/// The part of each column in which a path is searched.
struct Band
{
  std::vector<int> firstRows;
  std::vector<int> lastRows;

  std::size_t numNodes() const
  {
    std::size_t sum = 0;
    for (std::size_t l = 0; l < firstRows.size(); ++l) sum += static_cast<std::size_t>(lastRows[l] - firstRows[l] + 1);
    return sum;
  }
};

/// Finds the cheapest way to every node of a band, column by column.
template <class T> class ColumnSearch
{
public:
  ColumnSearch(const PairGrid<T>& grid, const Band& band) : _grid(grid), _band(band), _reachedOnB(band.numNodes())
  {
    for (std::size_t l = 0, offset = 0; l < band.firstRows.size(); ++l)
    {
      _offsets.push_back(offset);
      offset += static_cast<std::size_t>(band.lastRows[l] - band.firstRows[l] + 1);
    }
  }

  /// The cost of the way to the last node.
  T cost()
  {
    Column previous, current;
    for (int l = 0; l <= _grid.numStepsB(); ++l)
    {
      relaxColumn(l, previous, current);
      std::swap(previous, current);
    }
    return previous.costs.back();
  }

  /// Whether the last step of the cheapest way to a node is one on b.
  bool isReachedOnB(int k, int l) const { return _reachedOnB[_offsets[l] + (k - _band.firstRows[l])]; }

private:
  struct Column
  {
    int firstRow = 0;
    std::vector<T> costs; // of the rows from firstRow on
    std::vector<T> distances;

    bool hasRow(int k) const { return k >= firstRow && k - firstRow < static_cast<int>(costs.size()); }
  };

  void relaxColumn(int l, const Column& previous, Column& current)
  {
    constexpr T unreachable = std::numeric_limits<T>::infinity();
    const int first = _band.firstRows[l], numRows = _band.lastRows[l] - first + 1;
    current.firstRow = first;
    current.costs.resize(static_cast<std::size_t>(numRows));
    current.distances.resize(static_cast<std::size_t>(numRows));
    std::uint8_t* const reachedOnB = _reachedOnB.data() + _offsets[l];
    T costAbove = unreachable, distanceAbove = 0; // of the node one row up
    for (int i = 0; i < numRows; ++i)
    {
      const int k = first + i, left = k - previous.firstRow;
      const bool hasLeft = previous.hasRow(k);
      const T distance = _grid.distance(k, l);
      const T costOnA = costAbove + (distanceAbove + distance);
      const T costOnB = hasLeft ? previous.costs[left] + (previous.distances[left] + distance) : unreachable;
      reachedOnB[i] = hasLeft && !(costOnA < costOnB);
      costAbove = l == 0 && i == 0 ? T(0) : std::min(costOnA, costOnB);
      distanceAbove = distance;
      current.costs[i] = costAbove;
      current.distances[i] = distance;
    }
  }

  const PairGrid<T>& _grid;
  const Band& _band;
  std::vector<std::size_t> _offsets;
  std::vector<std::uint8_t> _reachedOnB;
};

/// The cheapest path from a start row within a band.
template <class T> GridPath<T> shortestPath(const PairGrid<T>& grid, int startRow, const Band& band)
{
  ColumnSearch<T> search(grid, band);
  GridPath<T> path = {startRow, search.cost(), {}, band.firstRows, band.lastRows};
  int k = startRow + grid.numStepsA(), l = grid.numStepsB();
  path.lastRows[l] = k;
  while (k > startRow || l > 0)
  {
    const bool onB = search.isReachedOnB(k, l);
    path.stepsOnB.push_back(onB);
    if (onB)
    {
      path.firstRows[l] = k;
      path.lastRows[--l] = k;
    }
    else
      --k;
  }
  path.firstRows[0] = startRow;
  std::reverse(path.stepsOnB.begin(), path.stepsOnB.end());
  return path;
}

/// The cheapest path from a start row without any bounds.
template <class T> GridPath<T> shortestPath(const PairGrid<T>& grid, int startRow)
{
  const std::size_t numColumns = static_cast<std::size_t>(grid.numStepsB()) + 1;
  return shortestPath(
      grid, startRow,
      Band{std::vector<int>(numColumns, startRow), std::vector<int>(numColumns, startRow + grid.numStepsA())});
}

/// Finds the best of all paths that start between two paths: cheapest paths of different rows need not cross, so each
/// is searched only between those already found. `best` becomes the cheapest one, of the lowest row on a tie.
template <class T>
void pathBetween(const PairGrid<T>& grid, const GridPath<T>& above, const GridPath<T>& below, GridPath<T>& best)
{
  const int startRow = (above.startRow + below.startRow) / 2;
  if (startRow == above.startRow) return;
  Band band{above.firstRows, below.lastRows};
  for (int& row : band.firstRows) row = std::max(row, startRow);
  for (int& row : band.lastRows) row = std::min(row, startRow + grid.numStepsA());
  const GridPath<T> path = shortestPath(grid, startRow, band);
  if (path.cost < best.cost || (path.cost == best.cost && path.startRow < best.startRow)) best = path;
  pathBetween(grid, above, path, best);
  pathBetween(grid, path, below, best);
}

/// Sum of the squared lengths of the edges between the curves, triangle by triangle.
template <class T> T costOf(const TriangulationCode& code, const Curve<T>& a, const Curve<T>& b)
{
  T cost = 0;
  int i = code.startA, j = code.startB;
  for (const bool isStepOnB : code.stepsOnB)
  {
    int& moving = isStepOnB ? j : i;
    const T before = squaredDistance(a.data(i), b.data(j), 3);
    moving = moving + 1 < (isStepOnB ? b : a).getSize() ? moving + 1 : 0;
    cost += before + squaredDistance(a.data(i), b.data(j), 3);
  }
  return cost;
}

/// Number of steps after which the steps on b begin that follow each other without a step on a in between, all around.
std::ptrdiff_t startOfFullTurn(const std::vector<bool>& stepsOnB)
{
  std::ptrdiff_t start = -1;
  int numRuns = 0;
  for (std::size_t k = 0; k < stepsOnB.size(); ++k)
    if (stepsOnB[k] && !stepsOnB[k > 0 ? k - 1 : stepsOnB.size() - 1])
    {
      start = static_cast<std::ptrdiff_t>(k);
      ++numRuns;
    }
  return numRuns == 1 ? start : -1;
}
} // namespace

template <class T>
TriangulationCode withoutFullTurn(const TriangulationCode& code, const Curve<T>& a, const Curve<T>& b)
{
  const std::ptrdiff_t start = startOfFullTurn(code.stepsOnB);
  if (a.isOpen() || start < 0) return code;
  const std::ptrdiff_t na = a.getSize(), nb = b.getSize();
  // From the start of the turn on: all steps on b, then all on a.
  const auto stepsOnA = std::count(code.stepsOnB.begin(), code.stepsOnB.begin() + start, false);
  TriangulationCode turn;
  turn.startA = static_cast<int>((code.startA + stepsOnA) % na);
  turn.startB = static_cast<int>((code.startB + start - stepsOnA) % nb);
  turn.stepsOnB.assign(static_cast<std::size_t>(na + nb), false);
  std::fill_n(turn.stepsOnB.begin(), nb, true);
  TriangulationCode best;
  T leastCost = std::numeric_limits<T>::infinity();
  const auto consider = [&](std::ptrdiff_t from, std::ptrdiff_t to)
  {
    TriangulationCode moved = turn;
    moved.stepsOnB.erase(moved.stepsOnB.begin() + from);
    moved.stepsOnB.insert(moved.stepsOnB.begin() + to, turn.stepsOnB[from]);
    const T cost = costOf(moved, a, b);
    if (!best.stepsOnB.empty() && !(cost < leastCost)) return;
    best = moved;
    leastCost = cost;
  };
  for (std::ptrdiff_t k = 1; k < nb; ++k) consider(nb, k);          // the first step on a among those on b
  for (std::ptrdiff_t k = nb; k < nb + na - 1; ++k) consider(0, k); // the first step on b among those on a
  return best;
}

template <class T> TriangulationCode computeOptimalTriangulationCode(const Curve<T>& a, const Curve<T>& b, T* cost)
{
  const PairGrid<T> grid(a, b);
  const GridPath<T> first = shortestPath(grid, 0);
  GridPath<T> best = first;
  if (a.isClosed()) pathBetween(grid, first, shortestPath(grid, a.getSize()), best);
  if (cost) *cost = best.cost;
  return {best.startRow % a.getSize(), 0, best.stepsOnB};
}

template TriangulationCode withoutFullTurn(const TriangulationCode&, const Curve<float>&, const Curve<float>&);
template TriangulationCode withoutFullTurn(const TriangulationCode&, const Curve<double>&, const Curve<double>&);
template TriangulationCode withoutFullTurn(const TriangulationCode&, const Curve<long double>&,
                                           const Curve<long double>&);
template TriangulationCode computeOptimalTriangulationCode(const Curve<float>&, const Curve<float>&, float*);
template TriangulationCode computeOptimalTriangulationCode(const Curve<double>&, const Curve<double>&, double*);
template TriangulationCode computeOptimalTriangulationCode(const Curve<long double>&, const Curve<long double>&,
                                                           long double*);
