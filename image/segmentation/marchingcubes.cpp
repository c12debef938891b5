#include "image/segmentation/marchingcubes.h"

#include "image/segmentation/signbits.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <limits>
#include <omp.h>
#include <string>
#include <utility>

namespace
{
constexpr const char* buildMeshSignature =
    "TriMesh<float> MarchingCubes<T>::buildMesh(const VoxelMatrix<T>&, Level, bool)";

/// Corner values: wide enough for the differences of integers, and for products of the smallest and largest values.
template <class T> using Value =
    std::conditional_t<std::is_integral_v<T> || std::is_same_v<T, float>, double, long double>;

using Word = SignRow::Word;

/// Directions of grid edges, numbered by the coordinate that changes along them.
enum Direction
{
  AcrossRows,
  AcrossColumns,
  AcrossPlanes
};

/// The points at which the surface is sampled: the voxels and, for a closed surface, a frame of one point around them.
template <class T> class Grid
{
public:
  Grid(const VoxelMatrix<T>& volume, Real<T> level, bool closed)
    : numRows(volume.getSize1() + 2 * closed),
      numColumns(volume.getSize2() + 2 * closed),
      numPlanes(volume.getSize3() + 2 * closed),
      numWords(SignRow::numWordsOf(numColumns)),
      frame(closed),
      _volume(volume),
      _level(level)
  {
  }

  bool hasCubes() const { return _volume.getNumVoxels() > 0 && numRows > 1 && numColumns > 1 && numPlanes > 1; }

  /// The voxels of row i of plane k; nullptr in the frame.
  const T* row(int i, int k) const
  {
    const bool isInside = _volume.contains(i - frame, 0, k - frame);
    return isInside ? &_volume(i - frame, 0, k - frame) : nullptr;
  }
  /// The value of point j of a row: voxel minus level, -1 in the frame.
  Value<T> value(const T* row, int j) const
  {
    const int column = j - frame;
    if (row == nullptr || column < 0 || column >= _volume.getSize2()) return -1;
    return static_cast<Value<T>>(row[column]) - static_cast<Value<T>>(_level);
  }
  /// Sets the bits of the points of row i of plane k whose value is 0 or more.
  void computeSigns(int i, int k, Word* signs) const
  {
    std::fill_n(signs, numWords, Word(0));
    const T* const voxels = row(i, k);
    const bool isAnyAbove = _level <= static_cast<Real<T>>(std::numeric_limits<T>::max());
    if (voxels == nullptr || !isAnyAbove) return;
    computeSignBits(voxels, _volume.getSize2(), threshold(), signs);
    if (frame > 0) shiftSignBits(signs, numWords);
  }

  const int numRows, numColumns, numPlanes;
  const int numWords; // of the sign bits of a row
  const int frame;    // its width: the index of the first voxel on each axis

private:
  /// The smallest T that is not below the level.
  T threshold() const
  {
    if constexpr (std::is_integral_v<T>)
      return static_cast<T>(std::max(std::ceil(_level), static_cast<Real<T>>(std::numeric_limits<T>::min())));
    else
      return _level;
  }

  const VoxelMatrix<T>& _volume;
  const Real<T> _level;
};

/// The place of a crossing between two values of different signs, as a share of the edge.
template <class V> V crossingOf(V first, V second)
{
  const V share = first / (first - second);
  return share >= 0 && share <= 1 ? share : V(0.5); // infinite values, or undefined ones
}

/// Numbers of mesh elements that belong to a plane of the grid: vertices on edges that begin on it, and what lies in
/// the cubes above it. Also used for the numbers of the first ones of a plane.
struct MeshCounts
{
  std::int64_t numVertices[3] = {}; // by direction
  std::int64_t numInsideVertices = 0;
  std::int64_t numTriangles = 0;
};

/// Signs in one plane of the grid, and the number of the first vertex on the edges in each of its rows.
class GridPlane
{
public:
  template <class T> explicit GridPlane(const Grid<T>& grid) { resize(grid.numRows, grid.numColumns); }

