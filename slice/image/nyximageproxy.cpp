#include "slice/image/nyximageproxy.h"

#include "image/image.h"
#include "slice/image/imagesourcename.h"
#include "slice/image/nyximagereader.h"
#include "slice/image/nyximageserver.h"

#include <QSignalBlocker>

#include <cmath>

NYXImageProxy::~NYXImageProxy()
{
  const QSignalBlocker nobodyListens(this); // who would, is perhaps half destroyed
  if (_server) _server->detachProxy(*this);
}

void NYXImageProxy::setImageSource(const ImageSource* source)
{
  if (_server) _server->detachProxy(*this);
  _source.reset();
  _key.clear();
  clearOriginalImageSize();
  QString problem;
  if (source)
  {
    _key = imageSourceKey(*source);
    _source = source->clone();
    try
    {
      _originalImageSize = QSize(_source->getSize2(), _source->getSize1());
    }
    catch (const Exception& error)
    {
      problem = NYXImageReader::problemText(error, *source);
    }
  }
  setProblem(problem);
}

NYXImageServer& NYXImageProxy::getImageServer() const
{
  if (_server) return *_server;
  throw ProgramError("NYXImageServer& NYXImageProxy::getImageServer() const", "This proxy has no image server");
}

void NYXImageProxy::requireImage(const char* where) const
{
  if (_images.empty()) throw ProgramError(where, "This proxy has no image");
}

const Image& NYXImageProxy::getImage() const
{
  requireImage("const Image& NYXImageProxy::getImage() const");
  return *_images.front();
}

const Image& NYXImageProxy::getImage(int level) const
{
  requireImage("const Image& NYXImageProxy::getImage(int) const");
  return *_images[static_cast<std::size_t>(level)];
}

const Image& NYXImageProxy::getImageForZoom(float zoom) const
{
  requireImage("const Image& NYXImageProxy::getImageForZoom(float) const");
  return getImage(levelForZoom(zoom));
}

int NYXImageProxy::levelForZoom(float zoom) const
{
  requireImage("int NYXImageProxy::levelForZoom(float) const");
  const double wantedWidth = std::round(double{1} * _images.front()->getWidth() * zoom);
  int level = 1;
  while (level < getNumImages() && getImage(level).getWidth() > wantedWidth) ++level;
  return level - 1;
}

void NYXImageProxy::appendImage(const Image& image)
{
  _images.push_back(&image);
  _problem.clear();
  emit imageChanged();
}

void NYXImageProxy::clearImage()
{
  if (_images.empty()) return;
  _images.clear();
  emit imageChanged();
}

void NYXImageProxy::setProblem(const QString& problem)
{
  if (_problem == problem) return;
  _problem = problem;
  emit imageChanged();
}
