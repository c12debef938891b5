#include "image/segmentation/cubetriangulation.h"

#include "image/segmentation/marchingcubestables.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

using namespace MarchingCubesTables;

namespace
{
constexpr int faceCorners[6][4] = {{0, 4, 5, 1}, {1, 5, 6, 2}, {2, 6, 7, 3}, {3, 7, 4, 0}, {0, 3, 2, 1}, {4, 7, 6, 5}};

/// Corner n lies at x + 2 y + 4 z = cornerPlace[n]; the same table turns places into corners.
constexpr int cornerPlace[8] = {0, 1, 3, 2, 4, 5, 7, 6};
constexpr int axisX = 1, axisY = 2, axisZ = 4;

constexpr int insideVertex = 12;

template <std::size_t N> constexpr CubeTiling tilingOf(const signed char (&edges)[N])
{
  CubeTiling tiling;
  tiling.edges = edges;
  tiling.numTriangles = static_cast<int>(N / 3);
  tiling.hasInsideVertex = std::count(edges, edges + N, insideVertex) > 0;
  return tiling;
}

template <std::size_t N> constexpr CubeTiling reversedTilingOf(const signed char (&edges)[N])
{
  CubeTiling tiling = tilingOf(edges);
  tiling.isReversed = true;
  return tiling;
}

constexpr CubeTiling unambiguousTiling(int cubeCase, int row)
{
  if (cubeCase == 1) return tilingOf(TILING1[row]);
  if (cubeCase == 2) return tilingOf(TILING2[row]);
  if (cubeCase == 5) return tilingOf(TILING5[row]);
  if (cubeCase == 8) return tilingOf(TILING8[row]);
  if (cubeCase == 9) return tilingOf(TILING9[row]);
  if (cubeCase == 11) return tilingOf(TILING11[row]);
  if (cubeCase == 14) return tilingOf(TILING14[row]);
  return {};
}

constexpr std::array<CubeConfiguration, 256> allConfigurations()
{
  std::array<CubeConfiguration, 256> configurations;
  for (int index = 0; index < 256; ++index)
  {
    CubeConfiguration& configuration = configurations[static_cast<std::size_t>(index)];
    for (int e = 0; e < 12; ++e)
      configuration.crossedEdges |= ((index >> cubeEdges[e][0] ^ index >> cubeEdges[e][1]) & 1) << e;
    const int cubeCase = CASES[index][0];
    configuration.tiling = unambiguousTiling(cubeCase, CASES[index][1]);
    configuration.isAmbiguous = cubeCase != 0 && configuration.tiling.numTriangles == 0;
  }
  return configurations;
}

/// Values on four parallel edges of a cube at the same height: A on the edge from a given corner along an axis, C on
/// the edge opposite to it, B and D on the other two. Between two heights they are linear.
template <class Value> struct ParallelEdges
{
  Value a, b, c, d;     // at height 0
  Value da, db, dc, dd; // from height 0 to height 1

  ParallelEdges(const Value* values, int corner, int axis)
  {
    const int place = cornerPlace[corner];
    const int firstAxis = axis == axisX ? axisY : axisX, secondAxis = axis == axisZ ? axisY : axisZ;
    const auto setEdge = [values, axis](int from, Value& start, Value& difference)
    {
      start = values[cornerPlace[from]];
      difference = values[cornerPlace[from ^ axis]] - start;
    };
    setEdge(place, a, da);
    setEdge(place ^ firstAxis, b, db);
    setEdge(place ^ firstAxis ^ secondAxis, c, dc);
    setEdge(place ^ secondAxis, d, dd);
  }

  /// AC - BD is a quadratic function of the height; this is its leading coefficient.
  Value curvature() const { return da * dc - db * dd; }
  /// The height at which AC - BD is extreme; not within 0 to 1, or no number, when there is none inside the cube.
  Value saddleHeight() const { return -(c * da + a * dc - d * db - b * dd) / (2 * curvature()); }

  void moveTo(Value height)
  {
    a += da * height;
    b += db * height;
    c += dc * height;
    d += dd * height;
  }

  /// Whether the positive regions are joined across the section of the cube at this height.
  bool isJoined() const
  {
    const int numPositive = (a >= 0) + (b >= 0) + (c >= 0) + (d >= 0);
    if (numPositive != 2) return numPositive > 2;
    if (a >= 0 && c >= 0) return a * c > b * d;
    if (b >= 0 && d >= 0) return b * d > a * c;
    return false;
  }
};
} // namespace

constexpr std::array<CubeConfiguration, 256> cubeConfigurations = allConfigurations();

