#pragma once

#include "viewer/painters/paintergl.h"

#include <array>
#include <string>

/// A length of 1, 2 or 5 times a power of ten, the longest of these up to the given one; 0 when there is none.
double roundLength(double longest);
/// The length with a decimal point and without trailing zeros, a blank, and the unit.
std::string lengthText(double length, const std::string& unit);

/// Draws a bar of a round length, with its length and unit, at the lower left of the picture.
class ScaleBarPainterGL : public PainterGL<float>
{
public:
  /// The size of the picture in pixels, the length of one of them, and how many of them make one of the screen's for
  /// lines and letters.
  void setView(int width, int height, double lengthPerPixel, float pixelRatio);
  /// The symbol of the unit of length.
  void setUnit(const std::string& unit) { _unit = unit; }
  /// Red, green and blue, 0 to 255.
  void setColor(const std::array<int, 3>& color) { _color = color; }

  /// What the bar stands for, and how many pixels it is long.
  double getLength() const { return roundLength(_lengthPerPixel * _width * largestShare); }
  double getNumPixels() const { return _lengthPerPixel > 0 ? getLength() / _lengthPerPixel : 0; }

  /// Empty: the bar does not belong to the scene.
  BoundingBox<float> boundingBox() const override { return BoundingBox<float>(3); }
  void paint(PaintPass pass) override;

private:
  static constexpr double largestShare = 0.25; // of the picture's width

  int _width = 0;
  int _height = 0;
  double _lengthPerPixel = 0;
  std::string _unit;
  std::array<int, 3> _color = {255, 255, 255};
};
