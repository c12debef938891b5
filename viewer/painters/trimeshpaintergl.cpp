#include "viewer/painters/trimeshpaintergl.h"

#include "viewer/painters/stategl.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr std::size_t vectorSize = 3 * sizeof(float);
constexpr float dotSize = 3;

std::vector<std::uint8_t> colorBytes(const TriMesh<int>& colors)
{
  const auto count = 3 * static_cast<std::size_t>(colors.getSize());
  std::vector<std::uint8_t> bytes(count);
  std::transform(colors.data(), colors.data() + count, bytes.begin(),
                 [](int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); });
  return bytes;
}

bool isDrawable(const TriMesh<float>& mesh, const BoundingBox<float>& box, int triangle)
{
  const int* const corners = mesh.corners(triangle);
  for (int k = 0; k < 3; ++k)
  {
    if (corners[k] < 0 || corners[k] >= mesh.getSize()) return false;
    const float* const p = mesh.data(corners[k]);
    for (int axis = 0; axis < 3; ++axis) // NaN is in no box
      if (!(p[axis] >= box.getMinimum()[axis] && p[axis] <= box.getMaximum()[axis])) return false;
  }
  return true;
}

/// The box around the vertices that are finite.
BoundingBox<float> finiteBox(const TriMesh<float>& mesh)
{
  BoundingBox<float> box(3);
  float low[3] = {INFINITY, INFINITY, INFINITY}, high[3] = {-INFINITY, -INFINITY, -INFINITY};
  for (int i = 0; i < mesh.getSize(); ++i)
  {
    const float* const p = mesh.data(i);
    if (!std::isfinite(p[0] + p[1] + p[2])) continue;
    for (int axis = 0; axis < 3; ++axis)
    {
      low[axis] = std::min(low[axis], p[axis]);
      high[axis] = std::max(high[axis], p[axis]);
    }
  }
  if (low[0] > high[0]) return box;
  box.add(low);
  box.add(high);
  return box;
}
/// Scatters the bits of a number. Source: G. L. Steele, D. Lea and C. H. Flood, "Fast splittable pseudorandom number
/// generators", 2014.
std::uint64_t scattered(std::uint64_t x)
{
  x = (x ^ x >> 30) * 0xbf58476d1ce4e5b9U;
  x = (x ^ x >> 27) * 0x94d049bb133111ebU;
  return x ^ x >> 31;
}

/// Whether the surface has no border and faces outwards: each edge is passed as often in one direction as in the other,
/// and the enclosed volume is positive. Edges count by signed random numbers, whose sum is 0 by chance only in one of
/// 2^64 cases.
bool isSolid(const TriMesh<float>& mesh)
{
  std::uint64_t sum = 0;
  double volume = 0;
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
  {
    if (!mesh.hasTriangle(i)) continue;
    const int* const c = mesh.corners(i);
    for (int k = 0; k < 3; ++k)
    {
      const auto [low, high] = std::minmax(c[k], c[(k + 1) % 3]);
      const std::uint64_t edge = scattered(static_cast<std::uint64_t>(low) << 32 | static_cast<std::uint64_t>(high));
      sum += c[k] == low ? edge : ~edge + 1;
    }
    if (std::max({c[0], c[1], c[2]}) >= mesh.getSize()) return false;
    const float *p = mesh.data(c[0]), *q = mesh.data(c[1]), *r = mesh.data(c[2]);
    const double x = p[0], y = p[1], z = p[2];
    volume += x * (double{q[1]} * r[2] - double{q[2]} * r[1]) + y * (double{q[2]} * r[0] - double{q[0]} * r[2]) +
              z * (double{q[0]} * r[1] - double{q[1]} * r[0]);
  }
  return sum == 0 && volume > 0 && std::isfinite(volume);
}
} // namespace

std::shared_ptr<const TriMesh<float>> withNormals(std::shared_ptr<const TriMesh<float>> mesh)
{
  if (mesh->hasNormals() || mesh->getSize() == 0) return mesh;
  auto copy = std::make_shared<TriMesh<float>>(*mesh);
  copy->computeNormals();
  return copy;
}

TriMeshPainterGL::TriMeshPainterGL(std::shared_ptr<const TriMesh<float>> mesh, MeshStyle style)
  : _mesh(withNormals(std::move(mesh))),
    _style(style),
    _box(finiteBox(*_mesh)),
    _hasColors(_mesh->hasVertexColors() && _mesh->getVertexColors().getSpace() == 3),
    _isSolid(isSolid(*_mesh))
{
  setName(_mesh->getName());
}

