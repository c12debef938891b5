#include "slice/image/nyxslicewidgetcanvas.h"

#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxsliceimageproxy.h"

#include <QPainter>

namespace
{
constexpr int refinementDelay = 150; // milliseconds without a change of the view
constexpr int refinementStep = 8;    // milliseconds of drawing at a time
constexpr int toolMargin = 4;        // around an item, where tools mark its vertices
} // namespace

NYXSliceWidgetCanvas::NYXSliceWidgetCanvas(QWidget* parent) : NYXImageWidgetCanvas(parent)
{
  setObjectName("sliceCanvas");
  _refinement.setSingleShot(true);
  connect(&_refinement, &QTimer::timeout, this, &NYXSliceWidgetCanvas::refineItems);
}

StackSlice& NYXSliceWidgetCanvas::getSlice() const
{
  if (_slice == nullptr)
    throw ProgramError("StackSlice& NYXSliceWidgetCanvas::getSlice() const", "No slice in this canvas");
  return *_slice;
}

std::unique_ptr<NYXImageProxy> NYXSliceWidgetCanvas::newImageProxy() const
{
  return std::make_unique<NYXSliceImageProxy>(_slice);
}

NYXSliceImageProxy& NYXSliceWidgetCanvas::getSliceImageProxy()
{
  return static_cast<NYXSliceImageProxy&>(getImageProxy());
}

void NYXSliceWidgetCanvas::setSlice(StackSlice* slice)
{
  _slice = slice;
  getSliceImageProxy().setSlice(slice);
  _items.setSlice(slice);
  updateImageSize();
  update();
}

void NYXSliceWidgetCanvas::clear()
{
  setSlice(nullptr);
}

QSize NYXSliceWidgetCanvas::fallbackImageSize() const
{
  return _slice == nullptr ? QSize() : NYXSliceImageProxy::fallbackImageSize(*_slice);
}

void NYXSliceWidgetCanvas::repaintItem(const ModelItem& item)
{
  _items.invalidate(item);
  updatePart(_items.staleRect().adjusted(-toolMargin, -toolMargin, toolMargin, toolMargin));
}

void NYXSliceWidgetCanvas::repaintItems()
{
  _items.invalidate();
  update();
}

void NYXSliceWidgetCanvas::paintForeground(QPainter& painter)
{
  if (_mode == CanvasMode::Background || _slice == nullptr) return;
  painter.drawImage(QRectF(rect()), _items.update(viewport(), devicePixelRatioF()));
  if (_items.needsRefinement() && !_items.isBeingRefined()) _refinement.start(refinementDelay);
}

QTransform NYXSliceWidgetCanvas::itemsToCanvas() const
{
  const NYXImageViewport& view = viewport();
  const double dx = (0.5 - view.getViewOrigin().x()) * view.scaleX();
  const double dy = (0.5 - view.getViewOrigin().y()) * view.scaleY();
  return QTransform(view.scaleX(), 0, 0, view.scaleY(), dx, dy);
}

void NYXSliceWidgetCanvas::refineItems()
{
  if (_items.refine(refinementStep))
    update();
  else
    _refinement.start(0); // whatever else waits comes first
}
