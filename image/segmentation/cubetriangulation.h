#pragma once

#include <array>

/// How marching cubes decides whether two parts of a surface are joined by a tunnel inside one cube.
enum class InteriorTest
{
  Published, ///< the published test, with one correction: edge-manifold but where two cubes of case 10.1.2 share a face
  Exact      ///< the topology of the trilinear interpolant in each cube; some edges may have four triangles
};

/// The triangles of one cube, as the tables list them.
struct CubeTiling
{
  const signed char* edges = nullptr; ///< three codes per triangle: edges 0 to 11, 12 for the vertex inside the cube
  int numTriangles = 0;
  bool hasInsideVertex = false;
  bool isReversed = false; ///< the triangles turn the other way round
};

/// What the signs of the eight corners of a cube tell; bit n of a configuration's number is set when corner n is
/// positive, that is when its value is 0 or more.
struct CubeConfiguration
{
  int crossedEdges = 0;     ///< bit e is set when the ends of edge e have different signs
  bool isAmbiguous = false; ///< the tiling depends on the values too
  CubeTiling tiling;        ///< of a configuration that is not ambiguous
};

/// The two corners of each edge of a cube.
constexpr int cubeEdges[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                  {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};

/// All 256 configurations. Corners, edges and faces are numbered as in marchingcubestables.txt.
extern const std::array<CubeConfiguration, 256> cubeConfigurations;

/// The choice between the tilings of a cube by its corner values.
///
/// The values are those of the corners 0 to 7 minus the level, in double or long double. A face is judged alike from
/// both of its cubes, so that neighbours fit whatever the values are.
/// Source: E. V. Chernyaev, "Marching Cubes 33", CERN report CN/95-17, 1995; T. Lewiner, H. Lopes, A. W. Vieira and
/// G. Tavares, "Efficient implementation of Marching Cubes' cases with topological guarantees", 2003; corrected after
/// L. Custodio, T. Etiene, S. Pesco and C. Silva, "Practical considerations on Marching Cubes 33 topological
/// correctness", 2013.
template <class Value> class CubeTriangulation
{
public:
  /// The values are borrowed.
  CubeTriangulation(const Value* values, InteriorTest interiorTest) : _values(values), _interiorTest(interiorTest) {}

  /// The tiling of a configuration, which must be that of the values.
  CubeTiling getTiling(int configuration) const;

  /// Of an ambiguous face f, 1 to 6: whether its positive corners are joined on it (code f) or its negative ones
  /// (code -f). Equal products count as positive corners joined.
  bool testFace(int code) const;
  /// The published interior test of cases 4, 6, 7, 10, 12 and 13 for the sign code 7 or -7; the reference edge counts
  /// in cases 6, 7, 12 and 13.
  bool testInterior(int cubeCase, int code, int referenceEdge) const;

private:
  CubeTiling tilingOfCase4(int row) const;
  CubeTiling tilingOfCase6(int row) const;
  CubeTiling tilingOfCase7(int row) const;
  CubeTiling tilingOfCase10(int row) const;
  CubeTiling tilingOfCase12(int row) const;
  CubeTiling tilingOfCase13(int row) const;
  CubeTiling tilingOfCase13_5(int row, int variant) const;
  CubeTiling exactTilingOfCase13_5(int row, int variant) const;

  bool testInteriorAtSaddle(int code) const;
  bool testInteriorAtEdge(int code, int edge) const;
  /// Whether a tunnel joins two regions inside the cube; isOpposite when they have the sign opposite to the code.
  bool hasTunnel(int cubeCase, int code, int referenceEdge, bool isOpposite) const;
  int signThrough(int corner) const;
  int isolatedPositiveCorner() const;

  const Value* _values;
  InteriorTest _interiorTest;
};

extern template class CubeTriangulation<double>;
extern template class CubeTriangulation<long double>;
