#include "viewer/scene/sliceimages.h"

#include "geometry/reconstruction/stackreconstruction.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesource.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "numeric/exception.h"
#include "numeric/progresssubject.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace
{
using Point = std::array<float, 3>;

constexpr int largestSide = 256; // of a volume
constexpr int largestStep = 1024;

/// The place in space of a point of a slice's image, in pixels.
Point placeOf(const StackReconstruction<float>& reconstruction, int slice, float u, float v)
{
  const Vector<float>& m = reconstruction.getMap(slice);
  return {m[0] * u + m[1] * v + m[2], m[3] * u + m[4] * v + m[5], reconstruction.getZMap()[slice]};
}

void requireImage(const Stack& stack, int slice)
{
  if (stack.getSlice(slice)->getImageSource() == nullptr)
    throw FileReadError("void requireImage(const Stack&, int)",
                        "Slice " + stack.getSlice(slice)->getName() + " has no image");
}

Image readImage(const Stack& stack, int slice, ProgressSubject& subject)
{
  requireImage(stack, slice);
  Image image;
  ImageReader::read(image, *stack.getSlice(slice)->getImageSource(), subject);
  return image;
}

/// Grey levels of means of blocks of step x step pixels, and the outlines of the blocks as the pixels of an image.
PixelMatrix<unsigned char> reduced(Image& image, int step)
{
  image.make8bitsGrayscale();
  PixelMatrix<unsigned char> means((image.getHeight() + step - 1) / step, (image.getWidth() + step - 1) / step);
  for (int i = 0; i < means.getSize1(); ++i)
    for (int j = 0; j < means.getSize2(); ++j)
    {
      unsigned int sum = 0, count = 0;
      for (int y = i * step; y < std::min((i + 1) * step, image.getHeight()); ++y)
        for (int x = j * step; x < std::min((j + 1) * step, image.getWidth()); ++x, ++count) sum += image.getLine(y)[x];
      means(i, j) = static_cast<unsigned char>((sum + count / 2) / std::max(count, 1U));
    }
  return means;
}

/// A grid in space along the axes: rows against y, columns along x, planes along z.
struct Grid
{
  float left = INFINITY, right = -INFINITY, bottom = INFINITY, top = -INFINITY;
  float pixelSize = 0; // at most
  float lowest = 0;
  float planeDistance = 1;
  int numPlanes = 0;

  int numColumns() const { return numPixels(right - left); }
  int numRows() const { return numPixels(top - bottom); }
  float pixelWidth() const { return (right - left) / static_cast<float>(numColumns()); }
  float pixelHeight() const { return (top - bottom) / static_cast<float>(numRows()); }
  VolumePlacement placement() const
  {
    return {{left + pixelWidth() / 2, top - pixelHeight() / 2, lowest},
            {pixelWidth(), 0, 0},
            {0, -pixelHeight(), 0},
            {0, 0, planeDistance}};
  }

private:
  /// That fill a length exactly; what rounding adds to it makes no pixel of its own.
  int numPixels(float length) const
  {
    return std::clamp(static_cast<int>(std::ceil(length / pixelSize - 0.01F)), 1, largestSide);
  }
};

/// Planes at the smallest distance of two slices, pixels no smaller than the finest and not too many.
Grid gridAround(const Stack& stack, const StackReconstruction<float>& reconstruction)
{
  Grid grid;
  float finest = INFINITY;
  std::vector<float> heights;
  for (int k = 0; k < stack.getNumSlices(); ++k)
  {
    const Vector<float>& m = reconstruction.getMap(k);
    finest = std::min({finest, std::hypot(m[0], m[3]), std::hypot(m[1], m[4])});
    heights.push_back(reconstruction.getZMap()[k]);
    const ImageSource& source = *stack.getSlice(k)->getImageSource();
    const float w = static_cast<float>(source.getSize2()), h = static_cast<float>(source.getSize1());
    for (const auto& [u, v] : {std::array{0.F, 0.F}, std::array{w, 0.F}, std::array{0.F, h}, std::array{w, h}})
    {
      const Point p = placeOf(reconstruction, k, u - 0.5F, v - 0.5F);
      grid.left = std::min(grid.left, p[0]);
      grid.right = std::max(grid.right, p[0]);
      grid.bottom = std::min(grid.bottom, p[1]);
      grid.top = std::max(grid.top, p[1]);
    }
  }
  grid.pixelSize = std::max({finest, (grid.right - grid.left) / largestSide, (grid.top - grid.bottom) / largestSide});
  std::sort(heights.begin(), heights.end());
  grid.lowest = heights.front();
  float distance = INFINITY;
  for (std::size_t k = 1; k < heights.size(); ++k)
    if (heights[k] > heights[k - 1]) distance = std::min(distance, heights[k] - heights[k - 1]);
  const float extent = heights.back() - heights.front();
  if (std::isfinite(distance)) grid.planeDistance = std::max(distance, extent / (largestSide - 1));
  grid.numPlanes = 1 + static_cast<int>(std::lround(extent / grid.planeDistance));
  if (grid.numPlanes > 1) grid.planeDistance = extent / static_cast<float>(grid.numPlanes - 1);
  return grid;
}

/// The slice that is nearest to each plane.
std::vector<int> nearestSlices(const Grid& grid, const Vector<float>& heights)
{
  std::vector<int> nearest;
  for (int plane = 0; plane < grid.numPlanes; ++plane)
  {
    const float z = grid.lowest + static_cast<float>(plane) * grid.planeDistance;
    int best = 0;
    for (int k = 1; k < heights.getSize(); ++k)
      if (std::abs(heights[k] - z) < std::abs(heights[best] - z)) best = k;
    nearest.push_back(best);
  }
  return nearest;
}

/// Fills a plane with what a slice's image has at the places of its pixels: at least 1, and 0 where it has nothing.
void fillPlane(PixelMatrix<unsigned char>& plane, const Grid& grid, const PixelMatrix<unsigned char>& image, int step,
               const Vector<float>& m)
{
  const float determinant = m[0] * m[4] - m[1] * m[3];
  const float width = grid.pixelWidth(), height = grid.pixelHeight();
  for (int i = 0; i < plane.getSize1(); ++i)
    for (int j = 0; j < plane.getSize2(); ++j)
    {
      const float x = grid.left + (static_cast<float>(j) + 0.5F) * width - m[2];
      const float y = grid.top - (static_cast<float>(i) + 0.5F) * height - m[5];
      const float u = (m[4] * x - m[1] * y) / determinant + 0.5F, v = (m[0] * y - m[3] * x) / determinant + 0.5F;
      const int column = static_cast<int>(std::floor(u / static_cast<float>(step)));
      const int row = static_cast<int>(std::floor(v / static_cast<float>(step)));
      const bool isInside = row >= 0 && row < image.getSize1() && column >= 0 && column < image.getSize2();
      plane(i, j) = isInside ? std::max<unsigned char>(image(row, column), 1) : 0;
    }
}
} // namespace

