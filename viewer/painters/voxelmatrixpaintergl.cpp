#include "viewer/painters/voxelmatrixpaintergl.h"

#include "viewer/painters/materialgl.h"
#include "viewer/painters/stategl.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr int largestSide = 256;

/// The sum and the number of voxels.
struct Greys
{
  unsigned int sum = 0, count = 0;

  void add(unsigned char voxel)
  {
    sum += voxel;
    ++count;
  }
  std::uint8_t mean() const { return static_cast<std::uint8_t>((sum + count / 2) / std::max(count, 1U)); }
};

/// The mean of a block of voxels, those of it that are in the volume. \param isEmptyCounted  also those of no image
std::uint8_t mean(const VoxelMatrix<unsigned char>& volume, const std::array<int, 3>& first, int step,
                  bool isEmptyCounted)
{
  Greys greys;
  for (int k = first[2]; k < std::min(first[2] + step, volume.getSize3()); ++k)
    for (int i = first[0]; i < std::min(first[0] + step, volume.getSize1()); ++i)
      for (int j = first[1]; j < std::min(first[1] + step, volume.getSize2()); ++j)
        if (isEmptyCounted || volume(i, j, k) > 0) greys.add(volume(i, j, k));
  return greys.mean();
}
} // namespace

VolumePlacement::Point VolumePlacement::at(float row, float column, float plane) const
{
  Point p = origin;
  for (std::size_t axis = 0; axis < 3; ++axis)
    p[axis] += row * rowStep[axis] + column * columnStep[axis] + plane * planeStep[axis];
  return p;
}

VoxelMatrixPainterGL::VoxelMatrixPainterGL(const VoxelMatrix<unsigned char>& volume, const VolumePlacement& placement,
                                           Mode mode)
  : _mode(mode), _sizes{volume.getSize1(), volume.getSize2(), volume.getSize3()}, _texels{}, _placement(placement)
{
  for (std::size_t axis = 0; axis < 3; ++axis) _slices[axis] = _sizes[axis] / 2;
  reduce(volume);
  if (mode != Cloud) addAlpha();
}

void VoxelMatrixPainterGL::reduce(const VoxelMatrix<unsigned char>& volume)
{
  const int step = (std::max({_sizes[0], _sizes[1], _sizes[2], 1}) - 1) / largestSide + 1;
  _blockSize = step;
  for (std::size_t axis = 0; axis < 3; ++axis) _texels[axis] = (_sizes[axis] + step - 1) / step;
  _voxels.reserve(static_cast<std::size_t>(_texels[0]) * static_cast<std::size_t>(_texels[1]) *
                  static_cast<std::size_t>(_texels[2]));
  for (int k = 0; k < _sizes[2]; k += step)
    for (int i = 0; i < _sizes[0]; i += step)
      for (int j = 0; j < _sizes[1]; j += step) _voxels.push_back(mean(volume, {i, j, k}, step, _mode == Cloud));
}

/// The mean of the voxels of images around one of none, so that the border of an image has the image's grey where the
/// two are mixed.
std::uint8_t VoxelMatrixPainterGL::greyAround(int row, int column, int plane) const
{
  Greys greys;
  for (int k = std::max(plane - 1, 0); k <= std::min(plane + 1, _texels[2] - 1); ++k)
    for (int i = std::max(row - 1, 0); i <= std::min(row + 1, _texels[0] - 1); ++i)
      for (int j = std::max(column - 1, 0); j <= std::min(column + 1, _texels[1] - 1); ++j)
        if (const std::uint8_t voxel = voxelAt(i, j, k); voxel > 0) greys.add(voxel);
  return greys.mean();
}

/// Puts behind each grey level whether there is an image.
void VoxelMatrixPainterGL::addAlpha()
{
  std::vector<std::uint8_t> withAlpha;
  withAlpha.reserve(2 * _voxels.size());
  for (int k = 0; k < _texels[2]; ++k)
    for (int i = 0; i < _texels[0]; ++i)
      for (int j = 0; j < _texels[1]; ++j)
      {
        const std::uint8_t voxel = voxelAt(i, j, k);
        withAlpha.push_back(voxel > 0 ? voxel : greyAround(i, j, k));
        withAlpha.push_back(voxel > 0 ? 255 : 0);
      }
  _voxels = std::move(withAlpha);
}

void VoxelMatrixPainterGL::setSlices(int row, int column, int plane)
{
  const std::array<int, 3> wanted = {row, column, plane};
  for (std::size_t axis = 0; axis < 3; ++axis)
    _slices[axis] = std::clamp(wanted[axis], 0, std::max(_sizes[axis] - 1, 0));
}

BoundingBox<float> VoxelMatrixPainterGL::boundingBox() const
{
  BoundingBox<float> box(3);
  if (_sizes[0] == 0 || _sizes[1] == 0 || _sizes[2] == 0) return box;
  const auto end = [this](unsigned int k, std::size_t axis)
  { return (k >> axis & 1) != 0 ? static_cast<float>(_sizes[axis]) - 0.5F : -0.5F; };
  for (unsigned int k = 0; k < 8; ++k)
  {
    const Point corner = _placement.at(end(k, 0), end(k, 1), end(k, 2));
    box.add(corner.data());
  }
  return box;
}

