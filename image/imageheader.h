#pragma once

#include "image/pixelcalibration.h"
#include "numeric/colormap.h"

#include <cstdint>
#include <optional>

enum class ImageFormat
{
  Unknown,
  Tiff
};

/// What is known of an image without its pixels.
class ImageHeader
{
public:
  ImageFormat getFormat() const { return _format; }
  int getWidth() const { return _width; }
  int getHeight() const { return _height; }
  int getNumPlanes() const { return _numPlanes; }
  int getDepth() const { return _depth; }
  int getNumChannels() const { return _numChannels; }
  std::uint32_t getNewSubfileType() const { return _newSubfileType; }
  float getVoxelSizeX() const { return _voxelSizeX; }
  float getVoxelSizeY() const { return _voxelSizeY; }
  float getVoxelSizeZ() const { return _voxelSizeZ; }
  /// Whether the file tells the distance of its planes.
  bool hasVoxelSizeZ() const { return _hasVoxelSizeZ; }
  const PixelCalibration& getPixelCalibration() const { return _pixelCalibration; }

  void setFormat(ImageFormat format) { _format = format; }
  void setWidth(int width) { _width = width; }
  void setHeight(int height) { _height = height; }
  void setNumPlanes(int numPlanes) { _numPlanes = numPlanes; }
  void setDepth(int bitsPerPixel) { _depth = bitsPerPixel; }
  void setNumChannels(int numChannels) { _numChannels = numChannels; }
  void setNewSubfileType(std::uint32_t type) { _newSubfileType = type; }
  void setVoxelSizeX(float size) { _voxelSizeX = size; }
  void setVoxelSizeY(float size) { _voxelSizeY = size; }
  void setVoxelSizeZ(float size)
  {
    _voxelSizeZ = size;
    _hasVoxelSizeZ = true;
  }
  void setPixelCalibration(const PixelCalibration& calibration) { _pixelCalibration = calibration; }

  bool hasColormap() const { return _colormap.has_value(); }
  /// The palette; only when hasColormap().
  const Colormap& getColormap() const { return *_colormap; }
  void setColormap(const Colormap& colormap) { _colormap = colormap; }
  void deleteColormap() { _colormap.reset(); }

private:
  ImageFormat _format = ImageFormat::Unknown;
  int _width = 0;
  int _height = 0;
  int _numPlanes = 1;
  int _depth = 0; // bits per pixel
  int _numChannels = 1;
  std::uint32_t _newSubfileType = 0;
  float _voxelSizeX = 1;
  float _voxelSizeY = 1;
  float _voxelSizeZ = 1;
  bool _hasVoxelSizeZ = false;
  PixelCalibration _pixelCalibration;
  std::optional<Colormap> _colormap;
};
