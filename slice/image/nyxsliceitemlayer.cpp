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

bool isAt(const StackSlice& slice, std::ptrdiff_t i, const ModelItem& item)
{
  return i < slice.getNumItems() && slice.getItem(static_cast<int>(i)) == &item;
}

/// The same rectangle in pixels of the screen.
QRectF onScreen(const QRect& rect, double pixelRatio)
{
  return QTransform::fromScale(1 / pixelRatio, 1 / pixelRatio).mapRect(QRectF(rect));
}
} // namespace

bool NYXSliceItemLayer::Frame::hasSameScale(const Frame& other) const
{
  return scaleX == other.scaleX && scaleY == other.scaleY && size == other.size && pixelRatio == other.pixelRatio;
}

QTransform NYXSliceItemLayer::Frame::toCanvas() const
{
  const QTransform toPicture(scaleX, 0, 0, scaleY, 0.5 * scaleX - offset.x(), 0.5 * scaleY - offset.y());
  return toPicture * QTransform::fromScale(1 / pixelRatio, 1 / pixelRatio);
}

void NYXSliceItemLayer::setSlice(const StackSlice* slice)
{
  _slice = slice;
  invalidate();
}

void NYXSliceItemLayer::invalidate()
{
  _areEntriesStale = _isAllStale = true;
}

void NYXSliceItemLayer::invalidate(const ModelItem& item)
{
  if (_areEntriesStale && _isAllStale) return;
  const auto entry = std::find_if(_entries.begin(), _entries.end(), [&](const Entry& e) { return e.item == &item; });
  if (entry != _entries.end()) _stale += canvasRect(*entry);
  if (entry != _entries.end() && !_areEntriesStale && isAt(*_slice, entry - _entries.begin(), item))
  {
    *entry = entryOf(item);
    _stale += canvasRect(*entry);
    return;
  }
  if (isOnSlice(item)) _stale += canvasRect(entryOf(item));
  _areEntriesStale = true;
}

bool NYXSliceItemLayer::isOnSlice(const ModelItem& item) const
{
  for (int i = 0; _slice != nullptr && i < _slice->getNumItems(); ++i)
    if (_slice->getItem(i) == &item) return true;
  return false;
}

NYXSliceItemLayer::Entry NYXSliceItemLayer::entryOf(const ModelItem& item)
{
  return {&item, pixelBounds(item), numParts(item), modelItemMargin(item)};
}

void NYXSliceItemLayer::updateEntries()
{
  const int numItems = _slice == nullptr ? 0 : _slice->getNumItems(); // may have changed before its event comes
  if (!_areEntriesStale && static_cast<int>(_entries.size()) == numItems) return;
  _areEntriesStale = false;
  _refined = QImage(); // counts entries
  _entries.clear();
  for (int i = 0; i < numItems; ++i) _entries.push_back(entryOf(*_slice->getItem(i)));
}

QRect NYXSliceItemLayer::staleRect() const
{
  const QRect pixels = _isAllStale ? QRect(QPoint(0, 0), _frame.size) : _stale.boundingRect();
  return onScreen(pixels, _frame.pixelRatio).toAlignedRect();
}

std::vector<const ModelItem*> NYXSliceItemLayer::itemsNear(const QPoint& position, int distance)
{
  updateEntries();
  std::vector<const ModelItem*> items;
  for (const Entry& entry : _entries)
    if (!entry.pixels.isEmpty() && entry.pixels.adjusted(-distance, -distance, distance, distance).contains(position))
      items.push_back(entry.item);
  std::sort(items.begin(), items.end());
  return items;
}

QRect NYXSliceItemLayer::canvasRect(const Entry& entry) const
{
  if (entry.pixels.isEmpty()) return {};
  const double margin = entry.margin * _frame.pixelRatio;
  const double left = entry.pixels.left() * _frame.scaleX - _frame.offset.x() - margin;
  const double top = entry.pixels.top() * _frame.scaleY - _frame.offset.y() - margin;
  const double right = (entry.pixels.right() + 1) * _frame.scaleX - _frame.offset.x() + margin;
  const double bottom = (entry.pixels.bottom() + 1) * _frame.scaleY - _frame.offset.y() + margin;
  const QSize size = _frame.size;
  if (right < 0 || bottom < 0 || left > size.width() || top > size.height()) return {};
  return QRect(QPoint(static_cast<int>(std::max(left, 0.0)), static_cast<int>(std::max(top, 0.0))),
               QPoint(static_cast<int>(std::min(right, size.width() - 1.0)),
                      static_cast<int>(std::min(bottom, size.height() - 1.0))));
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
  updateEntries();
  if (!_stale.isEmpty()) _refined = QImage();
  for (const QRect& rect : _stale) paint(rect);
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

void NYXSliceItemLayer::paint(const QRect& rect)
{
  QPainter painter(&_picture);
  painter.setClipRect(rect);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(rect, Qt::transparent);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  _needsRefinement = _needsRefinement || visibleComplexity(rect) > mostVerticesPerFrame;
  paintItems(painter, rect, _needsRefinement ? NYXItemDetail::Thin : NYXItemDetail::Full);
}

/// An upper bound of the vertices that are drawn: an item shows no more of them than there are pixels along it.
long NYXSliceItemLayer::visibleComplexity(const QRect& rect) const
{
  long sum = 0;
  for (const Entry& entry : _entries)
  {
    const QRect visible = canvasRect(entry) & rect;
    if (!visible.isEmpty()) sum += std::min(entry.numVertices, 2L * (visible.width() + visible.height()));
  }
  return sum;
}

/// Items are drawn in pixels of the screen.
void NYXSliceItemLayer::prepare(QPainter& painter) const
{
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(_frame.pixelRatio, _frame.pixelRatio);
}

void NYXSliceItemLayer::paintItems(QPainter& painter, const QRect& rect, NYXItemDetail detail) const
{
  prepare(painter);
  painter.setRenderHint(QPainter::Antialiasing, detail == NYXItemDetail::Full);
  const QTransform toCanvas = _frame.toCanvas();
  const QRectF visible = onScreen(rect, _frame.pixelRatio);
  for (const Entry& entry : _entries)
    if (canvasRect(entry).intersects(rect)) drawModelItem(painter, *entry.item, toCanvas, visible, detail);
}

bool NYXSliceItemLayer::refine(int milliseconds)
{
  if (!_needsRefinement) return true;
  if (_isAllStale || _areEntriesStale || !_stale.isEmpty()) return true; // the next frame begins anew
  if (_refined.isNull())
  {
    _refined = QImage(_frame.size, QImage::Format_ARGB32_Premultiplied);
    _refined.fill(Qt::transparent);
    _numRefined = 0;
  }
  QElapsedTimer time;
  time.start();
  QPainter painter(&_refined);
  prepare(painter);
  const QTransform toCanvas = _frame.toCanvas();
  const QRectF all = onScreen(QRect(QPoint(0, 0), _frame.size), _frame.pixelRatio);
  for (; _numRefined < _entries.size(); ++_numRefined)
  {
    if (time.elapsed() >= milliseconds) return false;
    const Entry& entry = _entries[_numRefined];
    if (!canvasRect(entry).isEmpty()) drawModelItem(painter, *entry.item, toCanvas, all, NYXItemDetail::Full);
  }
  painter.end();
  _picture = std::move(_refined);
  _refined = QImage();
  _needsRefinement = false;
  return true;
}
