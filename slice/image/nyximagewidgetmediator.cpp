#include "slice/image/nyximagewidgetmediator.h"

#include "image/image.h"
#include "slice/image/nyxdoubleslider.h"
#include "slice/image/nyxicons.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximageserver.h"
#include "slice/image/nyximagewidget.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetstatusbar.h"
#include "slice/image/nyxloadingnotice.h"
#include "slice/image/nyxpandelegate.h"
#include "slice/image/nyxpixelinfodelegate.h"
#include "slice/image/nyxrulerdelegate.h"

#include <QAction>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QToolBar>

#include <algorithm>

namespace
{
constexpr float largestZoom = 64;
constexpr float smallestExtent = 16; // of the image on the screen

QString imageTypeText(const Image& image)
{
  switch (image.getDepth())
  {
  case 8:
    return image.isIndexed() ? NYXImageWidgetMediator::tr("8 bits, palette")
                             : NYXImageWidgetMediator::tr("8 bits, grey");
  case 16:
    return NYXImageWidgetMediator::tr("16 bits, grey");
  case 24:
    return NYXImageWidgetMediator::tr("24 bits, colour");
  default:
    return NYXImageWidgetMediator::tr("32 bits, colour");
  }
}

void setScrollBar(QScrollBar& scrollBar, int maximum, int pageStep, int value, bool isShown)
{
  const QSignalBlocker blocker(scrollBar);
  scrollBar.setRange(0, maximum);
  scrollBar.setPageStep(pageStep);
  scrollBar.setValue(value);
  scrollBar.setVisible(isShown);
}
} // namespace

NYXImageWidgetMediator::NYXImageWidgetMediator(NYXImageWidget& widget) : QObject(&widget), _widget(widget) {}

NYXImageWidgetCanvas& NYXImageWidgetMediator::canvas() const
{
  return _widget.canvas();
}

void NYXImageWidgetMediator::initialize()
{
  _loadingNotice = new NYXLoadingNotice(canvas(), this);
  _ruler = new NYXRulerDelegate(*this);
  new NYXPanDelegate(*this);
  new NYXPixelInfoDelegate(*this); // the last one added looks at events first: it misses no move
  createActions();
  connectWidget();
  updateView();
}

QAction* NYXImageWidgetMediator::createAction(const QString& text, const QString& toolTip, const QString& name,
                                              const QKeySequence& shortcut, const std::function<void()>& trigger)
{
  auto* action = new QAction(text, this);
  const QString keys = shortcut.toString(QKeySequence::NativeText);
  action->setObjectName(name);
  action->setToolTip(keys.isEmpty() ? toolTip : QString("%1 (%2)").arg(toolTip, keys));
  action->setStatusTip(toolTip);
  action->setShortcut(shortcut);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  action->setIcon(iconNamed(name));
  connect(action, &QAction::triggered, this, trigger);
  _widget.addAction(action);
  _actions << action;
  return action;
}

void NYXImageWidgetMediator::createActions()
{
  _zoomIn = createAction(tr("Zoom in"), tr("Show the image larger"), "zoomIn", QKeySequence("+"),
                         [this] { increaseZoomFactor(); });
  _zoomOut = createAction(tr("Zoom out"), tr("Show the image smaller"), "zoomOut", QKeySequence("-"),
                          [this] { decreaseZoomFactor(); });
  _bestFit = createAction(tr("Best fit"), tr("Fit the whole image into the window"), "bestFit", QKeySequence("="),
                          [this] { bestFitZoomFactor(); });
  const auto addScroll = [this](const QString& text, const QString& toolTip, const QString& name,
                                const QKeySequence& shortcut, void (NYXImageWidgetMediator::*slot)())
  { _scrollActions << createAction(text, toolTip, name, shortcut, [this, slot] { (this->*slot)(); }); };
  using Mediator = NYXImageWidgetMediator;
  addScroll("[stepUp]", tr("Move the view up by a pixel"), "stepUp", Qt::Key_Up, &Mediator::stepScrollUp);
  addScroll("[stepDown]", tr("Move the view down by a pixel"), "stepDown", Qt::Key_Down, &Mediator::stepScrollDown);
  addScroll("[stepRight]", tr("Move the view right by a pixel"), "stepRight", Qt::Key_Right,
            &Mediator::stepScrollRight);
  addScroll("[stepLeft]", tr("Move the view left by a pixel"), "stepLeft", Qt::Key_Left, &Mediator::stepScrollLeft);
  addScroll(tr("Scroll up"), tr("Move the view up by a third"), "scrollUp", QKeySequence("Ctrl+Up"),
            &Mediator::pageScrollUp);
  addScroll(tr("Scroll down"), tr("Move the view down by a third"), "scrollDown", QKeySequence("Ctrl+Down"),
            &Mediator::pageScrollDown);
  addScroll(tr("Scroll right"), tr("Move the view right by a third"), "scrollRight", QKeySequence("Ctrl+Right"),
            &Mediator::pageScrollRight);
  addScroll(tr("Scroll left"), tr("Move the view left by a third"), "scrollLeft", QKeySequence("Ctrl+Left"),
            &Mediator::pageScrollLeft);
  addScroll("[Center]", tr("Move the view to the centre of the image"), "center", Qt::Key_C, &Mediator::centerView);

  _rulerAction = createAction(tr("Ruler"), {}, "ruler", {}, [this] { _ruler->toggle(); });
  _rulerAction->setToolTip("Ruler\nPerforms interactive distance measurements");
  _rulerAction->setStatusTip(tr("Performs interactive distance measurements"));
  _rulerAction->setCheckable(true);
  connect(_ruler, &NYXRulerDelegate::activeChanged, _rulerAction, &QAction::setChecked);
  for (QAction* action : {_zoomIn, _zoomOut, _bestFit, _rulerAction}) _widget.toolBar().addAction(action);
}

