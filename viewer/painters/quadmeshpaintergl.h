#pragma once

#include "geometry/quadmesh.h"
#include "viewer/painters/trimeshpaintergl.h"

/// Draws a quad mesh with its caps and vertex colours: as a surface, or as the lines of the grid and the caps.
class QuadMeshPainterGL : public TriMeshPainterGL
{
public:
  explicit QuadMeshPainterGL(const QuadMesh<float>& mesh, MeshStyle style = MeshStyle::Surface);
  /// The same for a mesh whose triangles are known, those of QuadMesh::toTriMesh().
  QuadMeshPainterGL(std::shared_ptr<const TriMesh<float>> triangles, int width, int height, bool isOpen,
                    MeshStyle style);

protected:
  std::vector<std::uint32_t> lineIndexes() const override;

private:
  void addCapLines(std::vector<std::uint32_t>& indexes) const;

  int _width;
  int _height;
  bool _isOpen;
};
