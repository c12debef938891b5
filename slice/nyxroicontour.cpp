#include "slice/nyxroicontour.h"

#include "image/filters/meanfilter.h"
#include "image/image.h"
#include "image/segmentation/isodatathresholding.h"

#include <QRect>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{
constexpr int numBins = 256;

Image cropped(const Image& image, const QRect& roi)
{
  Image part(roi.width(), roi.height(), image.getDepth());
  if (image.hasColormap()) part.setColormap(image.getColormap());
  for (int i = 0; i < roi.height(); ++i)
    std::memcpy(part.getLine(i), image.getLine(roi.y() + i) + std::ptrdiff_t(roi.x()) * image.bytesPerPixel(),
                part.bytesPerLine());
  return part;
}

/// Whether most pixels at the border of the matrix are not below the threshold.
bool isBorderAbove(const PixelMatrix<float>& levels, float threshold)
{
  const int numRows = levels.getSize1();
  const int numCols = levels.getSize2();
  long numAbove = 0;
  long numAll = 0;
  for (int i = 0; i < numRows; ++i)
    for (int j = 0; j < numCols; j += i == 0 || i == numRows - 1 ? 1 : std::max(1, numCols - 1))
    {
      numAbove += levels(i, j) >= threshold;
      ++numAll;
    }
  return 2 * numAbove > numAll;
}

/// The pixels along a boundary that runs along pixel sides with the region on its left, y counted upwards.
Curve<int> pixelsAlong(const Curve<int>& boundary)
{
  Curve<int> pixels(2);
  for (int i = 0; i < boundary.getNumVertices(); ++i)
  {
    const int* from = boundary.data(i);
    const int* to = boundary.data((i + 1) % boundary.getNumVertices());
    const int dx = (to[0] > from[0]) - (to[0] < from[0]);
    const int dy = (to[1] > from[1]) - (to[1] < from[1]);
    for (int x = from[0], y = from[1]; x != to[0] || y != to[1]; x += dx, y += dy)
    {
      const Vector<int> pixel{x + (dx - dy - 1) / 2, y + (dx + dy - 1) / 2};
      if (pixels.getNumVertices() == 0 || !(pixels[pixels.getNumVertices() - 1] == pixel)) pixels.append(pixel);
    }
  }
  while (pixels.getNumVertices() > 1 && pixels[0] == pixels[pixels.getNumVertices() - 1])
    pixels.remove(pixels.getNumVertices() - 1);
  return pixels;
}
} // namespace

PixelMatrix<float> greyLevels(const Image& image)
{
  PixelMatrix<float> levels;
  switch (image.colorContent())
  {
  case ImageColorContent::RedOnly:
    levels.convertFromImage(image, ImageChannel::Red);
    break;
  case ImageColorContent::GreenOnly:
    levels.convertFromImage(image, ImageChannel::Green);
    break;
  case ImageColorContent::BlueOnly:
    levels.convertFromImage(image, ImageChannel::Blue);
    break;
  default:
    levels.convertFromImage(image);
  }
  return levels;
}

std::optional<Curve<int>> contourInRoi(const Image& image, const QRect& roi, int halfSize)
{
  if (roi.isEmpty() || !QRect(0, 0, image.getWidth(), image.getHeight()).contains(roi))
    throw SizeError("std::optional<Curve<int>> contourInRoi(const Image&, const QRect&, int)",
                    "The rectangle is not a part of the image");
  PixelMatrix<float> levels = greyLevels(cropped(image, roi));
  MeanFilter<float> mean;
  mean.setSize(2 * halfSize + 1);
  if (halfSize > 0) mean.apply(levels);
  const auto [least, greatest] = std::minmax_element(levels.data(), levels.data() + levels.getNumElements());
  if (!(*least < *greatest)) return std::nullopt;

  IsodataThresholding<float> isodata;
  isodata.setBins(*least, (*greatest - *least) / numBins, numBins);
  const float threshold = isodata.computeThreshold(levels);
  Thresholding<float> thresholding;
  thresholding.setThreshold(threshold);
  thresholding.setForegroundIsAbove(!isBorderAbove(levels, threshold));
  const std::vector<Curve<int>> boundaries = thresholding.contours(levels);
  const auto largest =
      std::max_element(boundaries.begin(), boundaries.end(),
                       [](const Curve<int>& a, const Curve<int>& b) { return a.twiceArea(0, 1) < b.twiceArea(0, 1); });
  if (largest == boundaries.end() || largest->twiceArea(0, 1) <= 0) return std::nullopt;
  Curve<int> contour = pixelsAlong(*largest);
  for (int i = 0; i < contour.getNumVertices(); ++i)
  {
    contour.data(i)[0] += roi.x();
    contour.data(i)[1] += roi.y();
  }
  return contour;
}
