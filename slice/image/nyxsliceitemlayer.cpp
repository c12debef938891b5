#include "slice/image/nyxsliceitemlayer.h"

#include "model/modelitem.h"
#include "model/stackslice.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{
constexpr long mostVerticesPerFrame = 12000; // drawn in full within a frame

/// The pixels that an item covers and how many vertices or runs it has.
QRect pixelBounds(const ModelItem& item)
{
  const BoundingBox<int> box = item.boundingBox();
  if (box.isEmpty()) return {};
  return {QPoint(box.getMinimum()[0], box.getMinimum()[1]), QPoint(box.getMaximum()[0], box.getMaximum()[1])};
}

long numParts(const ModelItem& item)
{
  return item.isRegion() ? item.getRLEItemSet().numItems() : item.getVertices().getNumVertices();
}

QPainter::RenderHints quality()
{
  return QPainter::Antialiasing;
}
} // namespace

bool NYXSliceItemLayer::Frame::hasSameScale(const Frame& other) const
{
  return scaleX == other.scaleX && scaleY == other.scaleY && size == other.size && pixelRatio == other.pixelRatio;
}

QTransform NYXSliceItemLayer::Frame::toCanvas() const
{
  return QTransform(scaleX, 0, 0, scaleY, 0.5 * scaleX - offset.x(), 0.5 * scaleY - offset.y());
}

void NYXSliceItemLayer::setSlice(const StackSlice* slice)
{
  _slice = slice;
  invalidate();
}

void NYXSliceItemLayer::invalidate()
{
  _bounds.clear();
  _isAllStale = true;
}

void NYXSliceItemLayer::invalidate(const ModelItem& item)
{
  addStale(item);
  _bounds.erase(&item);
  if (isOnSlice(item)) addStale(item);
}

void NYXSliceItemLayer::addStale(const ModelItem& item)
{
  const auto known = _bounds.find(&item);
  if (known != _bounds.end())
    _stale += canvasRect(known->second);
  else if (isOnSlice(item))
    _stale += canvasRect(boundsOf(item));
}

bool NYXSliceItemLayer::isOnSlice(const ModelItem& item) const
{
  for (int i = 0; _slice != nullptr && i < _slice->getNumItems(); ++i)
    if (_slice->getItem(i) == &item) return true;
  return false;
}

const NYXSliceItemLayer::Bounds& NYXSliceItemLayer::boundsOf(const ModelItem& item)
{
  const auto known = _bounds.find(&item);
  if (known != _bounds.end()) return known->second;
  return _bounds.emplace(&item, Bounds{pixelBounds(item), numParts(item), modelItemMargin(item)}).first->second;
}

QRect NYXSliceItemLayer::canvasRect(const Bounds& bounds) const
{
  if (bounds.pixels.isEmpty()) return {};
  const double margin = bounds.margin * _frame.pixelRatio;
  const QRectF pixels = QRectF(bounds.pixels).translated(-0.5, -0.5); // a pixel's centre is a whole number
  const QRectF whole = _frame.toCanvas().mapRect(pixels).adjusted(-margin, -margin, margin, margin);
  return whole.intersected(QRectF(QPointF(0, 0), _frame.size)).toAlignedRect();
}

const QImage& NYXSliceItemLayer::update(const NYXImageViewport& viewport, double pixelRatio)
{
  Frame frame;
  frame.scaleX = viewport.scaleX() * pixelRatio;
  frame.scaleY = viewport.scaleY() * pixelRatio;
  frame.offset = QPoint(static_cast<int>(std::lround(viewport.getViewOrigin().x() * frame.scaleX)),
                        static_cast<int>(std::lround(viewport.getViewOrigin().y() * frame.scaleY)));
  frame.size = viewport.getCanvasSize() * pixelRatio;
  frame.pixelRatio = pixelRatio;

  if (_isAllStale || !frame.hasSameScale(_frame))
  {
    _frame = frame;
    if (_picture.size() != frame.size) _picture = QImage(frame.size, QImage::Format_ARGB32_Premultiplied);
    _needsRefinement = false;
    _stale = QRect(QPoint(0, 0), frame.size);
  }
  else if (frame.offset != _frame.offset)
    scroll(frame.offset);
  _isAllStale = false;
  if (!_stale.isEmpty()) paint(_stale);
  _stale = QRegion();
  return _picture;
}