void TriMeshPainterGL::uploadVertices()
{
  const auto count = static_cast<std::size_t>(_mesh->getSize());
  _vertices.allocate(count * (2 * vectorSize + (_hasColors ? 3 : 0)));
  _vertices.write(0, _mesh->data(), count * vectorSize);
  _vertices.write(count * vectorSize, _mesh->getNormals().data(), count * vectorSize);
  if (!_hasColors) return;
  const std::vector<std::uint8_t> colors = colorBytes(_mesh->getVertexColors());
  _vertices.write(2 * count * vectorSize, colors.data(), colors.size());
}

/// As they lie in the mesh when all can be drawn, which needs no copy.
void TriMeshPainterGL::uploadIndexes()
{
  const int numSlots = _mesh->getNumTriangleSlots();
  int first = 0;
  while (first < numSlots && isDrawable(*_mesh, _box, first)) ++first;
  std::vector<int> drawable;
  const int* corners = numSlots > 0 ? _mesh->corners(0) : nullptr;
  int numTriangles = numSlots;
  if (first < numSlots)
  {
    drawable.assign(corners, corners + 3 * static_cast<std::size_t>(first));
    for (int i = first + 1; i < numSlots; ++i)
      if (isDrawable(*_mesh, _box, i)) drawable.insert(drawable.end(), _mesh->corners(i), _mesh->corners(i) + 3);
    corners = drawable.data();
    numTriangles = static_cast<int>(drawable.size() / 3);
  }
  _numIndexes = 3 * numTriangles;
  _indexes.fill(corners, static_cast<std::size_t>(_numIndexes) * sizeof(int));
}

void TriMeshPainterGL::upload()
{
  uploadVertices();
  uploadIndexes();
  const std::vector<std::uint32_t> lines = lineIndexes();
  _numLineIndexes = static_cast<GLsizei>(lines.size());
  if (!lines.empty()) _lines.fill(lines.data(), lines.size() * sizeof(std::uint32_t));
}

void TriMeshPainterGL::enableArrays(PaintPass pass) const
{
  const auto count = static_cast<std::size_t>(_mesh->getSize());
  _vertices.bind();
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(3, GL_FLOAT, 0, nullptr);
  if (pass == PaintPass::Picking) return;
  glEnableClientState(GL_NORMAL_ARRAY);
  glNormalPointer(GL_FLOAT, 0, offsetGL(count * vectorSize));
  if (!_hasColors) return;
  glEnableClientState(GL_COLOR_ARRAY);
  glColorPointer(3, GL_UNSIGNED_BYTE, 0, offsetGL(2 * count * vectorSize));
  if (_material.isTransparent()) blendColors();
}

/// The colours of the vertices are opaque: the opacity is that of the material.
void TriMeshPainterGL::blendColors() const
{
  glBlendColor(0, 0, 0, std::max(0.F, _material.opacity) / 255); // NaN counts as 0
  glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
}

void TriMeshPainterGL::draw() const
{
  if (_style == MeshStyle::Dots) return glDrawArrays(GL_POINTS, 0, _mesh->getSize());
  if (_style == MeshStyle::Lines && _numLineIndexes > 0)
  {
    _lines.bind();
    return glDrawElements(GL_LINES, _numLineIndexes, GL_UNSIGNED_INT, nullptr);
  }
  if (_style == MeshStyle::Lines) glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
  _indexes.bind();
  glDrawElements(GL_TRIANGLES, _numIndexes, GL_UNSIGNED_INT, nullptr);
}

bool TriMeshPainterGL::isSeenFromAnySide() const
{
  return _style == MeshStyle::Dots || (_style == MeshStyle::Lines && _numLineIndexes > 0);
}

void TriMeshPainterGL::paint(PaintPass pass)
{
  if (_mesh->getSize() == 0) return;
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LIGHTING_BIT | GL_POLYGON_BIT | GL_LINE_BIT | GL_POINT_BIT |
                      GL_COLOR_BUFFER_BIT);
  if (!_vertices.isFilled()) upload();
  const bool isSurface = _style == MeshStyle::Surface;
  const bool isOneSided = isSurface && (_material.isEconomic || (_isSolid && pass == PaintPass::Opaque));
  _material.apply(pass, isOneSided);
  if (isSurface) selectFaces(pass, isOneSided);
  glLineWidth(getPixelRatio()); // wide lines of a fine mesh would look like its surface
  glPointSize(dotSize * getPixelRatio());
  if (isSeenFromAnySide() && pass != PaintPass::Picking) glEnable(GL_LIGHT1);
  enableArrays(pass);
  draw();
  _vertices.unbind();
  _indexes.unbind();
}