/// Pixels are drawn around their centres, which have whole numbers.
std::unique_ptr<ImagePlanePainterGL> createSlicePlane(const Stack& stack, int slice, ProgressSubject& subject)
{
  const Image image = readImage(stack, slice, subject);
  const StackReconstruction<float> reconstruction(stack);
  const float right = static_cast<float>(image.getWidth()) - 0.5F,
              bottom = static_cast<float>(image.getHeight()) - 0.5F;
  const auto at = [&](float u, float v) { return placeOf(reconstruction, slice, u, v); };
  return std::make_unique<ImagePlanePainterGL>(
      image, std::array{at(-0.5F, -0.5F), at(right, -0.5F), at(right, bottom), at(-0.5F, bottom)});
}

std::unique_ptr<VoxelMatrixPainterGL> createStackVolume(const Stack& stack, VoxelMatrixPainterGL::Mode mode,
                                                        ProgressSubject& subject)
{
  constexpr const char* signature = "createStackVolume(const Stack&, VoxelMatrixPainterGL::Mode, ProgressSubject&)";
  const ProgressStep whole(subject, "Reading images...", stack.getNumSlices());
  for (int k = 0; k < stack.getNumSlices(); ++k) requireImage(stack, k);
  if (stack.getNumSlices() == 0) throw UsageError(signature, "The stack has no slices");
  const StackReconstruction<float> reconstruction(stack);
  const Grid grid = gridAround(stack, reconstruction);
  const std::vector<int> slices = nearestSlices(grid, reconstruction.getZMap());
  VoxelMatrix<unsigned char> volume(grid.numRows(), grid.numColumns(), grid.numPlanes);
  for (int k = 0; k < stack.getNumSlices(); ++k)
  {
    const Vector<float>& m = reconstruction.getMap(k);
    const float pixelSize = std::min(std::hypot(m[0], m[3]), std::hypot(m[1], m[4]));
    const int step = std::clamp(static_cast<int>(grid.pixelSize / pixelSize), 1, largestStep);
    Image image = readImage(stack, k, subject);
    const PixelMatrix<unsigned char> means = reduced(image, step);
    for (int plane = 0; plane < grid.numPlanes; ++plane)
      if (slices[static_cast<std::size_t>(plane)] == k) fillPlane(volume[plane], grid, means, step, m);
    subject.progress(k + 1);
    subject.throwIfCancelled(signature);
  }
  return std::make_unique<VoxelMatrixPainterGL>(volume, grid.placement(), mode);
}
