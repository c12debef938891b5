#include "slice/image/nyxoverview.h"

#include "app/core/nyxpreferences.h"
#include "image/image.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidget.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "slice/image/qimageconversion.h"

#include <QCloseEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QSettings>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{
constexpr int clearingDelay = 100;  // milliseconds
constexpr double smallestFrame = 5; // as it is drawn

/// Every step-th pixel of every step-th line.
Image thinnedOut(const Image& image, int step)
{
  Image result((image.getWidth() + step - 1) / step, (image.getHeight() + step - 1) / step, image.getDepth());
  const auto numBytes = static_cast<std::size_t>(image.bytesPerPixel());
  for (int i = 0; i < result.getHeight(); ++i)
  {
    const unsigned char* from = image.getLine(i * step);
    unsigned char* to = result.getLine(i);
    for (int j = 0; j < result.getWidth(); ++j, from += numBytes * static_cast<std::size_t>(step), to += numBytes)
      std::memcpy(to, from, numBytes);
  }
  return result;
}

/// The widget, or the nearest one around it that is laid out, as what is hidden is not.
const QWidget& shownAround(const QWidget& widget)
{
  const QWidget* shown = &widget;
  while (!shown->isVisible() && shown->parentWidget() != nullptr) shown = shown->parentWidget();
  return *shown;
}

/// About the same centre, to be seen however small it is.
QRectF enlarged(const QRectF& rect)
{
  QRectF result(QPointF(), QSizeF(std::max(rect.width(), smallestFrame), std::max(rect.height(), smallestFrame)));
  result.moveCenter(rect.center());
  return result;
}
} // namespace

NYXOverview::NYXOverview(NYXImageWidget& widget, QWidget* parent) : QWidget(parent, Qt::Tool), _widget(widget)
{
  setObjectName("overview");
  setWindowTitle(tr("Overview"));
  setMinimumSize(80, 80);
  setMouseTracking(true);
  setFocusPolicy(Qt::NoFocus);
  setAttribute(Qt::WA_ShowWithoutActivating);
  _clearing.setSingleShot(true);
  connect(&_clearing, &QTimer::timeout, this, &NYXOverview::updatePicture);
  connect(&widget, &NYXImageWidget::viewChanged, this, &NYXOverview::follow);
  connect(&widget.mediator(), &NYXImageWidgetMediator::imageChanged, this, &NYXOverview::follow);
}

QSize NYXOverview::sizeHint() const
{
  const int side = fontMetrics().height() * 14;
  return {side, side};
}

/// The widget's image fitted into this one.
NYXImageViewport NYXOverview::fit() const
{
  NYXImageViewport viewport = _widget.canvas().viewport();
  viewport.setCanvasSize(size());
  viewport.setBestFitMode(true, false);
  return viewport;
}

QRectF NYXOverview::imageRect() const
{
  const NYXImageViewport viewport = fit();
  if (!viewport.getImageSize().isValid()) return {};
  const QSizeF image(viewport.getImageSize().width() * viewport.scaleX(),
                     viewport.getImageSize().height() * viewport.scaleY());
  return {QPointF((width() - image.width()) / 2, (height() - image.height()) / 2), image};
}

QRectF NYXOverview::frame() const
{
  const QRectF view = _widget.canvas().currentView();
  const NYXImageViewport viewport = fit();
  if (view.isEmpty() || !viewport.getImageSize().isValid()) return {};
  return QRectF(viewport.mapToCanvas(view.topLeft()), viewport.mapToCanvas(view.bottomRight()))
      .translated(imageRect().topLeft());
}

QPointF NYXOverview::imagePosition(const QPointF& point) const
{
  const NYXImageViewport viewport = fit();
  const QPointF inside = point - imageRect().topLeft();
  return {inside.x() / viewport.scaleX(), inside.y() / viewport.scaleY()};
}

/// The image before stays for a moment, so that going from slice to slice does not flicker.
void NYXOverview::follow()
{
  if (!isVisible()) return;
  if (_widget.canvas().getImageProxy().hasImage())
    updatePicture();
  else if (!_clearing.isActive() && !_picture.isNull())
    _clearing.start(clearingDelay);
  update();
}

