#include "slice/image/nyxpanorama.h"

#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxplaintext.h"

#include <QHelpEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace
{
constexpr int askingDelay = 30; // milliseconds
constexpr int linesPerBox = 9;  // height of a thumbnail in lines of text
constexpr double markWidth = 3; // of the frame around the current slice
constexpr double hoverOpacity = 0.5;

bool isNavigation(int key)
{
  switch (key)
  {
  case Qt::Key_Left:
  case Qt::Key_Right:
  case Qt::Key_Up:
  case Qt::Key_Down:
  case Qt::Key_PageUp:
  case Qt::Key_PageDown:
  case Qt::Key_Home:
  case Qt::Key_End:
    return true;
  default:
    return false;
  }
}

bool isPlain(const QKeyEvent& event)
{
  return (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

QString nameOf(const StackSlice& slice)
{
  return QString::fromStdString(slice.getName());
}
} // namespace

NYXPanorama::NYXPanorama(QWidget* parent)
  : QAbstractScrollArea(parent), _thumbnails(this), _hasLabels(NYXPreferences::isPanoramaLabelEnabled())
{
  setObjectName("panorama");
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // columns must not come and go with it
  viewport()->setMouseTracking(true);
  viewport()->setBackgroundRole(QPalette::Base);
  _asking.setSingleShot(true);
  connect(&_asking, &QTimer::timeout, this, &NYXPanorama::askForThumbnails);
  connect(&_thumbnails, &NYXPanoramaThumbnails::changed, viewport(), QOverload<>::of(&QWidget::update));
  NYXEventServer::attach(*this);
}

void NYXPanorama::setStack(NYXStack* stack)
{
  if (stack == _stack) return;
  _stack = stack;
  _current = _hovered = -1;
  _thumbnails.setStack(stack);
  verticalScrollBar()->setValue(0);
  layOut();
}

void NYXPanorama::setCurrentSlice(int slice)
{
  if (slice == _current) return;
  _current = slice;
  scrollTo(slice);
  viewport()->update();
}

int NYXPanorama::numSlices() const
{
  return _stack == nullptr ? 0 : _stack->getNumSlices();
}

int NYXPanorama::boxSide() const
{
  return fontMetrics().height() * linesPerBox;
}

/// Between a thumbnail and the border of its cell.
int NYXPanorama::margin() const
{
  return fontMetrics().height() / 3;
}

int NYXPanorama::gap() const
{
  return fontMetrics().height() / 3;
}

QSize NYXPanorama::cellSize() const
{
  const int label = _hasLabels ? fontMetrics().height() + margin() : 0;
  return {boxSide() + 2 * margin(), boxSide() + 2 * margin() + label};
}

NYXPanoramaGrid NYXPanorama::grid() const
{
  return {numSlices(), cellSize(), gap(), viewport()->width()};
}

int NYXPanorama::scrollPosition() const
{
  return verticalScrollBar()->value();
}

NYXPanoramaGrid::Range NYXPanorama::visibleSlices() const
{
  return grid().visibleCells(scrollPosition(), viewport()->height());
}

QRect NYXPanorama::thumbnailRect(int slice) const
{
  return grid().cellRect(slice).translated(0, -scrollPosition());
}

/// After any change of the number of slices, of the cells or of the width.
void NYXPanorama::layOut()
{
  const int height = viewport()->height();
  verticalScrollBar()->setRange(0, std::max(0, grid().height() - height));
  verticalScrollBar()->setPageStep(height);
  verticalScrollBar()->setSingleStep(cellSize().height() / 3);
  viewport()->update();
}

void NYXPanorama::scrollTo(int slice)
{
  if (slice < 0 || slice >= numSlices()) return;
  const QRect cell = grid().cellRect(slice).adjusted(0, -gap(), 0, gap());
  const int highest = cell.bottom() + 1 - viewport()->height();
  verticalScrollBar()->setValue(std::clamp(scrollPosition(), std::min(highest, cell.top()), cell.top()));
}

/// The slice that was first, or the current one when it was there, stays in view.
void NYXPanorama::resizeEvent(QResizeEvent* event)
{
  QAbstractScrollArea::resizeEvent(event);
  const int before = event->oldSize().width() > 0 ? event->oldSize().width() : viewport()->width();
  const NYXPanoramaGrid oldGrid(numSlices(), cellSize(), gap(), before);
  const NYXPanoramaGrid::Range shown = oldGrid.visibleCells(scrollPosition(), event->oldSize().height());
  const bool isCurrentShown = _current >= shown.first && _current < shown.end;
  const int hidden = scrollPosition() - shown.first / oldGrid.numColumns() * oldGrid.rowStep(); // of the first row
  layOut();
  verticalScrollBar()->setValue(shown.first / grid().numColumns() * grid().rowStep() + hidden);
  if (isCurrentShown) scrollTo(_current);
}

void NYXPanorama::scrollContentsBy(int, int)
{
  setHovered(-1);
  viewport()->update();
}

/// Slices may have been chosen, and the size have changed, while it was hidden.
void NYXPanorama::showEvent(QShowEvent* event)
{
  QAbstractScrollArea::showEvent(event);
  layOut();
  scrollTo(_current);
}

void NYXPanorama::hideEvent(QHideEvent* event)
{
  QAbstractScrollArea::hideEvent(event);
  _asking.stop();
  _thumbnails.show({});
}

void NYXPanorama::changeEvent(QEvent* event)
{
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) layOut();
}

void NYXPanorama::askForThumbnails()
{
  if (!isVisible()) return;
  const NYXPanoramaGrid::Range range = visibleSlices();
  std::vector<const StackSlice*> slices;
  for (int slice = range.first; slice < range.end; ++slice) slices.push_back(_stack->getSlice(slice));
  _thumbnails.setBox(QSize(boxSide(), boxSide()), devicePixelRatioF());
  _thumbnails.show(slices);
  viewport()->update();
}

void NYXPanorama::paintEvent(QPaintEvent* event)
{
  QPainter painter(viewport());
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  painter.fillRect(event->rect(), palette().base());
  const NYXPanoramaGrid::Range range = visibleSlices();
  bool isAnyMissing = false;
  for (int slice = range.first; slice < range.end; ++slice)
  {
    const QRect cell = thumbnailRect(slice);
    if (cell.intersects(event->rect())) paintCell(painter, slice, cell);
    isAnyMissing = isAnyMissing || _thumbnails.find(*_stack->getSlice(slice)) == nullptr;
  }
  if (isAnyMissing && !_asking.isActive()) _asking.start(askingDelay);
}

void NYXPanorama::paintCell(QPainter& painter, int slice, const QRect& cell) const
{
  const StackSlice& stackSlice = *_stack->getSlice(slice);
  const QRect box(cell.topLeft() + QPoint(margin(), margin()), QSize(boxSide(), boxSide()));
  paintMark(painter, slice, cell);
  paintThumbnail(painter, stackSlice, box);
  if (_stack->isLocked(stackSlice)) paintLock(painter, box);
  if (_hasLabels) paintLabel(painter, stackSlice, cell);
}

/// The current slice has a frame; the one under the mouse a weaker one, as a click would mark it.
void NYXPanorama::paintMark(QPainter& painter, int slice, const QRect& cell) const
{
  if (slice != _current && slice != _hovered) return;
  QColor frame = NYXPreferences::getSelectionColor();
  QColor fill = frame;
  if (slice != _current) frame.setAlphaF(hoverOpacity);
  fill.setAlphaF(slice == _current ? 0.25 : 0.1);
  painter.setPen(QPen(frame, markWidth));
  painter.setBrush(fill);
  const double inset = markWidth / 2;
  painter.drawRoundedRect(QRectF(cell).adjusted(inset, inset, -inset, -inset), markWidth, markWidth);
}

void NYXPanorama::paintThumbnail(QPainter& painter, const StackSlice& slice, const QRect& box) const
{
  const NYXPanoramaThumbnails::Thumbnail* const thumbnail = _thumbnails.find(slice);
  const bool hasPlace = thumbnail != nullptr && !thumbnail->place.isEmpty();
  const QRectF place = hasPlace ? thumbnail->place.translated(box.topLeft()) : QRectF(box);
  if (thumbnail != nullptr && !thumbnail->image.isNull())
    painter.drawPixmap(place, thumbnail->image, thumbnail->image.rect());
  else
    painter.fillRect(place, palette().alternateBase());
  if (thumbnail == nullptr) return;
  if (!thumbnail->problem.isEmpty())
  {
    const int side = boxSide() / 4;
    const QIcon sign = style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this);
    sign.paint(&painter, QRect(box.center() - QPoint(side / 2, side / 2), QSize(side, side)));
  }
  if (!thumbnail->items.isNull()) painter.drawPixmap(box.topLeft(), thumbnail->items);
}

