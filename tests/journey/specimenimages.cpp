#include "specimenimages.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace
{
struct Pose
{
  double angle; // degrees
  double x;     // of the body's centre, from that of the image
  double y;
};

Pose poseOf(int section)
{
  if (section == 0) return {20, 3, -4};
  return {20 + 17. * section, 12 * std::sin(1.3 * section), 9 * std::cos(2.1 * section)};
}

/// Radius of the outline in a direction of the body's own frame: an ellipse with a lobe on one side.
double radius(int section, double direction)
{
  const double height = (section - 3.5) / 6;
  const double scale = std::sqrt(1 - height * height);
  const double a = 50, b = 28;
  const double ellipse = a * b / std::hypot(b * std::cos(direction), a * std::sin(direction));
  const double lobe = 1 + 0.25 * std::exp(4 * (std::cos(direction - 0.3) - 1));
  return scale * ellipse * lobe;
}

void writeTiff(const std::string& name, int width, int height, std::vector<unsigned char>& pixels)
{
  TIFF* const tiff = TIFFOpen(name.c_str(), "w");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1);
  for (int y = 0; y < height; ++y)
    TIFFWriteScanline(tiff, &pixels[static_cast<std::size_t>(y * width)], static_cast<std::uint32_t>(y));
  TIFFClose(tiff);
}
} // namespace

SpecimenImages::Point SpecimenImages::onImage(int section, Point place)
{
  const Pose pose = poseOf(section);
  const double angle = pose.angle * std::numbers::pi / 180;
  return {side / 2. + pose.x + place.x * std::cos(angle) - place.y * std::sin(angle),
          side / 2. + pose.y + place.x * std::sin(angle) + place.y * std::cos(angle)};
}

std::vector<SpecimenImages::Point> SpecimenImages::outline(int section, int numPoints)
{
  std::vector<Point> points;
  for (int i = 0; i < numPoints; ++i)
  {
    const double direction = 2 * std::numbers::pi * i / numPoints;
    const double r = radius(section, direction);
    points.push_back(onImage(section, {r * std::cos(direction), r * std::sin(direction)}));
  }
  return points;
}

double SpecimenImages::area(int section)
{
  constexpr int numSteps = 10000;
  double sum = 0;
  for (int i = 0; i < numSteps; ++i) sum += std::pow(radius(section, 2 * std::numbers::pi * i / numSteps), 2);
  return sum * std::numbers::pi / numSteps;
}

std::vector<std::string> SpecimenImages::write(const std::string& folder)
{
  std::vector<std::string> names;
  std::mt19937 random(5);
  std::normal_distribution<double> noise(0, 4);
  for (int section = 0; section < numSections; ++section)
  {
    std::vector<unsigned char> pixels(side * side);
    const Pose pose = poseOf(section);
    const double angle = pose.angle * std::numbers::pi / 180;
    for (int y = 0; y < side; ++y)
      for (int x = 0; x < side; ++x)
      {
        const double dx = x - side / 2. - pose.x, dy = y - side / 2. - pose.y;
        const double u = dx * std::cos(angle) + dy * std::sin(angle), v = dy * std::cos(angle) - dx * std::sin(angle);
        const double inside = radius(section, std::atan2(v, u)) - std::hypot(u, v); // about the distance to the outline
        const double share = std::clamp(inside + 0.5, 0., 1.);
        pixels[static_cast<std::size_t>(y) * side + static_cast<std::size_t>(x)] =
            static_cast<unsigned char>(std::clamp(30 + 130 * share + noise(random), 0., 255.));
      }
    names.push_back(folder + "/section-" + std::to_string(section) + ".tif");
    writeTiff(names.back(), side, side, pixels);
  }
  return names;
}