  void resize(int numRows, int numPoints)
  {
    _numPoints = numPoints;
    _numWords = static_cast<std::size_t>(SignRow::numWordsOf(numPoints));
    _signs.resize(static_cast<std::size_t>(numRows) * _numWords);
    firstAcrossRows.resize(static_cast<std::size_t>(numRows));
    firstAcrossColumns.resize(static_cast<std::size_t>(numRows));
  }

  SignRow row(int i) const { return {_signs.data() + static_cast<std::size_t>(i) * _numWords, _numPoints}; }
  int getNumRows() const { return static_cast<int>(firstAcrossRows.size()); }
  template <class T> void computeSigns(const Grid<T>& grid, int k)
  {
    for (int i = 0; i < grid.numRows; ++i)
      grid.computeSigns(i, k, _signs.data() + static_cast<std::size_t>(i) * _numWords);
  }
  void numberVertices(const MeshCounts& start);

  std::vector<int> firstAcrossRows, firstAcrossColumns;

private:
  std::vector<Word> _signs;
  std::size_t _numWords = 0;
  int _numPoints = 0;
};

void GridPlane::numberVertices(const MeshCounts& start)
{
  int nextAcrossRows = static_cast<int>(start.numVertices[AcrossRows]);
  int nextAcrossColumns = static_cast<int>(start.numVertices[AcrossColumns]);
  for (std::size_t i = 0; i < firstAcrossRows.size(); ++i)
  {
    firstAcrossRows[i] = nextAcrossRows;
    firstAcrossColumns[i] = nextAcrossColumns;
    const int row = static_cast<int>(i);
    if (row + 1 < getNumRows()) nextAcrossRows += this->row(row).countChanges(this->row(row + 1));
    nextAcrossColumns += this->row(row).countChanges();
  }
}

void numberVerticesBetween(const GridPlane& lower, const GridPlane& upper, const MeshCounts& start,
                           std::vector<int>& firstAcrossPlanes)
{
  int next = static_cast<int>(start.numVertices[AcrossPlanes]);
  for (int i = 0; i < lower.getNumRows(); ++i)
  {
    firstAcrossPlanes[static_cast<std::size_t>(i)] = next;
    next += lower.row(i).countChanges(upper.row(i));
  }
}

/// Calls visit(j, configuration) for each cube j between rows i and i + 1 of two planes that the surface passes.
template <class Visit> void forEachCrossedCube(int i, const GridPlane& lower, const GridPlane& upper, Visit visit)
{
  const SignRow rows[4] = {lower.row(i), lower.row(i + 1), upper.row(i), upper.row(i + 1)};
  for (int w = 0; w < rows[0].getNumWords(); ++w)
  {
    const Word corners[8] = {rows[0][w], rows[0].next(w), rows[1].next(w), rows[1][w],
                             rows[2][w], rows[2].next(w), rows[3].next(w), rows[3][w]};
    Word any = 0, all = ~Word(0);
    for (const Word corner : corners)
    {
      any |= corner;
      all &= corner;
    }
    forEachPoint(any & ~all & rows[0].withNext(w), w,
                 [&corners, &visit](int j)
                 {
                   int configuration = 0;
                   for (int n = 0; n < 8; ++n) configuration |= static_cast<int>(corners[n] >> (j & 63) & 1) << n;
                   visit(j, configuration);
                 });
  }
}

/// Numbers of the vertices on the edges of a row of cubes, carried from one crossed cube to the next.
class EdgeVertices
{
public:
  EdgeVertices(int i, const GridPlane& lower, const GridPlane& upper, const std::vector<int>& firstAcrossPlanes)
  {
    const std::size_t front = static_cast<std::size_t>(i), back = front + 1;
    _vertices[0] = lower.firstAcrossColumns[front];
    _vertices[2] = lower.firstAcrossColumns[back];
    _vertices[4] = upper.firstAcrossColumns[front];
    _vertices[6] = upper.firstAcrossColumns[back];
    _vertices[3] = lower.firstAcrossRows[front];
    _vertices[7] = upper.firstAcrossRows[front];
    _vertices[8] = firstAcrossPlanes[front];
    _vertices[11] = firstAcrossPlanes[back];
  }