/// From the smallest level that is large enough; as long as only larger ones are there, from some of its pixels.
void NYXOverview::updatePicture()
{
  const NYXImageProxy& proxy = _widget.canvas().getImageProxy();
  const QSizeF place = imageRect().size();
  if (!proxy.hasImage() || place.isEmpty())
  {
    _picture = QPixmap();
    _pictureKey.clear();
    return update();
  }
  _clearing.stop();
  const double wantedWidth = place.width() * devicePixelRatioF();
  const double zoom = std::max(wantedWidth / proxy.getImage().getWidth(),
                               place.height() * devicePixelRatioF() / proxy.getImage().getHeight());
  const int level = proxy.levelForZoom(static_cast<float>(zoom));
  const QString key = QString("%1 %2 %3").arg(proxy.key()).arg(level).arg(std::ceil(wantedWidth));
  if (key == _pictureKey) return;
  const Image& image = proxy.getImage(level);
  const int step = std::max(1, static_cast<int>(image.getWidth() / (2 * std::max(wantedWidth, 1.0))));
  _picture = QPixmap::fromImage(step > 1 ? toQImage(thinnedOut(image, step)) : toQImage(image));
  _pictureKey = key;
}

void NYXOverview::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  const QColor background = NYXPreferences::getImageCanvasBackgroundColor();
  painter.fillRect(rect(), background);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  if (!_picture.isNull()) painter.drawPixmap(imageRect(), _picture, _picture.rect());
  const QRectF view = frame();
  if (view.isEmpty()) return;
  const QRectF drawn = enlarged(view.adjusted(1, 1, -1, -1));
  painter.setPen(QPen(QColor(0, 0, 0, 160), 4));
  painter.drawRect(drawn);
  painter.setPen(QPen(NYXPreferences::getSelectionColor(), 2));
  painter.drawRect(drawn);
}

void NYXOverview::mousePressEvent(QMouseEvent* event)
{
  const QRectF view = frame();
  if (event->button() != Qt::LeftButton || view.isEmpty()) return;
  const QSizeF shown = _widget.canvas().computeMaxViewSize();
  _isDragged = true;
  const bool isOnFrame = view.contains(event->localPos());
  _grip = isOnFrame ? imagePosition(event->localPos()) - _widget.canvas().getViewOrigin()
                    : QPointF(shown.width() / 2, shown.height() / 2);
  if (!isOnFrame) dragTo(event->localPos());
  updateCursor(event->localPos());
}

void NYXOverview::mouseMoveEvent(QMouseEvent* event)
{
  if (_isDragged) dragTo(event->localPos());
  updateCursor(event->localPos());
}

void NYXOverview::mouseReleaseEvent(QMouseEvent* event)
{
  _isDragged = false;
  updateCursor(event->localPos());
}

void NYXOverview::updateCursor(const QPointF& point)
{
  const bool isOnFrame = frame().contains(point);
  setCursor(_isDragged ? Qt::ClosedHandCursor : isOnFrame ? Qt::OpenHandCursor : Qt::ArrowCursor);
}

void NYXOverview::dragTo(const QPointF& point)
{
  const QPointF origin = imagePosition(point) - _grip;
  _widget.mediator().moveView(QPoint(qRound(origin.x()), qRound(origin.y())));
}

/// At first at the top right of the window that it belongs to.
void NYXOverview::restoreGeometryFromSettings()
{
  const QSettings store;
  const QSize stored = store.value("overview/size").toSize();
  resize(stored.isEmpty() ? sizeHint() : stored);
  const QPoint position = store.value("overview/pos").toPoint();
  const auto isOn = [&](const QScreen* candidate) { return candidate->geometry().intersects({position, size()}); };
  const QList<QScreen*> screens = screen()->virtualSiblings();
  if (store.contains("overview/pos") && std::any_of(screens.begin(), screens.end(), isOn)) return move(position);
  const QWidget& place = shownAround(_widget.canvas());
  const int inset = fontMetrics().height();
  move(place.mapToGlobal(QPoint(place.width() - width() - inset, inset)));
}

void NYXOverview::showEvent(QShowEvent* event)
{
  QWidget::showEvent(event);
  if (!_isPlaced) restoreGeometryFromSettings();
  _isPlaced = true;
  updatePicture();
}

void NYXOverview::closeEvent(QCloseEvent* event)
{
  QWidget::closeEvent(event);
  emit closed();
}

void NYXOverview::moveEvent(QMoveEvent* event)
{
  QWidget::moveEvent(event);
  if (_isPlaced && isVisible()) QSettings().setValue("overview/pos", pos());
}

void NYXOverview::resizeEvent(QResizeEvent* event)
{
  QWidget::resizeEvent(event);
  if (!_isPlaced || !isVisible()) return;
  QSettings().setValue("overview/size", size());
  follow();
}