template <class Value> CubeTiling CubeTriangulation<Value>::getTiling(int configuration) const
{
  const int row = CASES[configuration][1];
  switch (CASES[configuration][0])
  {
  case 3:
    return testFace(TEST3[row]) ? tilingOf(TILING3_2[row]) : tilingOf(TILING3_1[row]);
  case 4:
    return tilingOfCase4(row);
  case 6:
    return tilingOfCase6(row);
  case 7:
    return tilingOfCase7(row);
  case 10:
    return tilingOfCase10(row);
  case 12:
    return tilingOfCase12(row);
  case 13:
    return tilingOfCase13(row);
  default:
    return cubeConfigurations[static_cast<std::size_t>(configuration)].tiling;
  }
}

template <class Value> bool CubeTriangulation<Value>::testFace(int code) const
{
  const int face = std::abs(code);
  if (face < 1 || face > 6)
  {
    std::cout << "Invalid face code " << code << '\n';
    return false;
  }
  const int* const corners = faceCorners[face - 1];
  const Value a = _values[corners[0]], b = _values[corners[1]], c = _values[corners[2]], d = _values[corners[3]];
  const Value ac = a * c, bd = b * d; // one of them is the product of the two positive corners
  const bool isJoined = a >= 0 ? ac >= bd : bd >= ac;
  return isJoined == (code > 0);
}

template <class Value> bool CubeTriangulation<Value>::testInterior(int cubeCase, int code, int referenceEdge) const
{
  switch (cubeCase)
  {
  case 4:
  case 10:
    return testInteriorAtSaddle(code);
  case 6:
  case 7:
  case 12:
  case 13:
    return testInteriorAtEdge(code, referenceEdge);
  default:
    std::cout << "Invalid ambiguous case " << cubeCase << '\n';
    return false;
  }
}

// Without a saddle inside the cube there is no tunnel. The published test answers by the sign of the code instead,
// which is wrong for six positive corners.
template <class Value> bool CubeTriangulation<Value>::testInteriorAtSaddle(int code) const
{
  ParallelEdges<Value> edges(_values, 0, axisZ);
  const Value height = edges.saddleHeight();
  if (!(height >= 0 && height <= 1)) return true;
  edges.moveTo(height);
  return edges.isJoined() == (code < 0);
}

template <class Value> bool CubeTriangulation<Value>::testInteriorAtEdge(int code, int edge) const
{
  if (edge < 0 || edge > 11)
  {
    std::cout << "Invalid edge " << edge << '\n';
    return false;
  }
  const int start = cubeEdges[edge][0], end = cubeEdges[edge][1];
  ParallelEdges<Value> edges(_values, start, cornerPlace[start] ^ cornerPlace[end]);
  edges.moveTo(_values[start] / (_values[start] - _values[end]));
  edges.a = 0; // free of rounding
  return edges.isJoined() == (code < 0);
}

template <class Value>
bool CubeTriangulation<Value>::hasTunnel(int cubeCase, int code, int referenceEdge, bool isOpposite) const
{
  if (_interiorTest == InteriorTest::Published)
    return cubeCase == 7 ? testInterior(7, code, referenceEdge)
                         : !isOpposite && !testInterior(cubeCase, code, referenceEdge);
  const int sign = (code > 0) == isOpposite ? -1 : 1;
  for (int corner = 0; corner < 4; ++corner) // one end of each body diagonal
  {
    const int opposite = cornerPlace[cornerPlace[corner] ^ 7];
    if ((_values[corner] >= 0) == (sign > 0) && (_values[opposite] >= 0) == (sign > 0) && signThrough(corner) == sign)
      return true;
  }
  return false;
}

/// The sign of the regions at a corner and at the opposite one when they meet inside the cube, otherwise 0.
template <class Value> int CubeTriangulation<Value>::signThrough(int corner) const
{
  for (const int axis : {axisX, axisY, axisZ})
  {
    ParallelEdges<Value> edges(_values, corner, axis);
    const Value height = edges.saddleHeight();
    if (!(edges.curvature() < 0 && height > 0 && height < 1)) continue;
    edges.moveTo(height);
    if (edges.a * edges.c > edges.b * edges.d && (edges.a >= 0) == (edges.c >= 0)) return edges.a >= 0 ? 1 : -1;
  }
  return 0;
}

template <class Value> CubeTiling CubeTriangulation<Value>::tilingOfCase4(int row) const
{
  return hasTunnel(4, TEST4[row], 0, false) ? tilingOf(TILING4_2[row]) : tilingOf(TILING4_1[row]);
}

template <class Value> CubeTiling CubeTriangulation<Value>::tilingOfCase6(int row) const
{
  const signed char* const test = TEST6[row];
  if (testFace(test[0])) return tilingOf(TILING6_2[row]);
  return hasTunnel(6, test[1], test[2], false) ? tilingOf(TILING6_1_2[row]) : tilingOf(TILING6_1_1[row]);
}

