#include "viewer/painters/quadmeshpaintergl.h"

QuadMeshPainterGL::QuadMeshPainterGL(const QuadMesh<float>& mesh, MeshStyle style)
  : QuadMeshPainterGL(std::make_shared<TriMesh<float>>(mesh.toTriMesh(true)), mesh.getWidth(), mesh.getHeight(),
                      mesh.isOpen(), style)
{
  setName(mesh.getName());
}

QuadMeshPainterGL::QuadMeshPainterGL(std::shared_ptr<const TriMesh<float>> triangles, int width, int height,
                                     bool isOpen, MeshStyle style)
  : TriMeshPainterGL(std::move(triangles), style), _width(width), _height(height), _isOpen(isOpen)
{
}

std::vector<std::uint32_t> QuadMeshPainterGL::lineIndexes() const
{
  std::vector<std::uint32_t> indexes;
  if (getTriMesh().getSize() < _width * _height) return indexes;
  indexes.reserve(4 * static_cast<std::size_t>(_width) * static_cast<std::size_t>(_height));
  const auto add = [&](int i, int j, int k, int l)
  {
    indexes.push_back(static_cast<std::uint32_t>(i * _width + j));
    indexes.push_back(static_cast<std::uint32_t>(k * _width + l));
  };
  for (int i = 0; i < _height; ++i)
    for (int j = 0; j < _width; ++j)
    {
      if (j + 1 < _width || !_isOpen) add(i, j, i, (j + 1) % _width);
      if (i + 1 < _height) add(i, j, i + 1, j);
    }
  addCapLines(indexes);
  return indexes;
}

/// The edges of the caps' triangles, which follow those of the cells. Two triangles pass an edge inside a cap in two
/// directions, of which one is drawn; the other edges are those of the rows.
void QuadMeshPainterGL::addCapLines(std::vector<std::uint32_t>& indexes) const
{
  const TriMesh<float>& mesh = getTriMesh();
  const int numCells = (_isOpen ? _width - 1 : _width) * (_height - 1);
  for (int i = 2 * numCells; i < mesh.getNumTriangleSlots(); ++i)
  {
    if (!mesh.hasTriangle(i)) continue;
    const int* const c = mesh.corners(i);
    for (int k = 0; k < 3; ++k)
    {
      const int a = c[k], b = c[(k + 1) % 3];
      if (a > b || b - a == 1 || b - a == _width - 1) continue;
      indexes.push_back(static_cast<std::uint32_t>(a));
      indexes.push_back(static_cast<std::uint32_t>(b));
    }
  }
}
