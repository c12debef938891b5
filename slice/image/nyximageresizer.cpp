#include "slice/image/nyximageresizer.h"

#include "image/image.h"
#include "image/imagereduction.h"

#include <algorithm>
#include <iostream>
#include <new>

NYXImageResizer::NYXImageResizer() = default;
NYXImageResizer::~NYXImageResizer() = default;

std::unique_ptr<Image> NYXImageResizer::takeImage()
{
  const std::lock_guard lock(_mutex);
  if (_images.empty()) return nullptr;
  std::unique_ptr<Image> image = std::move(_images.front());
  _images.pop_front();
  return image;
}

void NYXImageResizer::work(ProgressSubject& subject)
{
  try
  {
    _baseSize == QSize(0, 0) ? makePyramid(subject) : makeBaseSize(subject);
  }
  catch (const std::bad_alloc&)
  {
    std::cerr << "There is not enough memory for reduced copies of an image\n" << std::flush; // it is shown without
  }
}

void NYXImageResizer::makePyramid(ProgressSubject& subject)
{
  constexpr int smallest = 64; // size of an image that is still halved
  const Image* last = _image;
  while (last->getWidth() >= smallest && last->getHeight() >= smallest)
  {
    last = publish(halved(*last, subject));
  }
}

void NYXImageResizer::makeBaseSize(ProgressSubject& subject)
{
  if (_image->getSize() == 0) return;
  const QSize size = QSize(_image->getWidth(), _image->getHeight()).scaled(_baseSize, Qt::KeepAspectRatio);
  publish(resized(*_image, std::max(size.width(), 1), std::max(size.height(), 1), subject));
}

const Image* NYXImageResizer::publish(Image&& image)
{
  auto published = std::make_unique<Image>(std::move(image));
  const Image* const address = published.get();
  {
    const std::lock_guard lock(_mutex);
    _images.push_back(std::move(published));
  }
  emit imageAvailable();
  return address;
}