void NYXPanorama::paintLock(QPainter& painter, const QRect& box) const
{
  const int side = fontMetrics().height() * 5 / 4;
  const QRect place(box.right() + 1 - side, box.top(), side, side);
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().base());
  painter.drawRoundedRect(place, side / 4.0, side / 4.0);
  QIcon(":/icons/lock.svg").paint(&painter, place.adjusted(1, 1, -1, -1));
}

void NYXPanorama::paintLabel(QPainter& painter, const StackSlice& slice, const QRect& cell) const
{
  const int height = fontMetrics().height();
  const QRect line(cell.left() + margin(), cell.bottom() + 1 - margin() - height, boxSide(), height);
  painter.setPen(palette().color(QPalette::Text));
  painter.drawText(line, Qt::AlignCenter, fontMetrics().elidedText(nameOf(slice), Qt::ElideMiddle, line.width()));
}

void NYXPanorama::setHovered(int slice)
{
  if (slice == _hovered) return;
  _hovered = slice;
  viewport()->update();
}

void NYXPanorama::mouseMoveEvent(QMouseEvent* event)
{
  setHovered(grid().cellAt(event->pos() + QPoint(0, scrollPosition())));
}

void NYXPanorama::mousePressEvent(QMouseEvent* event)
{
  const int slice = grid().cellAt(event->pos() + QPoint(0, scrollPosition()));
  if (event->button() == Qt::LeftButton && slice >= 0) emit sliceSelected(slice);
}

