#pragma once

#include "geometry/trimesh.h"
#include "viewer/painters/buffergl.h"
#include "viewer/painters/materialgl.h"

#include <cstdint>
#include <memory>
#include <vector>

/// Which parts of a mesh are drawn.
enum class MeshStyle
{
  Dots,  ///< its vertices
  Lines, ///< its edges
  Surface
};

/// Draws a triangle mesh, with a colour for each vertex when it has vertex colours.
class TriMeshPainterGL : public PainterGL<float>
{
public:
  /// A mesh without normals gets them. Triangles with vertices that do not exist or are not finite are left out.
  explicit TriMeshPainterGL(std::shared_ptr<const TriMesh<float>> mesh, MeshStyle style = MeshStyle::Surface);

  const TriMesh<float>& getTriMesh() const { return *_mesh; }
  const MaterialGL& getMaterial() const { return _material; }
  void setMaterial(const MaterialGL& material) { _material = material; }
  MeshStyle getStyle() const { return _style; }
  void setStyle(MeshStyle style) { _style = style; }

  BoundingBox<float> boundingBox() const override { return _box; }
  bool isTransparent() const override { return _material.isTransparent(); }
  bool hasFaces() const override { return _style == MeshStyle::Surface; }
  void paint(PaintPass pass) override;

protected:
  /// Fills the lines' indexes; the edges of the triangles are drawn when it does not.
  virtual std::vector<std::uint32_t> lineIndexes() const { return {}; }

private:
  void upload();
  void uploadVertices();
  void uploadIndexes();
  void enableArrays(PaintPass pass) const;
  void blendColors() const;
  void draw() const;
  /// Lines and dots have no back: they are lit from behind, too, by the second light.
  bool isSeenFromAnySide() const;

  std::shared_ptr<const TriMesh<float>> _mesh;
  MeshStyle _style;
  MaterialGL _material;
  BoundingBox<float> _box;
  bool _hasColors;
  bool _isSolid;                       // closed, so that its inside is not seen while it is opaque
  BufferGL _vertices{GL_ARRAY_BUFFER}; // all coordinates, all normals, all colours
  BufferGL _indexes{GL_ELEMENT_ARRAY_BUFFER};
  BufferGL _lines{GL_ELEMENT_ARRAY_BUFFER};
  GLsizei _numIndexes = 0;
  GLsizei _numLineIndexes = 0;
};

/// The mesh, or a copy with normals when it has none.
std::shared_ptr<const TriMesh<float>> withNormals(std::shared_ptr<const TriMesh<float>> mesh);
