#pragma once

#include <string>
#include <vector>

/// Images of sections through a body whose form, place and size are known: an ellipsoid with a lobe, bright on dark,
/// which lies inside each image, turned and shifted from section to section.
class SpecimenImages
{
public:
  static constexpr int numSections = 8;
  static constexpr int side = 200;            // of an image, in pixels
  static constexpr double pixelSize = 0.5;    // micrometres
  static constexpr double sectionSpacing = 4; // micrometres

  /// Writes the images as TIFF files in a folder. \return their names, in the order of the sections
  static std::vector<std::string> write(const std::string& folder);

  struct Point
  {
    double x;
    double y;
  };
  /// Points on the outline of the body in a section's image, in pixels.
  static std::vector<Point> outline(int section, int numPoints);
  /// A place in the body's own frame, in pixels from its centre, on a section's image.
  static Point onImage(int section, Point place);
  /// Area of the body in a section, in pixels.
  static double area(int section);
};