/// The press before has chosen the slice.
void NYXPanorama::mouseDoubleClickEvent(QMouseEvent* event)
{
  const int slice = grid().cellAt(event->pos() + QPoint(0, scrollPosition()));
  if (event->button() == Qt::LeftButton && slice >= 0 && slice == _current) emit sliceOpened();
}

void NYXPanorama::keyPressEvent(QKeyEvent* event)
{
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isPlain(*event) || !(isReturn || isNavigation(event->key()))) return event->ignore();
  if (!isReturn)
  {
    const int slice = grid().cellAfterKey(_current, event->key(), viewport()->height());
    if (slice >= 0 && slice != _current) emit sliceSelected(slice);
  }
  else if (_current >= 0)
    emit sliceOpened();
}

/// Keys that lead from thumbnail to thumbnail do so here, whatever they do elsewhere in the window.
bool NYXPanorama::event(QEvent* event)
{
  if (event->type() == QEvent::ShortcutOverride)
    if (const auto& key = static_cast<QKeyEvent&>(*event); isPlain(key) && isNavigation(key.key())) event->accept();
  return QAbstractScrollArea::event(event);
}

bool NYXPanorama::viewportEvent(QEvent* event)
{
  if (event->type() == QEvent::Leave) setHovered(-1);
  if (event->type() != QEvent::ToolTip) return QAbstractScrollArea::viewportEvent(event);
  const auto& help = static_cast<QHelpEvent&>(*event);
  const int slice = grid().cellAt(help.pos() + QPoint(0, scrollPosition()));
  QToolTip::showText(help.globalPos(), slice < 0 ? QString() : toolTipOf(slice), viewport(),
                     slice < 0 ? QRect() : thumbnailRect(slice));
  return true;
}

