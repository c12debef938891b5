#pragma once

#include "image/voxelmatrix.h"
#include "viewer/painters/paintergl.h"
#include "viewer/painters/texturegl.h"

#include <array>
#include <vector>

/// Where a volume lies in space.
struct VolumePlacement
{
  using Point = std::array<float, 3>;
  Point origin = {0, 0, 0};     ///< the centre of voxel (0, 0, 0)
  Point columnStep = {1, 0, 0}; ///< from voxel (i, j, k) to (i, j + 1, k)
  Point rowStep = {0, 1, 0};    ///< to (i + 1, j, k)
  Point planeStep = {0, 0, 1};  ///< to (i, j, k + 1)

  Point at(float row, float column, float plane) const;
};

/// Draws a volume of grey levels: three slices across it where they lie, as opaque images, or all of it as a cloud that
/// is as dense as the voxels are bright. Voxels of no image are 0 and not drawn, black ones are 1.
class VoxelMatrixPainterGL : public PainterGL<float>
{
public:
  enum Mode
  {
    OrthogonalSlices,
    Cloud
  };

  /// A volume of more than 256 voxels along an axis is drawn from the means of blocks of voxels.
  VoxelMatrixPainterGL(const VoxelMatrix<unsigned char>& volume, const VolumePlacement& placement, Mode mode);

  /// Numbers of rows, columns and planes.
  const std::array<int, 3>& getSizes() const { return _sizes; }
  /// Row, column and plane that are drawn.
  const std::array<int, 3>& getSlices() const { return _slices; }
  /// The slices that are drawn: a row, a column and a plane of the volume, the middle ones at first.
  void setSlices(int row, int column, int plane);
  /// Of the brightest voxels of one layer of the cloud; 255 is opaque.
  void setOpacity(float opacity) { _opacity = opacity; }

  BoundingBox<float> boundingBox() const override;
  bool isTransparent() const override { return _mode == Cloud; }
  bool hasLayers() const override { return _mode == Cloud; }
  void paint(PaintPass pass) override;

private:
  using Point = VolumePlacement::Point;

  void reduce(const VoxelMatrix<unsigned char>& volume);
  void addAlpha();
  std::uint8_t greyAround(int row, int column, int plane) const;
  std::uint8_t voxelAt(int row, int column, int plane) const
  {
    return _voxels[(static_cast<std::size_t>(plane) * static_cast<std::size_t>(_texels[0]) +
                    static_cast<std::size_t>(row)) *
                       static_cast<std::size_t>(_texels[1]) +
                   static_cast<std::size_t>(column)];
  }
  void upload();
  void paintSlices() const;
  void paintCloud() const;
  std::size_t layersAxis() const;
  /// The distance towards the viewer of the middle of such a slice.
  double depthOf(std::size_t axis, float place) const;
  /// The slice at a place along an axis, 0 rows, 1 columns, 2 planes, in voxels from the border of the volume.
  void drawSlice(std::size_t axis, float place) const;

  Mode _mode;
  std::array<int, 3> _sizes;  // rows, columns and planes of the volume
  std::array<int, 3> _slices; // of these
  std::array<int, 3> _texels; // blocks of voxels along these
  int _blockSize = 1;         // voxels along the side of a block
  VolumePlacement _placement;
  std::vector<std::uint8_t> _voxels; // until they are on the graphics card; of slices, each with its alpha
  float _opacity = 64;
  TextureGL _texture{GL_TEXTURE_3D};
};