  /// The edges on the far side of a cube carry the vertices behind those of the near side.
  void enter(int crossedEdges)
  {
    _vertices[1] = _vertices[3] + (crossedEdges >> 3 & 1);
    _vertices[5] = _vertices[7] + (crossedEdges >> 7 & 1);
    _vertices[9] = _vertices[8] + (crossedEdges >> 8 & 1);
    _vertices[10] = _vertices[11] + (crossedEdges >> 11 & 1);
  }
  /// What was the far side is the near side of the next cube.
  void leave(int crossedEdges)
  {
    for (const int edge : {0, 2, 4, 6}) _vertices[edge] += crossedEdges >> edge & 1;
    _vertices[3] = _vertices[1];
    _vertices[7] = _vertices[5];
    _vertices[8] = _vertices[9];
    _vertices[11] = _vertices[10];
  }
  void setInsideVertex(int vertex) { _vertices[12] = vertex; }

  /// Writes the triangles of a tiling and returns the place behind them.
  int* addCubeTriangles(const CubeTiling& tiling, int* indexes) const
  {
    const signed char* edge = tiling.edges;
    const int second = tiling.isReversed ? 2 : 1;
    for (int n = 0; n < tiling.numTriangles; ++n, edge += 3, indexes += 3)
    {
      indexes[0] = _vertices[edge[0]];
      indexes[1] = _vertices[edge[second]];
      indexes[2] = _vertices[edge[3 - second]];
    }
    return indexes;
  }

private:
  int _vertices[13] = {}; // by the codes of a tiling; those of edges that are not crossed mean nothing
};

/// What one thread needs to work through a slab of planes.
template <class T> struct Workspace
{
  explicit Workspace(const Grid<T>& grid) : lower(grid), upper(grid), firstAcrossPlanes(lower.firstAcrossRows) {}

  GridPlane lower, upper;
  std::vector<int> firstAcrossPlanes; // by row: vertices on the edges between the two planes
};

/// Fills the arrays of a mesh. Slabs of planes are worked on by themselves: first all are counted, which tells where
/// the elements of each plane begin in the arrays, then all are filled in.
template <class T> class MeshBuilder
{
public:
  MeshBuilder(const Grid<T>& grid, InteriorTest interiorTest) : _grid(grid), _interiorTest(interiorTest) {}

  /// Counts the elements of the planes first to last - 1.
  void count(int first, int last, Workspace<T>& workspace, MeshCounts* counts) const;
  /// Writes the elements of the same planes, given where they begin.
  void fill(int first, int last, Workspace<T>& workspace, const MeshCounts* starts, float* vertices,
            int* triangles) const;

private:
  using V = Value<T>;

  MeshCounts countPlane(int k, const GridPlane& lower, const GridPlane& upper) const;
  void computeVertices(int k, const Workspace<T>& workspace, const MeshCounts& start, float* vertices) const;
  void addTriangles(int k, const Workspace<T>& workspace, const MeshCounts& start, float* vertices,
                    int* triangles) const;
  void addVertex(Direction direction, const int (&point)[3], V first, V second, float*& vertex) const;
  void buildInsideVertex(const int (&point)[3], int crossedEdges, float* vertex) const;
  void fillCube(const int (&point)[3], V (&values)[8]) const;
  CubeTiling tilingAt(const int (&point)[3], int configuration) const;

  const Grid<T>& _grid;
  InteriorTest _interiorTest;
};

template <class T> void MeshBuilder<T>::count(int first, int last, Workspace<T>& workspace, MeshCounts* counts) const
{
  workspace.lower.computeSigns(_grid, first);
  for (int k = first; k < last; ++k)
  {
    if (k + 1 < _grid.numPlanes) workspace.upper.computeSigns(_grid, k + 1);
    counts[k] = countPlane(k, workspace.lower, workspace.upper);
    std::swap(workspace.lower, workspace.upper);
  }
}

template <class T> MeshCounts MeshBuilder<T>::countPlane(int k, const GridPlane& lower, const GridPlane& upper) const
{
  MeshCounts counts;
  const bool hasUpper = k + 1 < _grid.numPlanes;
  for (int i = 0; i < _grid.numRows; ++i)
  {
    counts.numVertices[AcrossColumns] += lower.row(i).countChanges();
    if (hasUpper) counts.numVertices[AcrossPlanes] += lower.row(i).countChanges(upper.row(i));
    if (i + 1 == _grid.numRows) break;
    counts.numVertices[AcrossRows] += lower.row(i).countChanges(lower.row(i + 1));
    if (!hasUpper) continue;
    forEachCrossedCube(i, lower, upper,
                       [&](int j, int configuration)
                       {
                         const CubeTiling tiling = tilingAt({i, j, k}, configuration);
                         counts.numTriangles += tiling.numTriangles;
                         counts.numInsideVertices += tiling.hasInsideVertex;
                       });
  }
  return counts;
}

template <class T> void MeshBuilder<T>::fill(int first, int last, Workspace<T>& workspace, const MeshCounts* starts,
                                             float* vertices, int* triangles) const
{
  auto& [lower, upper, firstAcrossPlanes] = workspace;
  lower.computeSigns(_grid, first);
  lower.numberVertices(starts[first]);
  for (int k = first; k < last; ++k)
  {
    if (k + 1 < _grid.numPlanes)
    {
      upper.computeSigns(_grid, k + 1);
      upper.numberVertices(starts[k + 1]);
      numberVerticesBetween(lower, upper, starts[k], firstAcrossPlanes);
      addTriangles(k, workspace, starts[k], vertices, triangles);
    }
    computeVertices(k, workspace, starts[k], vertices);
    std::swap(lower, upper);
  }
}

template <class T> void MeshBuilder<T>::computeVertices(int k, const Workspace<T>& workspace, const MeshCounts& start,
                                                        float* vertices) const
{
  float* next[3];
  for (const Direction direction : {AcrossRows, AcrossColumns, AcrossPlanes})
    next[direction] = vertices + 3 * start.numVertices[direction];
  for (int i = 0; i < _grid.numRows; ++i)
  {
    const SignRow signs = workspace.lower.row(i);
    const T* const row = _grid.row(i, k);
    for (int w = 0; w < signs.getNumWords(); ++w)
    {
      const auto add = [&](Direction direction, Word changes, const T* other, int step)
      {
        forEachPoint(
            changes, w,
            [&](int j) {
              addVertex(direction, {i, j, k}, _grid.value(row, j), _grid.value(other, j + step), next[direction]);
            });
      };
      if (i + 1 < _grid.numRows) add(AcrossRows, signs[w] ^ workspace.lower.row(i + 1)[w], _grid.row(i + 1, k), 0);
      add(AcrossColumns, signs.changes(w), row, 1);
      if (k + 1 < _grid.numPlanes) add(AcrossPlanes, signs[w] ^ workspace.upper.row(i)[w], _grid.row(i, k + 1), 0);
    }
  }
}

template <class T>
void MeshBuilder<T>::addVertex(Direction direction, const int (&point)[3], V first, V second, float*& vertex) const
{
  for (int axis = 0; axis < 3; ++axis) vertex[axis] = static_cast<float>(point[axis] - _grid.frame);
  vertex[direction] = static_cast<float>(point[direction] - _grid.frame + crossingOf(first, second));
  vertex += 3;
}

template <class T> void MeshBuilder<T>::addTriangles(int k, const Workspace<T>& workspace, const MeshCounts& start,
                                                     float* vertices, int* triangles) const
{
  const auto& [lower, upper, firstAcrossPlanes] = workspace;
  int* next = triangles + 3 * start.numTriangles;
  int nextInside = static_cast<int>(start.numInsideVertices);
  for (int i = 0; i + 1 < _grid.numRows; ++i)
  {
    EdgeVertices edgeVertices(i, lower, upper, firstAcrossPlanes);
    forEachCrossedCube(i, lower, upper,
                       [&](int j, int configuration)
                       {
                         const int crossedEdges =
                             cubeConfigurations[static_cast<std::size_t>(configuration)].crossedEdges;
                         const CubeTiling tiling = tilingAt({i, j, k}, configuration);
                         if (tiling.hasInsideVertex)
                         {
                           buildInsideVertex({i, j, k}, crossedEdges, vertices + 3L * nextInside);
                           edgeVertices.setInsideVertex(nextInside++);
                         }
                         edgeVertices.enter(crossedEdges);
                         next = edgeVertices.addCubeTriangles(tiling, next);
                         edgeVertices.leave(crossedEdges);
                       });
  }
}

template <class T> CubeTiling MeshBuilder<T>::tilingAt(const int (&point)[3], int configuration) const
{
  const CubeConfiguration& known = cubeConfigurations[static_cast<std::size_t>(configuration)];
  if (!known.isAmbiguous) return known.tiling;
  V values[8];
  fillCube(point, values);
  return CubeTriangulation<V>(values, _interiorTest).getTiling(configuration);
}

/// Offsets (row, column, plane) of the corners from the first point of a cube.
constexpr int cornerOffsets[8][3] = {{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0},
                                     {0, 0, 1}, {0, 1, 1}, {1, 1, 1}, {1, 0, 1}};

template <class T> void MeshBuilder<T>::fillCube(const int (&point)[3], V (&values)[8]) const
{
  for (int n = 0; n < 8; ++n)
  {
    const int* const offset = cornerOffsets[n];
    values[n] = _grid.value(_grid.row(point[0] + offset[0], point[2] + offset[2]), point[1] + offset[1]);
  }
}

/// The mean of the vertices on the crossed edges of a cube.
template <class T> void MeshBuilder<T>::buildInsideVertex(const int (&point)[3], int crossedEdges, float* vertex) const
{
  V values[8];
  fillCube(point, values);
  V sum[3] = {};
  for (int edge = 0; edge < 12; ++edge)
  {
    if ((crossedEdges >> edge & 1) == 0) continue;
    const int first = cubeEdges[edge][0], second = cubeEdges[edge][1];
    const V share = crossingOf(values[first], values[second]);
    for (int axis = 0; axis < 3; ++axis)
      sum[axis] += cornerOffsets[first][axis] + share * (cornerOffsets[second][axis] - cornerOffsets[first][axis]);
  }
  const int count = std::popcount(static_cast<unsigned>(crossedEdges));
  for (int axis = 0; axis < 3; ++axis) vertex[axis] = static_cast<float>(point[axis] - _grid.frame + sum[axis] / count);
}

/// Replaces the counts of the planes by the numbers of their first elements and returns those behind the last.
MeshCounts toStarts(std::vector<MeshCounts>& counts)
{
  MeshCounts next;
  const auto number = [&counts, &next](auto member)
  {
    for (MeshCounts& plane : counts) member(next) += std::exchange(member(plane), member(next));
  };
  for (const Direction direction : {AcrossRows, AcrossColumns, AcrossPlanes})
  {
    if (direction != AcrossRows) next.numVertices[direction] = next.numVertices[direction - 1];
    number([direction](MeshCounts& c) -> std::int64_t& { return c.numVertices[direction]; });
  }
  next.numInsideVertices = next.numVertices[AcrossPlanes];
  number([](MeshCounts& c) -> std::int64_t& { return c.numInsideVertices; });
  number([](MeshCounts& c) -> std::int64_t& { return c.numTriangles; });
  return next;
}

void requireCountable(const MeshCounts& totals)
{
  constexpr std::int64_t largest = std::numeric_limits<int>::max();
  if (totals.numInsideVertices > largest || totals.numTriangles > largest)
    throw RangeError(buildMeshSignature, "The surface has more vertices or triangles than a mesh can number");
}
} // namespace