void NYXImageWidgetMediator::connectWidget()
{
  connect(&_widget.horizontalScrollBar(), &QScrollBar::valueChanged, this, &NYXImageWidgetMediator::scrollBarChange);
  connect(&_widget.verticalScrollBar(), &QScrollBar::valueChanged, this, &NYXImageWidgetMediator::scrollBarChange);
  connect(&_widget.slider(), &NYXDoubleSlider::valuesChanged, this,
          [this](float black, float white)
          {
            canvas().setBlackAndWhite(black, white);
            canvas().update();
          });
  connect(&canvas(), &NYXImageWidgetCanvas::resized, this, &NYXImageWidgetMediator::updateView);
  connect(&canvas().getImageProxy(), &NYXImageProxy::imageChanged, this, &NYXImageWidgetMediator::imageProxyChange);
}

void NYXImageWidgetMediator::setImageServer(NYXImageServer& server)
{
  if (_server != nullptr) removeImageServer();
  _server = &server;
  _loadingNotice->setImageServer(&server);
  attachProxy();
}

NYXImageServer& NYXImageWidgetMediator::getImageServer() const
{
  if (_server == nullptr)
    throw ProgramError("NYXImageServer& NYXImageWidgetMediator::getImageServer() const",
                       "This mediator has no image server");
  return *_server;
}

void NYXImageWidgetMediator::removeImageServer()
{
  detachProxy();
  _loadingNotice->setImageServer(nullptr);
  _server = nullptr;
}

void NYXImageWidgetMediator::attachProxy()
{
  if (_server != nullptr && canvas().getImageProxy().getImageSource() != nullptr)
    _server->attachProxy(canvas().getImageProxy());
  _loadingNotice->follow();
}

void NYXImageWidgetMediator::detachProxy()
{
  NYXImageProxy& proxy = canvas().getImageProxy();
  if (proxy.hasImageServer()) proxy.getImageServer().detachProxy(proxy);
  _loadingNotice->follow();
}

void NYXImageWidgetMediator::setImageSource(const ImageSource* source)
{
  canvas().getImageProxy().setImageSource(source);
  attachProxy();
  showNewImage();
}

void NYXImageWidgetMediator::showNewImage()
{
  canvas().updateImageSize();
  updateImageSizeInfo();
  updateImageTypeInfo();
  updateView();
}

void NYXImageWidgetMediator::setPixelCalibration(const PixelCalibration& calibration)
{
  canvas().getImageProxy().setPixelCalibration(calibration);
  canvas().updateImageSize();
  updateView();
}

void NYXImageWidgetMediator::setViewOrigin(const QPoint& origin)
{
  moveView(origin);
}

void NYXImageWidgetMediator::clear()
{
  canvas().clear();
  showNewImage();
}

void NYXImageWidgetMediator::imageProxyChange()
{
  updateImageTypeInfo();
  _loadingNotice->follow();
  canvas().update();
  emit imageChanged();
}

bool NYXImageWidgetMediator::canZoomIn() const
{
  return canvas().viewport().getImageSize().isValid() && canvas().getZoomFactor() < largestZoom;
}

bool NYXImageWidgetMediator::canZoomOut() const
{
  const QSize size = canvas().viewport().getImageSize();
  return size.isValid() &&
         canvas().getZoomFactor() * static_cast<float>(std::max(size.width(), size.height())) > smallestExtent;
}

void NYXImageWidgetMediator::changeZoom(bool zoomingIn)
{
  if (canvas().isBestFitMode())
    canvas().setBestFitMode(false, zoomingIn);
  else
    canvas().stepZoomFactor(zoomingIn);
}

void NYXImageWidgetMediator::stepZoomFactor(bool zoomingIn)
{
  if (!(zoomingIn ? canZoomIn() : canZoomOut())) return;
  const QPoint center = canvas().viewCenter();
  changeZoom(zoomingIn);
  canvas().setViewCenter(center);
  canvas().rectifyViewOrigin();
  updateView();
}