void NYXSliceItemLayer::scroll(const QPoint& offset)
{
  const QPoint shift = _frame.offset - offset;
  _frame.offset = offset;
  const QRect all(QPoint(0, 0), _frame.size);
  const QRect kept = all.translated(shift) & all;
  if (kept.isEmpty())
  {
    _stale = all;
    return;
  }
  _stale.translate(shift);
  _stale &= all;
  const QRect source = kept.translated(-shift);
  const auto numBytes = static_cast<std::size_t>(kept.width()) * sizeof(QRgb);
  for (int k = 0; k < kept.height(); ++k)
  {
    const int i = shift.y() > 0 ? kept.height() - 1 - k : k; // lines are read before they are overwritten
    std::memmove(_picture.scanLine(kept.y() + i) + std::ptrdiff_t(kept.x()) * 4,
                 _picture.constScanLine(source.y() + i) + std::ptrdiff_t(source.x()) * 4, numBytes);
  }
  _stale += QRegion(all) - kept;
}

void NYXSliceItemLayer::paint(const QRegion& region)
{
  _refined = QImage();
  QPainter painter(&_picture);
  painter.setClipRegion(region);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(region.boundingRect(), Qt::transparent);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  if (_slice == nullptr) return;
  const bool isThin = _needsRefinement || visibleComplexity(region) > mostVerticesPerFrame;
  _needsRefinement = isThin;
  paintItems(painter, region, isThin ? NYXItemDetail::Thin : NYXItemDetail::Full);
}

/// An upper bound of the vertices that are drawn: an item shows no more of them than there are pixels along it.
long NYXSliceItemLayer::visibleComplexity(const QRegion& region)
{
  long sum = 0;
  for (int i = 0; i < _slice->getNumItems(); ++i)
  {
    const Bounds& bounds = boundsOf(*_slice->getItem(i));
    const QRect rect = canvasRect(bounds);
    if (region.intersects(rect)) sum += std::min(bounds.numVertices, 2L * (rect.width() + rect.height()));
  }
  return sum;
}

void NYXSliceItemLayer::paintItems(QPainter& painter, const QRegion& region, NYXItemDetail detail)
{
  painter.setRenderHints(quality());
  const QTransform toCanvas = _frame.toCanvas();
  for (int i = 0; i < _slice->getNumItems(); ++i)
  {
    const ModelItem& item = *_slice->getItem(i);
    if (region.intersects(canvasRect(boundsOf(item)))) drawModelItem(painter, item, toCanvas, detail);
  }
}

bool NYXSliceItemLayer::refine(int milliseconds)
{
  if (!_needsRefinement || _slice == nullptr) return true;
  if (_refined.isNull())
  {
    _refined = QImage(_frame.size, QImage::Format_ARGB32_Premultiplied);
    _refined.fill(Qt::transparent);
    _numRefined = 0;
  }
  QElapsedTimer time;
  time.start();
  QPainter painter(&_refined);
  painter.setRenderHints(quality());
  const QTransform toCanvas = _frame.toCanvas();
  for (; _numRefined < _slice->getNumItems(); ++_numRefined)
  {
    if (time.elapsed() >= milliseconds) return false;
    const ModelItem& item = *_slice->getItem(_numRefined);
    if (!canvasRect(boundsOf(item)).isEmpty()) drawModelItem(painter, item, toCanvas, NYXItemDetail::Full);
  }
  painter.end();
  _picture = std::move(_refined);
  _refined = QImage();
  _needsRefinement = false;
  return true;
}