template <class T> template <class Workspace, class Work>
void MarchingCubes<T>::forEachSlab(int numPlanes, std::vector<Workspace>& workspaces, Work work)
{
  constexpr int slabSize = 16;
  const int numSlabs = (numPlanes + slabSize - 1) / slabSize;
  const ProgressStep step(*this, "Marching cubes", numSlabs);
  std::atomic<int> numDone = 0;
#pragma omp parallel for schedule(dynamic) if (numSlabs > 1)
  for (int slab = 0; slab < numSlabs; ++slab)
  {
    if (isCancelled()) continue;
    const int first = slab * slabSize, thread = omp_get_thread_num();
    work(first, std::min(first + slabSize, numPlanes), workspaces[static_cast<std::size_t>(thread)]);
    ++numDone;
    if (thread == 0) progress(numDone); // observers hear of it from the calling thread only
  }
  throwIfCancelled(buildMeshSignature);
}

template <class T> void MarchingCubes<T>::requireFitting(double numVertices, double numTriangles) const
{
  constexpr double bytesPerVertex = 2 * 3 * sizeof(float), bytesPerTriangle = 3 * sizeof(int); // two: normals
  const double numBytes = numVertices * bytesPerVertex + numTriangles * bytesPerTriangle;
  if (numBytes <= _memoryLimit) return;
  constexpr double mebibyte = 1 << 20;
  const auto inMebibytes = [](double bytes) { return std::to_string(static_cast<long>(std::ceil(bytes / mebibyte))); };
  throw SizeError(buildMeshSignature, "The surface takes " + inMebibytes(numBytes) + " MiB, and there are " +
                                          inMebibytes(_memoryLimit) + " for it");
}