/// The cloud is as opaque as it is bright, slices wherever there is an image.
void VoxelMatrixPainterGL::upload()
{
  const bool isCloud = _mode == Cloud;
  _texture.fill3D(isCloud ? GL_INTENSITY8 : GL_LUMINANCE8_ALPHA8, isCloud ? GL_LUMINANCE : GL_LUMINANCE_ALPHA,
                  _texels[1], _texels[0], _texels[2], _voxels.data());
  _voxels = {};
}

/// The last blocks may reach beyond the volume, which is drawn as far as it goes.
void VoxelMatrixPainterGL::drawSlice(std::size_t axis, float place) const
{
  const auto size = [this](std::size_t k) { return static_cast<float>(_sizes[k]); };
  for (const auto& [a, b] : {std::array{0.F, 0.F}, std::array{1.F, 0.F}, std::array{1.F, 1.F}, std::array{0.F, 1.F}})
  {
    std::array<float, 3> p; // rows, columns, planes, from the border of the volume
    p[axis] = place;
    p[(axis + 1) % 3] = a * size((axis + 1) % 3);
    p[(axis + 2) % 3] = b * size((axis + 2) % 3);
    const auto texture = [&](std::size_t k) { return p[k] / static_cast<float>(_texels[k] * _blockSize); };
    const Point corner = _placement.at(p[0] - 0.5F, p[1] - 0.5F, p[2] - 0.5F);
    glTexCoord3f(texture(1), texture(0), texture(2));
    glVertex3fv(corner.data());
  }
}

void VoxelMatrixPainterGL::paintSlices() const
{
  glEnable(GL_ALPHA_TEST);
  glAlphaFunc(GL_GREATER, 0.5F);
  glBegin(GL_QUADS);
  for (std::size_t axis = 0; axis < 3; ++axis) drawSlice(axis, static_cast<float>(_slices[axis]) + 0.5F);
  glEnd();
}

/// The axis of the volume that comes closest to the direction of view.
std::size_t VoxelMatrixPainterGL::layersAxis() const
{
  std::array<float, 16> view;
  glGetFloatv(GL_MODELVIEW_MATRIX, view.data());
  const std::array<Point, 3> steps = {_placement.rowStep, _placement.columnStep, _placement.planeStep};
  std::size_t best = 2;
  float largest = -1;
  for (std::size_t axis = 0; axis < 3; ++axis)
  {
    const Point& s = steps[axis];
    const float length = std::hypot(s[0], s[1], s[2]);
    const float depth = length > 0 ? std::abs(view[2] * s[0] + view[6] * s[1] + view[10] * s[2]) / length : 0;
    if (depth <= largest) continue;
    largest = depth;
    best = axis;
  }
  return best;
}

double VoxelMatrixPainterGL::depthOf(std::size_t axis, float place) const
{
  std::array<float, 16> view;
  glGetFloatv(GL_MODELVIEW_MATRIX, view.data());
  std::array<float, 3> middle; // rows, columns, planes, from the border of the volume
  for (std::size_t k = 0; k < 3; ++k) middle[k] = k == axis ? place : static_cast<float>(_sizes[k]) / 2;
  const Point p = _placement.at(middle[0] - 0.5F, middle[1] - 0.5F, middle[2] - 0.5F);
  return double{view[2]} * double{p[0]} + double{view[6]} * double{p[1]} + double{view[10]} * double{p[2]};
}

/// Layers through the middles of the blocks, across the axis that points to the viewer, the farthest first.
void VoxelMatrixPainterGL::paintCloud() const
{
  const std::size_t axis = layersAxis();
  const int count = _texels[axis];
  const bool isAscending = depthOf(axis, 0) <= depthOf(axis, static_cast<float>(_sizes[axis]));
  std::vector<float> places;
  for (int n = 0; n < count; ++n)
  {
    const int first = (isAscending ? n : count - 1 - n) * _blockSize;
    const float place = static_cast<float>(first + std::min(first + _blockSize, _sizes[axis])) / 2;
    if (getDepthRange().contains(depthOf(axis, place))) places.push_back(place);
  }
  glBegin(GL_QUADS);
  for (const float place : places) drawSlice(axis, place);
  glEnd();
}

void VoxelMatrixPainterGL::paint(PaintPass pass)
{
  if (boundingBox().isEmpty() || (pass == PaintPass::Picking && _mode == Cloud)) return; // a cloud has no surface
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_TEXTURE_BIT | GL_COLOR_BUFFER_BIT);
  if (!_texture.isFilled()) upload();
  glDisable(GL_LIGHTING);
  glDisable(GL_CULL_FACE);
  if (pass != PaintPass::Picking) _texture.enable();
  MaterialGL{{255, 255, 255}, _mode == Cloud ? _opacity : 255}.applyColor(pass);
  _mode == Cloud ? paintCloud() : paintSlices();
}
