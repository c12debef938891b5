#include "slice/image/nyxpanoramathumbnails.h"

#include "app/core/nyxstack.h"
#include "image/image.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyximageviewport.h"
#include "slice/image/nyxitempainter.h"
#include "slice/image/nyxsliceimageproxy.h"
#include "slice/image/nyxsliceimageserver.h"
#include "slice/image/nyxslicepixmapcache.h"
#include "slice/image/qimageconversion.h"

#include <QElapsedTimer>
#include <QPainter>

#include <algorithm>
#include <functional>

namespace
{
constexpr int drawingMilliseconds = 8; // at a time
constexpr double itemScale = 0.6;      // of lines and points, against those of a slice

NYXSlicePixmapCache* cacheOf(const NYXStack& stack)
{
  return dynamic_cast<NYXSlicePixmapCache*>(stack.getSlicePixmapCache());
}

NYXImageServer* serverOf(const NYXStack& stack)
{
  return dynamic_cast<NYXImageServer*>(stack.getPanoramaImageServer());
}

/// Not valid when nobody knows it.
QSize imageSize(const NYXSliceImageProxy& proxy)
{
  const QSize& size = proxy.getOriginalImageSize();
  return size.isValid() ? size : NYXSliceImageProxy::fallbackImageSize(*proxy.getSlice());
}

NYXImageViewport fitted(const NYXSliceImageProxy& proxy, const QSize& box)
{
  NYXImageViewport viewport;
  viewport.setImageSize(imageSize(proxy));
  viewport.setPixelCalibration(proxy.getPixelCalibration());
  viewport.setCanvasSize(box);
  viewport.setBestFitZoomFactor();
  return viewport;
}

QRectF placeOf(const NYXImageViewport& viewport)
{
  const QSize image = viewport.getImageSize();
  if (!image.isValid()) return {};
  const QSizeF size(std::max(1.0, image.width() * viewport.scaleX()),
                    std::max(1.0, image.height() * viewport.scaleY()));
  const QSizeF box = viewport.getCanvasSize();
  return {QPointF((box.width() - size.width()) / 2, (box.height() - size.height()) / 2), size};
}
} // namespace

NYXPanoramaThumbnails::NYXPanoramaThumbnails(QObject* parent) : QObject(parent)
{
  _drawing.setSingleShot(true);
  connect(&_drawing, &QTimer::timeout, this, &NYXPanoramaThumbnails::drawStaleItems);
}

NYXPanoramaThumbnails::~NYXPanoramaThumbnails()
{
  reset();
}

void NYXPanoramaThumbnails::setStack(NYXStack* stack)
{
  reset();
  _server = nullptr;
  _cache = nullptr;
  if (stack == nullptr) return;
  if (serverOf(*stack) == nullptr) stack->setPanoramaImageServer(std::make_unique<NYXSliceImageServer>());
  if (cacheOf(*stack) == nullptr) stack->setSlicePixmapCache(std::make_unique<NYXSlicePixmapCache>());
  _server = serverOf(*stack);
  _cache = cacheOf(*stack);
  _server->setAutoDelete(true);
}

void NYXPanoramaThumbnails::setBox(const QSize& box, double pixelRatio)
{
  if (box == _box && pixelRatio == _pixelRatio) return;
  reset();
  _box = box;
  _pixelRatio = pixelRatio;
}

void NYXPanoramaThumbnails::show(const std::vector<const StackSlice*>& slices)
{
  if (_server != nullptr) _server->setBaseSize(_box * _pixelRatio);
  std::vector<const StackSlice*> unwanted;
  for (const auto& [slice, entry] : _entries)
    if (std::find(slices.begin(), slices.end(), slice) == slices.end()) unwanted.push_back(slice);
  drop(unwanted);
  for (const StackSlice* slice : slices)
    if (!_entries.contains(slice)) add(*slice);
  if (!_entries.empty() && !_drawing.isActive()) _drawing.start(0);
}

/// The last that were asked for go first: the one that is being read is among the others, and the server must not begin
/// with the next one only to stop again.
void NYXPanoramaThumbnails::drop(std::vector<const StackSlice*> slices)
{
  std::ranges::sort(slices, std::greater(), [this](const StackSlice* slice) { return _entries.at(slice).number; });
  for (const StackSlice* slice : slices) _entries.erase(slice);
}

/// A picture that was kept may have been made for another screen.
bool NYXPanoramaThumbnails::isAsLargeAsTheBox(const QPixmap& picture) const
{
  const QSize box = _box * _pixelRatio;
  return picture.width() == box.width() || picture.height() == box.height();
}

