#include "viewer/scene/sliceimages.h"

#include "geometry/reconstruction/stackreconstruction.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "numeric/exception.h"
#include "numeric/progresssubject.h"

#include <algorithm>

namespace
{
using Point = std::array<float, 3>;

constexpr int largestSide = 256; // of a volume's planes

/// The place in space of a point of a slice's image, in pixels.
Point placeOf(const StackReconstruction<float>& reconstruction, int slice, float u, float v)
{
  const Vector<float>& m = reconstruction.getMap(slice);
  return {m[0] * u + m[1] * v + m[2], m[3] * u + m[4] * v + m[5], reconstruction.getZMap()[slice]};
}

Point difference(const Point& a, const Point& b)
{
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Image readImage(const Stack& stack, int slice, ProgressSubject& subject)
{
  const ImageSource* const source = stack.getSlice(slice)->getImageSource();
  if (source == nullptr)
    throw FileReadError("Image readImage(const Stack&, ...)",
                        "Slice " + stack.getSlice(slice)->getName() + " has no image");
  Image image;
  ImageReader::read(image, *source, subject);
  return image;
}

/// The means of blocks of step x step pixels.
void reduceInto(PixelMatrix<unsigned char>& plane, const Image& image, int step)
{
  for (int i = 0; i < plane.getSize1(); ++i)
    for (int j = 0; j < plane.getSize2(); ++j)
    {
      unsigned int sum = 0, count = 0;
      for (int y = i * step; y < std::min((i + 1) * step, image.getHeight()); ++y)
        for (int x = j * step; x < std::min((j + 1) * step, image.getWidth()); ++x, ++count) sum += image.getLine(y)[x];
      plane(i, j) = static_cast<unsigned char>((sum + count / 2) / std::max(count, 1U));
    }
}

VolumePlacement placementOf(const Stack& stack, int step)
{
  const StackReconstruction<float> reconstruction(stack);
  const auto s = static_cast<float>(step);
  const float middle = (s - 1) / 2; // of a block, from its first pixel
  const auto at = [&](int slice, float u, float v) { return placeOf(reconstruction, slice, u, v); };
  const Point origin = at(0, middle, middle);
  const int second = std::min(1, stack.getNumSlices() - 1);
  const Point planeStep = second == 0 ? Point{0, 0, 1} : difference(at(second, middle, middle), origin);
  return {origin, difference(at(0, middle + s, middle), origin), difference(at(0, middle, middle + s), origin),
          planeStep};
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
  if (!stack.isRegular())
    throw UsageError("createStackVolume(const Stack&, ...)",
                     "The images do not make up a volume: the slices differ in size, alignment or distance");
  const ProgressStep whole(subject, "Reading images...", stack.getNumSlices());
  VoxelMatrix<unsigned char> volume(0, 0, 0);
  int step = 1;
  for (int k = 0; k < stack.getNumSlices(); ++k)
  {
    Image image = readImage(stack, k, subject);
    image.make8bitsGrayscale();
    if (k == 0)
    {
      step = (std::max({image.getWidth(), image.getHeight(), 1}) - 1) / largestSide + 1;
      volume.setSize((image.getHeight() + step - 1) / step, (image.getWidth() + step - 1) / step, stack.getNumSlices());
    }
    reduceInto(volume[k], image, step);
    subject.progress(k + 1);
    subject.throwIfCancelled("createStackVolume(const Stack&, ...)");
  }
  return std::make_unique<VoxelMatrixPainterGL>(volume, placementOf(stack, step), mode);
}
