#include "model/slice.h"

#include "image/image.h"
#include "image/imagereader.h"
#include "model/imagenames.h"
#include "model/storabletext.h"
#include "numeric/exception.h"
#include "numeric/maths.h"

#include <cstdint>

void Slice::setName(const std::string& name)
{
  requireStorableName(name, "void Slice::setName(const std::string&)");
  _name = name;
}

void Slice::setImageSource(const ImageSource& source)
{
  const std::string path = imagesPath();
  _imageSource = path.empty() ? source.clone() : withResolvedNames(source, path);
}

void Slice::resolveImageNames()
{
  if (_imageSource && !imagesPath().empty()) _imageSource = withResolvedNames(*_imageSource, imagesPath());
}

int Slice::width() const
{
  if (!_imageSource) return 0;
  const int imageWidth = _imageSource->getSize2();
  const float aspectRatio = _pixelCalibration.getAspectRatio();
  return aspectRatio <= 1 ? imageWidth : Maths::fround(static_cast<float>(imageWidth) / aspectRatio);
}

int Slice::height() const
{
  if (!_imageSource) return 0;
  const int imageHeight = _imageSource->getSize1();
  const float aspectRatio = _pixelCalibration.getAspectRatio();
  return aspectRatio > 1 ? imageHeight : Maths::fround(aspectRatio * static_cast<float>(imageHeight));
}

BoundingBox<int> Slice::boundingBox() const
{
  return BoundingBox<int>(Vector<int>{0, 0}, Vector<int>{width() - 1, height() - 1});
}

unsigned int Slice::sizeForSize(unsigned int& boxWidth, unsigned int& boxHeight) const
{
  const auto w = static_cast<std::uint64_t>(width()), h = static_cast<std::uint64_t>(height());
  const std::uint64_t s = w * boxHeight, t = h * boxWidth;
  const auto rounded = [](std::uint64_t product, std::uint64_t size)
  { return static_cast<unsigned int>(Maths::fround(static_cast<double>(product) / static_cast<double>(size))); };
  if (s > t) return boxHeight = rounded(t, w);
  if (s < t) return boxWidth = rounded(s, h);
  return static_cast<unsigned int>(h);
}

void Slice::load(Image& image) const
{
  if (!_imageSource) throw UsageError("void Slice::load(Image&) const", "The slice \"" + _name + "\" has no image");
  ImageReader::read(image, *_imageSource);
}