QString NYXPanorama::toolTipOf(int slice) const
{
  const StackSlice& stackSlice = *_stack->getSlice(slice);
  QStringList lines(tr("%1 (%2 / %3)").arg(nameOf(stackSlice)).arg(slice + 1).arg(numSlices()));
  if (_stack->isLocked(stackSlice)) lines << tr("Locked: a computation works on it");
  const NYXPanoramaThumbnails::Thumbnail* const thumbnail = _thumbnails.find(stackSlice);
  if (thumbnail != nullptr && !thumbnail->problem.isEmpty())
    lines << tr("The image of this slice cannot be shown.") << thumbnail->problem;
  const QString text = lines.join('\n');
  return plainText(text);
}

void NYXPanorama::stackCloseEvent(const NYXStackCloseEvent& event)
{
  if (&event.getStack() == _stack) setStack(nullptr);
}

void NYXPanorama::stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event)
{
  if (&event.getStack() != _stack) return;
  _thumbnails.reset();
  viewport()->update();
}

void NYXPanorama::sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event)
{
  const StackSlice& slice = event.getSlice();
  if (auto* const stack = dynamic_cast<NYXStack*>(slice.getStack())) _thumbnails.forget(*stack, slice);
  viewport()->update();
}

void NYXPanorama::processSliceAction(NYXSliceAction& action)
{
  if (action.getSlice().getStack() == nullptr) _thumbnails.forget(action.getStack(), action.getSlice());
  if (&action.getStack() == _stack) layOut();
}

void NYXPanorama::sliceNameEvent(const NYXSliceNameEvent&)
{
  viewport()->update();
}

void NYXPanorama::sliceLockEvent(const NYXSliceLockEvent&)
{
  viewport()->update();
}

void NYXPanorama::preferencesEvent(const NYXPreferencesEvent&)
{
  const int first = visibleSlices().first;
  _thumbnails.invalidateItems(); // selected ones stand out or do not
  const bool areLabelsNew = _hasLabels != NYXPreferences::isPanoramaLabelEnabled();
  _hasLabels = NYXPreferences::isPanoramaLabelEnabled();
  layOut();
  if (areLabelsNew && numSlices() > 0) verticalScrollBar()->setValue(grid().cellRect(first).top() - gap());
}

void NYXPanorama::followItem(const NYXModelItemEvent& event)
{
  if (const StackSlice* const slice = event.getItem().getSlice()) _thumbnails.invalidateItems(*slice);
}

void NYXPanorama::followModel(const Stack* stack)
{
  if (stack == _stack) _thumbnails.invalidateItems();
}

/// A model that comes back brings its items.
void NYXPanorama::modelCreateEvent(const NYXModelCreateEvent& event)
{
  followModel(event.getStack());
}

void NYXPanorama::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  followModel(event.getStack());
}

void NYXPanorama::modelPropertiesEvent(const NYXModelPropertiesEvent& event)
{
  followModel(event.getStack());
}

void NYXPanorama::modelItemCreateEvent(const NYXModelItemCreateEvent& event)
{
  followItem(event);
}

void NYXPanorama::modelItemDeleteEvent(const NYXModelItemDeleteEvent& event)
{
  followItem(event);
}

void NYXPanorama::modelItemVertexEvent(const NYXModelItemVertexEvent& event)
{
  followItem(event);
}

void NYXPanorama::modelItemAttributeEvent(const NYXModelItemAttributeEvent& event)
{
  followItem(event);
}

void NYXPanorama::modelItemSelectEvent(const NYXModelItemSelectEvent& event)
{
  followItem(event);
}

void NYXPanorama::modelItemConvertEvent(const NYXModelItemConvertEvent& event)
{
  followItem(event);
}