void NYXImageWidgetMediator::zoomAt(const QPoint& canvasPoint, bool zoomingIn)
{
  if (!(zoomingIn ? canZoomIn() : canZoomOut())) return;
  const QPoint position = canvas().convertToImagePosition(canvasPoint);
  changeZoom(zoomingIn);
  moveView(position - (canvas().convertToImagePosition(canvasPoint) - canvas().getViewOrigin()));
}

void NYXImageWidgetMediator::bestFitZoomFactor()
{
  canvas().setBestFitMode(true, false);
  updateView();
}

void NYXImageWidgetMediator::moveView(const QPoint& origin)
{
  canvas().setViewOrigin(origin);
  canvas().rectifyViewOrigin();
  updateView();
}

void NYXImageWidgetMediator::scroll(int dx, int dy)
{
  moveView(canvas().getViewOrigin() + QPoint(dx, dy));
}

QPoint NYXImageWidgetMediator::pageStep() const
{
  const QSize size = canvas().computeMaxViewSize();
  return {size.width() / 3, size.height() / 3};
}

void NYXImageWidgetMediator::pageScrollUp()
{
  scroll(0, -pageStep().y());
}

void NYXImageWidgetMediator::pageScrollDown()
{
  scroll(0, pageStep().y());
}

void NYXImageWidgetMediator::pageScrollRight()
{
  scroll(pageStep().x(), 0);
}

void NYXImageWidgetMediator::pageScrollLeft()
{
  scroll(-pageStep().x(), 0);
}

void NYXImageWidgetMediator::centerView()
{
  const QSize size = canvas().viewport().getImageSize();
  if (!size.isValid()) return;
  canvas().setViewCenter(QPoint(size.width() / 2, size.height() / 2));
  canvas().rectifyViewOrigin();
  updateView();
}

void NYXImageWidgetMediator::reveal(const QRect& box)
{
  if (canvas().viewport().currentView().contains(box)) return;
  canvas().setViewCenter(box.center());
  canvas().rectifyViewOrigin();
  updateView();
}

void NYXImageWidgetMediator::scrollBarChange()
{
  moveView(QPoint(_widget.horizontalScrollBar().value(), _widget.verticalScrollBar().value()));
}

void NYXImageWidgetMediator::updateView()
{
  canvas().update();
  updateScrollBars();
  updateZoomInfo();
  updateActions();
  _widget.notifyViewChange(canvas().currentView());
}

void NYXImageWidgetMediator::updateScrollBars()
{
  const QPoint maximum = canvas().computeMaxViewOrigin();
  const QSize size = canvas().computeMaxViewSize();
  const QPoint origin = canvas().getViewOrigin();
  const bool isShown = !canvas().isBestFitMode();
  setScrollBar(_widget.horizontalScrollBar(), maximum.x(), size.width(), origin.x(), isShown);
  setScrollBar(_widget.verticalScrollBar(), maximum.y(), size.height(), origin.y(), isShown);
}

void NYXImageWidgetMediator::updateZoomInfo()
{
  _widget.statusBar().setZoomInfo(canvas().getZoomFactor());
}

void NYXImageWidgetMediator::updateImageSizeInfo()
{
  const NYXImageProxy& proxy = canvas().getImageProxy();
  const QSize size = proxy.getOriginalImageSize();
  std::int64_t numBytes = 0;
  try
  {
    if (size.isValid() && proxy.getImageSource() != nullptr)
      numBytes = std::int64_t(size.width()) * size.height() * proxy.getImageSource()->getDepth() / 8;
  }
  catch (const FileError&)
  {
    numBytes = 0; // the size is known otherwise, the image is not there
  }
  _widget.statusBar().setImageSizeInfo(size, numBytes);
}

void NYXImageWidgetMediator::updateImageTypeInfo()
{
  const NYXImageProxy& proxy = canvas().getImageProxy();
  _widget.statusBar().setImageTypeInfo(proxy.hasImage() ? imageTypeText(proxy.getImage()) : QString());
}

void NYXImageWidgetMediator::updateActions()
{
  const bool hasImage = _areActionsEnabled && canvas().viewport().getImageSize().isValid();
  _zoomIn->setEnabled(hasImage && canZoomIn());
  _zoomOut->setEnabled(hasImage && canZoomOut());
  _bestFit->setEnabled(hasImage && !canvas().isBestFitMode());
  _rulerAction->setEnabled(hasImage);
  for (QAction* action : _scrollActions) action->setEnabled(hasImage && !canvas().isBestFitMode());
}

void NYXImageWidgetMediator::setActionsEnabled(bool isEnabled)
{
  _areActionsEnabled = isEnabled;
  updateActions();
}
