#include "slice/image/nyximageserverdata.h"

#include "image/imagesource.h"
#include "slice/image/nyximageproxy.h"

#include <QMutexLocker>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>

namespace
{
std::int64_t numPixels(const ImageSource& source)
{
  const std::vector<int> size = source.getSize();
  return std::int64_t{size[0]} * size[1];
}

/// Bytes per pixel once the colormap is expanded.
int numBytesPerPixel(const ImageSource& source)
{
  const Colormap* const colormap = source.getColormap();
  return colormap && !colormap->isGrayscale() ? 3 : source.getDepth() / 8;
}

std::int64_t dataLength(const Image& image)
{
  return static_cast<std::int64_t>(image.dataLength());
}
} // namespace

NYXImageServerData::NYXImageServerData(const ImageSource& source, const QString& key, NYXImageReader::ReadFunction read)
  : _key(key), _reader(source, std::move(read))
{
  try
  {
    _numBytes = numPixels(source) * source.getDepth() / 8;
    _numNeededBytes = numPixels(source) * numBytesPerPixel(source) / 3 * 4; // the pyramid adds a third
  }
  catch (const Exception&)
  {
    // The reader will tell.
  }
  connect(&_reader, &NYXImageWorker::finished, this, &NYXImageServerData::readerFinished, Qt::QueuedConnection);
  connect(&_resizer, &NYXImageWorker::finished, this, &NYXImageServerData::resizerFinished, Qt::QueuedConnection);
  connect(&_resizer, &NYXImageResizer::imageAvailable, this, &NYXImageServerData::reducedImageAvailable,
          Qt::QueuedConnection);
  connect(&_reader, &NYXImageWorker::progressed, this, [this](double share) { emit progressed(readerShare * share); });
  connect(&_resizer, &NYXImageWorker::progressed, this,
          [this](double share) { emit progressed(readerShare + (1 - readerShare) * share); });
}

NYXImageServerData::~NYXImageServerData()
{
  cancel();
  clear();
}

std::int64_t NYXImageServerData::numHeldBytes() const
{
  if (_isRunning) return _numNeededBytes;
  std::int64_t sum = 0;
  for (const Image* image : images()) sum += dataLength(*image);
  return sum;
}

/// What may be shown by now.
std::vector<const Image*> NYXImageServerData::images() const
{
  std::vector<const Image*> images;
  if (_fullImage && _reader.isDone()) images.push_back(_fullImage.get());
  for (const auto& image : _reducedImages) images.push_back(image.get());
  return images;
}

std::vector<NYXImageProxy*> NYXImageServerData::proxies() const
{
  const QMutexLocker lock(&_mutex);
  return _proxies;
}

void NYXImageServerData::attachProxy(NYXImageProxy& proxy)
{
  {
    const QMutexLocker lock(&_mutex);
    _proxies.push_back(&proxy);
  }
  for (const Image* image : images()) give(*image, proxy);
}

void NYXImageServerData::detachProxy(NYXImageProxy& proxy)
{
  const QMutexLocker lock(&_mutex);
  std::erase(_proxies, &proxy);
}

bool NYXImageServerData::hasProxies() const
{
  const QMutexLocker lock(&_mutex);
  return !_proxies.empty();
}

bool NYXImageServerData::hasProxy(const NYXImageProxy& proxy) const
{
  const QMutexLocker lock(&_mutex);
  return std::find(_proxies.begin(), _proxies.end(), &proxy) != _proxies.end();
}

void NYXImageServerData::run(const QSize& baseSize)
{
  _baseSize = baseSize;
  _fullImage = std::make_unique<Image>();
  _reader.setImage(_fullImage.get());
  _isRunning = true;
  start(_readerThread, _reader);
}

void NYXImageServerData::start(QThread& thread, NYXImageWorker& worker)
{
  const QMutexLocker lock(&_mutex);
  worker.moveToThread(&thread);
  connect(&thread, &QThread::started, &worker, &NYXImageWorker::run);
  thread.start(QThread::InheritPriority);
}

void NYXImageServerData::stop(QThread& thread, const NYXImageWorker& worker)
{
  thread.quit();
  thread.wait();
  static_cast<void>(worker.isDone()); // what the thread did comes before, also for checkers that do not know Qt's wait
}

void NYXImageServerData::readerFinished()
{
  if (!_isRunning || !_reader.isDone()) return; // cancelled since
  stop(_readerThread, _reader);
  if (!problem().isEmpty())
  {
    _isRunning = false;
    emit canceled(this);
    return;
  }
  _resizer.setImage(_fullImage.get());
  _resizer.setBaseSize(_baseSize);
  start(_resizerThread, _resizer);
  notifyProxysUpdateImage(*_fullImage);
}

void NYXImageServerData::reducedImageAvailable()
{
  if (!_isRunning) return;
  std::unique_ptr<Image> image = _resizer.takeImage();
  if (!image) return;
  _reducedImages.push_back(std::move(image));
  notifyProxysUpdateImage(*_reducedImages.back());
}

void NYXImageServerData::resizerFinished()
{
  if (!_isRunning) return;
  stop(_resizerThread, _resizer);
  _isRunning = false;
  emit finished(this);
}

void NYXImageServerData::notifyProxysUpdateImage(const Image& image)
{
  for (NYXImageProxy* proxy : proxies()) give(image, *proxy);
}

/// Whoever hears of an image may detach proxies, whose image may then be gone.
void NYXImageServerData::give(const Image& image, NYXImageProxy& proxy)
{
  if (hasProxy(proxy)) proxy.appendImage(image);
}

void NYXImageServerData::cancel()
{
  _reader.cancel();
  _resizer.cancel();
  stop(_readerThread, _reader);
  stop(_resizerThread, _resizer);
  _isRunning = false;
}

void NYXImageServerData::clear(const QString& problem)
{
  std::vector<QPointer<NYXImageProxy>> detached; // whoever hears of it may delete others
  for (NYXImageProxy* proxy : proxies())
  {
    const QSignalBlocker untilAllAreDetached(proxy);
    detachProxy(*proxy);
    proxy->setImageServer(nullptr);
    proxy->clearImage();
    proxy->setProblem(problem);
    detached.emplace_back(proxy);
  }
  _reducedImages.clear();
  _fullImage.reset();
  for (const QPointer<NYXImageProxy>& proxy : detached)
    if (proxy) emit proxy->imageChanged();
}
