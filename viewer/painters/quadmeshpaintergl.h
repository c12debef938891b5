#pragma once

#include "geometry/quadmesh.h"
#include "viewer/painters/trimeshpaintergl.h"

/// Draws a quad mesh with its caps and vertex colours: as a surface, or as the lines of the grid.
class QuadMeshPainterGL : public TriMeshPainterGL
{
public:
  explicit QuadMeshPainterGL(const QuadMesh<float>& mesh, MeshStyle style = MeshStyle::Surface);
  /// The same for a mesh whose triangles are known: `triangles` has the vertices of the grid in the order of its rows.
  QuadMeshPainterGL(std::shared_ptr<const TriMesh<float>> triangles, int width, int height, bool isOpen,
                    MeshStyle style);

protected:
  std::vector<std::uint32_t> lineIndexes() const override;

private:
  int _width;
  int _height;
  bool _isOpen;
};
