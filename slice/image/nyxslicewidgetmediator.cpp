#include "slice/image/nyxslicewidgetmediator.h"

#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxsliceimageproxy.h"
#include "slice/image/nyxsliceimageserver.h"
#include "slice/image/nyxslicewidget.h"
#include "slice/image/nyxslicewidgetstatusbar.h"

#include <QAction>
#include <QActionGroup>
#include <QToolBar>

NYXSliceWidgetMediator::NYXSliceWidgetMediator(NYXSliceWidget& widget) : NYXImageWidgetMediator(widget)
{
  NYXEventServer::attach(*this);
}

NYXSliceWidgetCanvas& NYXSliceWidgetMediator::sliceCanvas() const
{
  return static_cast<NYXSliceWidgetCanvas&>(canvas());
}

void NYXSliceWidgetMediator::initialize()
{
  NYXImageWidgetMediator::initialize();
  widget().toolBar().addSeparator();
  auto* group = new QActionGroup(this);
  _modeActions = {createModeAction(tr("Display images only"), tr("Show the image without what is drawn on it"),
                                   "displayImages", CanvasMode::Background),
                  createModeAction(tr("Display items only"), tr("Show what is drawn on the slice without its image"),
                                   "displayItems", CanvasMode::Foreground),
                  createModeAction(tr("Display images and items"), tr("Show the image and what is drawn on it"),
                                   "displayImagesAndItems", CanvasMode::Allground)};
  for (QAction* action : _modeActions) group->addAction(action);
  _modeActions[static_cast<int>(sliceCanvas().getCanvasMode())]->setChecked(true);
}

QAction* NYXSliceWidgetMediator::createModeAction(const QString& text, const QString& toolTip, const QString& name,
                                                  CanvasMode mode)
{
  QAction* action = createAction(text, toolTip, name, {}, [this, mode] { setCanvasMode(mode); });
  action->setCheckable(true);
  widget().toolBar().addAction(action);
  return action;
}

void NYXSliceWidgetMediator::setCanvasMode(CanvasMode mode)
{
  sliceCanvas().setCanvasMode(mode);
  _modeActions[static_cast<int>(mode)]->setChecked(true);
  mode == CanvasMode::Foreground ? detachProxy() : attachProxy();
  canvas().update();
  emit canvasModeChanged(mode);
}

void NYXSliceWidgetMediator::attachProxy()
{
  if (sliceCanvas().getCanvasMode() != CanvasMode::Foreground) NYXImageWidgetMediator::attachProxy();
}

void NYXSliceWidgetMediator::setSlice(StackSlice* slice)
{
  sliceCanvas().setSlice(slice);
  attachProxy();
  showNewImage();
  updateSliceInfo();
}

void NYXSliceWidgetMediator::clear()
{
  NYXImageWidgetMediator::clear();
  updateSliceInfo();
}

void NYXSliceWidgetMediator::imageProxyChange()
{
  NYXImageWidgetMediator::imageProxyChange();
  prefetchNeighbours();
}

void NYXSliceWidgetMediator::prefetchNeighbours()
{
  if (!sliceCanvas().hasSlice() || !canvas().getImageProxy().hasImage() || !canvas().getImageProxy().hasImageServer())
    return;
  auto* server = qobject_cast<NYXSliceImageServer*>(&canvas().getImageProxy().getImageServer());
  if (server == nullptr) return;
  server->prefetch(sliceCanvas().getSlice().prevSlice());
  server->prefetch(sliceCanvas().getSlice().nextSlice());
}

void NYXSliceWidgetMediator::updateSliceInfo()
{
  const StackSlice* slice = sliceCanvas().hasSlice() ? &sliceCanvas().getSlice() : nullptr;
  static_cast<NYXSliceWidgetStatusBar&>(widget().statusBar()).setSliceInfo(slice);
}

void NYXSliceWidgetMediator::followItem(const NYXModelItemEvent& event)
{
  if (!sliceCanvas().hasSlice() || event.getItem().getSlice() != &sliceCanvas().getSlice()) return;
  sliceCanvas().repaintItem(event.getItem());
  updateExtent(event.getItem());
  updateSliceInfo();
}

void NYXSliceWidgetMediator::updateExtent(const ModelItem& item)
{
  const BoundingBox<int> box = item.boundingBox();
  if (canvas().getImageProxy().getOriginalImageSize().isValid() || box.isEmpty()) return;
  const QPoint corner(box.getMaximum()[0], box.getMaximum()[1]);
  if (QRect(QPoint(0, 0), canvas().viewport().getImageSize()).contains(corner)) return;
  canvas().updateImageSize();
  updateView();
}

void NYXSliceWidgetMediator::followModel(const Stack* stack)
{
  if (!sliceCanvas().hasSlice() || sliceCanvas().getSlice().getStack() != stack) return;
  sliceCanvas().repaintItems();
  updateSliceInfo();
}

void NYXSliceWidgetMediator::followCalibration()
{
  setSlice(&sliceCanvas().getSlice()); // the slice may have got another image, too
}

void NYXSliceWidgetMediator::stackCloseEvent(const NYXStackCloseEvent& event)
{
  if (sliceCanvas().hasSlice() && sliceCanvas().getSlice().getStack() == &event.getStack()) setSlice(nullptr);
}

void NYXSliceWidgetMediator::stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event)
{
  if (sliceCanvas().hasSlice() && sliceCanvas().getSlice().getStack() == &event.getStack()) followCalibration();
}

void NYXSliceWidgetMediator::sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event)
{
  if (sliceCanvas().hasSlice() && &sliceCanvas().getSlice() == &event.getSlice()) followCalibration();
}

void NYXSliceWidgetMediator::modelCreateEvent(const NYXModelCreateEvent& event)
{
  followModel(event.getStack());
}

void NYXSliceWidgetMediator::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  followModel(event.getStack());
}

void NYXSliceWidgetMediator::modelPropertiesEvent(const NYXModelPropertiesEvent& event)
{
  followModel(event.getStack());
}

void NYXSliceWidgetMediator::modelItemCreateEvent(const NYXModelItemCreateEvent& event)
{
  followItem(event);
}

void NYXSliceWidgetMediator::modelItemDeleteEvent(const NYXModelItemDeleteEvent& event)
{
  followItem(event);
}

void NYXSliceWidgetMediator::modelItemVertexEvent(const NYXModelItemVertexEvent& event)
{
  followItem(event);
}

void NYXSliceWidgetMediator::modelItemAttributeEvent(const NYXModelItemAttributeEvent& event)
{
  followItem(event);
}

void NYXSliceWidgetMediator::modelItemTriangulationTagEvent(const NYXModelItemTriangulationTagEvent& event)
{
  followItem(event);
}

void NYXSliceWidgetMediator::modelItemSelectEvent(const NYXModelItemSelectEvent& event)
{
  followItem(event);
}

void NYXSliceWidgetMediator::modelItemConvertEvent(const NYXModelItemConvertEvent& event)
{
  followItem(event);
}

void NYXSliceWidgetMediator::preferencesEvent(const NYXPreferencesEvent&)
{
  sliceCanvas().repaintItems();
}