template <class Value> CubeTiling CubeTriangulation<Value>::tilingOfCase7(int row) const
{
  const signed char* const test = TEST7[row];
  switch (testFace(test[0]) + 2 * testFace(test[1]) + 4 * testFace(test[2]))
  {
  case 0:
    return tilingOf(TILING7_1[row]);
  case 1:
    return tilingOf(TILING7_2[row][0]);
  case 2:
    return tilingOf(TILING7_2[row][1]);
  case 4:
    return tilingOf(TILING7_2[row][2]);
  case 3:
    return tilingOf(TILING7_3[row][0]);
  case 5:
    return tilingOf(TILING7_3[row][1]);
  case 6:
    return tilingOf(TILING7_3[row][2]);
  default:
    return hasTunnel(7, test[3], test[4], true) ? tilingOf(TILING7_4_2[row]) : tilingOf(TILING7_4_1[row]);
  }
}

// With both faces joined, a tunnel is that of the configuration with all signs changed.
template <class Value> CubeTiling CubeTriangulation<Value>::tilingOfCase10(int row) const
{
  const signed char* const test = TEST10[row];
  const bool first = testFace(test[0]), second = testFace(test[1]);
  if (first != second) return first ? tilingOf(TILING10_2[row]) : tilingOf(TILING10_2_[row]);
  const bool isTunnel = hasTunnel(10, test[2], 0, first);
  if (first) return isTunnel ? reversedTilingOf(TILING10_1_2[5 - row]) : tilingOf(TILING10_1_1_[row]);
  return isTunnel ? tilingOf(TILING10_1_2[row]) : tilingOf(TILING10_1_1[row]);
}

template <class Value> CubeTiling CubeTriangulation<Value>::tilingOfCase12(int row) const
{
  const signed char* const test = TEST12[row];
  const bool first = testFace(test[0]), second = testFace(test[1]);
  if (first != second) return first ? tilingOf(TILING12_2[row]) : tilingOf(TILING12_2_[row]);
  const bool isTunnel = hasTunnel(12, test[2], test[3], first);
  if (first) return isTunnel ? reversedTilingOf(TILING12_1_2[23 - row]) : tilingOf(TILING12_1_1_[row]);
  return isTunnel ? tilingOf(TILING12_1_2[row]) : tilingOf(TILING12_1_1[row]);
}

template <class Value> CubeTiling CubeTriangulation<Value>::tilingOfCase13(int row) const
{
  int faces = 0;
  for (int n = 0; n < 6; ++n) faces |= testFace(TEST13[row][n]) << n;
  const int subCase = SUBCONFIG13[faces];
  if (subCase < 0)
  {
    std::cout << "Marching Cubes: impossible case 13?\n";
    return {};
  }
  if (subCase == 0) return tilingOf(TILING13_1[row]);
  if (subCase <= 6) return tilingOf(TILING13_2[row][subCase - 1]);
  if (subCase <= 18) return tilingOf(TILING13_3[row][subCase - 7]);
  if (subCase <= 22) return tilingOf(TILING13_4[row][subCase - 19]);
  if (subCase <= 26) return tilingOfCase13_5(row, subCase - 23);
  if (subCase <= 38) return tilingOf(TILING13_3_[row][subCase - 27]);
  if (subCase <= 44) return tilingOf(TILING13_2_[row][subCase - 39]);
  return tilingOf(TILING13_1_[row]);
}

template <class Value> CubeTiling CubeTriangulation<Value>::tilingOfCase13_5(int row, int variant) const
{
  if (_interiorTest == InteriorTest::Exact) return exactTilingOfCase13_5(row, variant);
  const int referenceEdge = TILING13_5_1[row][variant][0];
  return testInterior(13, TEST13[row][6], referenceEdge) ? tilingOf(TILING13_5_1[row][variant])
                                                         : tilingOf(TILING13_5_2[row][variant]);
}

// A tunnel can start at the isolated positive corner or at the isolated negative one. The latter is that of the other
// row with all signs changed.
template <class Value> CubeTiling CubeTriangulation<Value>::exactTilingOfCase13_5(int row, int variant) const
{
  constexpr int complementaryVariant[2][4] = {{2, 0, 3, 1}, {1, 3, 0, 2}};
  const int sign = signThrough(isolatedPositiveCorner());
  if (sign == 0) return tilingOf(TILING13_5_1[row][variant]);
  if (sign > 0) return tilingOf(TILING13_5_2[row][variant]);
  return reversedTilingOf(TILING13_5_2[1 - row][complementaryVariant[row][variant]]);
}

/// The positive corner that is joined to another one on none of its faces.
template <class Value> int CubeTriangulation<Value>::isolatedPositiveCorner() const
{
  bool isJoined[8] = {};
  for (int face = 1; face <= 6; ++face)
    for (const int corner : faceCorners[face - 1]) isJoined[corner] |= testFace(face);
  int corner = 0;
  while (corner < 7 && (isJoined[corner] || !(_values[corner] >= 0))) ++corner;
  return corner;
}

template class CubeTriangulation<double>;
template class CubeTriangulation<long double>;
