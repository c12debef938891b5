#pragma once

#include "viewer/painters/paintergl.h"

#include <array>
#include <vector>

/// Draws numbered marks at points of the scene, in front of everything.
class LandmarksPainterGL : public PainterGL<float>
{
public:
  using Point = std::array<double, 3>;

  const std::vector<Point>& getPoints() const { return _points; }
  void setPoints(const std::vector<Point>& points) { _points = points; }

  /// Empty: marks do not change the size of the scene.
  BoundingBox<float> boundingBox() const override { return BoundingBox<float>(3); }
  void paint(PaintPass pass) override;

private:
  void paintDots(float size) const;
  void paintNumbers(const std::vector<std::array<float, 2>>& places, float lineWidth) const;

  std::vector<Point> _points;
};
