#pragma once

#include "geometry/boundingbox.h"
#include "geometry/vertices.h"
#include "model/registration.h"

#include <cstdint>

/// Maps integer coordinates between a rectangle of the window (the world) and one of the image (the model).
///
/// A rectangle 0 or 1 wide maps every coordinate to the origin of the other one; likewise for heights.
class WMConverter
{
public:
  void setWorld(unsigned int x, unsigned int y, unsigned int width, unsigned int height);
  void setModel(unsigned int x, unsigned int y, unsigned int width, unsigned int height);

  int xToModel(int x) const { return toModel(x, _world.x, _world.width, _model.x, _model.width); }
  int yToModel(int y) const { return toModel(y, _world.y, _world.height, _model.y, _model.height); }
  int xToWorld(int x) const { return toWorld(x, _model.x, _model.width, _world.x, _world.width); }
  int yToWorld(int y) const { return toWorld(y, _model.y, _model.height, _world.y, _world.height); }
  /// Lengths by the ratio of the widths, vertical lengths too; truncated toward zero.
  int lengthToModel(int length) const;
  int lengthToWorld(int length) const;

  Vector<int> toModel(const Vector<int>& point) const;
  Vector<int> toWorld(const Vector<int>& point) const;
  BoundingBox<int> toModel(const BoundingBox<int>& box) const;
  BoundingBox<int> toWorld(const BoundingBox<int>& box) const;
  Vertices<int> toModel(const Vertices<int>& vertices) const;
  Vertices<int> toWorld(const Vertices<int>& vertices) const;
  /// Shifts are converted as lengths, the angle stays.
  Registration toModel(const Registration& registration) const;
  Registration toWorld(const Registration& registration) const;

private:
  struct Rectangle
  {
    std::int64_t x = 0, y = 0, width = 0, height = 0;
  };

  static int toModel(int coordinate, std::int64_t worldOrigin, std::int64_t worldSize, std::int64_t modelOrigin,
                     std::int64_t modelSize);
  static int toWorld(int coordinate, std::int64_t modelOrigin, std::int64_t modelSize, std::int64_t worldOrigin,
                     std::int64_t worldSize);

  Rectangle _world;
  Rectangle _model;
};