template <class T> TriMesh<float> MarchingCubes<T>::buildMesh(const VoxelMatrix<T>& volume, Level level, bool closed)
{
  if (!std::isfinite(level)) throw ValueError(buildMeshSignature, "The level is not a finite number");
  const Grid<T> grid(volume, level, closed);
  if (!grid.hasCubes()) return TriMesh<float>();
  const MeshBuilder<T> builder(grid, _interiorTest);
  std::vector<Workspace<T>> workspaces(static_cast<std::size_t>(omp_get_max_threads()), Workspace<T>(grid));
  std::vector<MeshCounts> counts(static_cast<std::size_t>(grid.numPlanes));
  const ProgressStep step(*this, "Marching cubes", 3); // counting, filling in, normals

  forEachSlab(grid.numPlanes, workspaces,
              [&](int first, int last, Workspace<T>& workspace)
              { builder.count(first, last, workspace, counts.data()); });
  progress(1);
  const MeshCounts totals = toStarts(counts);
  requireCountable(totals);
  requireFitting(static_cast<double>(totals.numInsideVertices), static_cast<double>(totals.numTriangles));
  BufferVector<float> vertices(3 * static_cast<std::size_t>(totals.numInsideVertices));
  BufferVector<int> triangles(3 * static_cast<std::size_t>(totals.numTriangles));
  forEachSlab(grid.numPlanes, workspaces,
              [&](int first, int last, Workspace<T>& workspace)
              { builder.fill(first, last, workspace, counts.data(), vertices.data(), triangles.data()); });

  progress(2);
  throwIfCancelled(buildMeshSignature);
  TriMesh<float> mesh(3, std::move(vertices), std::move(triangles));
  if (_areNormalsWanted) mesh.computeNormals();
  return mesh;
}

IMAGE_INSTANTIATE(MarchingCubes)
