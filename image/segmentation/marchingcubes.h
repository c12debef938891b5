#pragma once

#include "geometry/trimesh.h"
#include "image/segmentation/cubetriangulation.h"
#include "image/voxelmatrix.h"
#include "numeric/progresssubject.h"

#include <limits>

/// Surface of a volume at a level, by the 33 cases of marching cubes; see CubeTriangulation for the sources.
///
/// A voxel at the level or above counts as inside, whatever its value, and the triangles face away from it.
/// Neighbouring cubes share the vertices on their common edges, and ambiguous faces are judged alike from both sides,
/// so that the surface has no cracks on any volume.
template <class T> class MarchingCubes : public ProgressSubject
{
public:
  using Level = Real<T>;

  void setInteriorTest(InteriorTest test) { _interiorTest = test; }
  InteriorTest getInteriorTest() const { return _interiorTest; }
  /// Whether the mesh gets normals, as it does by default; a mesh that is to be transformed needs none before.
  void setNormalsWanted(bool isWanted) { _areNormalsWanted = isWanted; }
  bool areNormalsWanted() const { return _areNormalsWanted; }
  /// Bytes that the mesh may take, normals included; at first there is no limit.
  void setMemoryLimit(double numBytes) { _memoryLimit = numBytes; }
  double getMemoryLimit() const { return _memoryLimit; }

  /// The surface in voxel coordinates (row, column, plane), whatever the calibration, with normals if wanted.
  ///
  /// Vertices come first on the edges from row to row, then from column to column, then from plane to plane, then
  /// those inside cubes, each group plane by plane and row by row; several threads give the same mesh as one. When
  /// `closed`, the volume is surrounded by values of the level minus one, which closes the surface at the border;
  /// otherwise it ends there, and a volume of one row, column or plane has none. NaN counts as below the level; an
  /// edge on which infinite or undefined values leave the crossing undefined is cut in its middle.
  /// \throw ValueError  the level is not finite
  /// \throw RangeError  there are more vertices or triangles than a mesh can number
  /// \throw SizeError   the mesh would take more than the memory limit; it has not been allocated
  /// \throw Cancelled
  TriMesh<float> buildMesh(const VoxelMatrix<T>& volume, Level level, bool closed);

private:
  /// Calls work(first, last, workspace) for slabs of planes, in parallel; a cancelled step leaves slabs out.
  template <class Workspace, class Work> void forEachSlab(int numPlanes, std::vector<Workspace>& workspaces, Work work);

  void requireFitting(double numVertices, double numTriangles) const;

  InteriorTest _interiorTest = InteriorTest::Published;
  bool _areNormalsWanted = true;
  double _memoryLimit = std::numeric_limits<double>::infinity();
};

IMAGE_EXTERN_TEMPLATE(MarchingCubes)