void NYXPanoramaThumbnails::add(const StackSlice& slice)
{
  Entry& entry = _entries[&slice];
  entry.number = _numAdded++;
  entry.proxy = std::make_unique<NYXSliceImageProxy>(&slice);
  entry.thumbnail.place = placeOf(fitted(*entry.proxy, _box));
  entry.thumbnail.problem = entry.proxy->problem();
  if (!entry.proxy->problem().isEmpty()) return;
  const QPixmap* const kept = _cache->find(&slice);
  if (kept != nullptr && isAsLargeAsTheBox(*kept) && _keptKeys[&slice] == entry.proxy->key())
    entry.thumbnail.image = *kept;
  else
  {
    connect(entry.proxy.get(), &NYXImageProxy::imageChanged, this, [this, &slice] { takeImage(slice); });
    _server->attachProxy(*entry.proxy);
  }
}

/// The reduced image comes after the whole one, neither of which is needed any more then.
void NYXPanoramaThumbnails::takeImage(const StackSlice& slice)
{
  Entry& entry = _entries.at(&slice);
  NYXSliceImageProxy& proxy = *entry.proxy;
  entry.thumbnail.problem = proxy.problem();
  if (proxy.getNumImages() > 1)
  {
    entry.thumbnail.image = QPixmap::fromImage(toQImage(proxy.getImage(1)));
    _cache->insert(&slice, std::make_unique<QPixmap>(entry.thumbnail.image));
    _keptKeys[&slice] = proxy.key();
    proxy.disconnect(this);
    _server->detachProxy(proxy);
  }
  emit changed();
}

const NYXPanoramaThumbnails::Thumbnail* NYXPanoramaThumbnails::find(const StackSlice& slice) const
{
  const auto entry = _entries.find(&slice);
  return entry == _entries.end() ? nullptr : &entry->second.thumbnail;
}

void NYXPanoramaThumbnails::invalidateItems(const StackSlice& slice)
{
  const auto entry = _entries.find(&slice);
  if (entry == _entries.end()) return;
  entry->second.areItemsStale = true;
  if (!_drawing.isActive()) _drawing.start(0);
}

void NYXPanoramaThumbnails::invalidateItems()
{
  for (auto& [slice, entry] : _entries) entry.areItemsStale = true;
  if (!_entries.empty() && !_drawing.isActive()) _drawing.start(0);
}

void NYXPanoramaThumbnails::reset()
{
  show({});
}

void NYXPanoramaThumbnails::forget(NYXStack& stack, const StackSlice& slice)
{
  _entries.erase(&slice);
  _keptKeys.erase(&slice);
  if (NYXSlicePixmapCache* const cache = cacheOf(stack)) cache->remove(&slice);
}

void NYXPanoramaThumbnails::drawStaleItems()
{
  QElapsedTimer time;
  time.start();
  bool isAnyDrawn = false;
  for (auto& [slice, entry] : _entries)
  {
    if (!entry.areItemsStale) continue;
    if (time.elapsed() >= drawingMilliseconds)
    {
      _drawing.start(0); // whatever else waits comes first
      break;
    }
    drawItems(*slice, entry);
    isAnyDrawn = true;
  }
  if (isAnyDrawn) emit changed();
}

void NYXPanoramaThumbnails::drawItems(const StackSlice& slice, Entry& entry) const
{
  entry.areItemsStale = false;
  entry.thumbnail.items = QPixmap();
  const NYXImageViewport viewport = fitted(*entry.proxy, _box);
  entry.thumbnail.place = placeOf(viewport); // which the items may have made larger
  if (slice.getNumItems() == 0 || !viewport.getImageSize().isValid()) return;
  QPixmap picture(_box * _pixelRatio);
  picture.setDevicePixelRatio(_pixelRatio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPointF corner = entry.thumbnail.place.topLeft();
  const double scaleX = viewport.scaleX() / itemScale, scaleY = viewport.scaleY() / itemScale;
  const QTransform toBox(scaleX, 0, 0, scaleY, corner.x() / itemScale + 0.5 * scaleX,
                         corner.y() / itemScale + 0.5 * scaleY);
  painter.scale(itemScale, itemScale);
  for (int i = 0; i < slice.getNumItems(); ++i)
    drawModelItem(painter, *slice.getItem(i), toBox, QRectF(QPointF(), QSizeF(_box) / itemScale), NYXItemDetail::Thin);
  painter.end();
  entry.thumbnail.items = picture;
}
