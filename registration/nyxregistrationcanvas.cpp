#include "registration/nyxregistrationcanvas.h"

#include "image/image.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxitempainter.h"
#include "slice/image/nyxsliceimageserver.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{
constexpr int numLevels = 256;
constexpr int marginShare = 8;  // the margin around the image is this part of its longer side
constexpr double crispZoom = 1; // from which on pixels are drawn as squares
constexpr double backgroundItemOpacity = 0.55;

int marginOf(const QSize& imageSize)
{
  return std::max(imageSize.width(), imageSize.height()) / marginShare;
}

NYXSliceFrame frameOf(const NYXImageProxy& proxy, const QSize& size)
{
  const PixelCalibration& calibration = proxy.getPixelCalibration();
  return {size, static_cast<double>(calibration.getPixelWidth()), static_cast<double>(calibration.getPixelHeight())};
}

/// The 8-bit grey levels of an image, still without their colours.
QImage greyPicture(const Image& level)
{
  Image grey = level;
  grey.make8bitsGrayscale();
  QImage picture(grey.getWidth(), grey.getHeight(), QImage::Format_Indexed8);
  for (int i = 0; i < grey.getHeight(); ++i)
    std::memcpy(picture.scanLine(i), grey.getLine(i), static_cast<std::size_t>(grey.getWidth()));
  return picture;
}
} // namespace

NYXRegistrationCanvas::NYXRegistrationCanvas(QWidget* parent) : NYXSliceWidgetCanvas(parent), _proxy(getImageProxy())
{
  setObjectName("registrationCanvas");
  setContextMenuPolicy(Qt::PreventContextMenu); // the right button turns
  connect(&_proxy, &NYXImageProxy::imageChanged, this, [this] { forgetPicture(_foreground); });
  connect(&_previousProxy, &NYXImageProxy::imageChanged, this, [this] { forgetPicture(_background); });
  computeTransparencyMap();
}

void NYXRegistrationCanvas::setPreviousSlice(StackSlice* slice)
{
  _previous = slice;
  if (_previousProxy.hasImageServer()) _previousProxy.getImageServer().detachProxy(_previousProxy);
  _previousProxy.setSlice(slice);
  forgetPicture(_background);
  if (slice != nullptr) NYXSliceImageServer::server().attachProxy(_previousProxy);
}

void NYXRegistrationCanvas::setRegistration(const Registration& registration)
{
  if (registration != _registration) _isDragged = false; // what the drag began with is gone
  _registration = registration;
  update();
}

void NYXRegistrationCanvas::setEditable(bool isEditable)
{
  _isEditable = isEditable;
  _isDragged = _isDragged && isEditable;
  isEditable ? setCursor(Qt::SizeAllCursor) : unsetCursor();
}

void NYXRegistrationCanvas::setTransparency(int percent)
{
  _transparency = percent;
  computeTransparencyMap();
}

void NYXRegistrationCanvas::setShownSlices(NYXShownSlices slices)
{
  _shownSlices = slices;
  computeTransparencyMap();
}

void NYXRegistrationCanvas::setLevels(float black, float white)
{
  _black = black;
  _white = white;
  computeTransparencyMap();
}

/// Grey levels become shades between black and white, those of the current slice with its opacity.
void NYXRegistrationCanvas::computeTransparencyMap()
{
  const bool isAlone = _shownSlices == NYXShownSlices::Foreground;
  const int opacity = isAlone ? 255 : qRound(255 * (100 - _transparency) / 100.0);
  const float range = std::max(_white - _black, 1.0F / numLevels);
  _background.colors.resize(numLevels);
  _foreground.colors.resize(numLevels);
  for (int i = 0; i < numLevels; ++i)
  {
    const float share = (static_cast<float>(i) / (numLevels - 1) - _black) / range;
    const int shade = qRound(255 * std::clamp(share, 0.0F, 1.0F));
    _background.colors[i] = qRgb(shade, shade, shade);
    _foreground.colors[i] = qRgba(shade, shade, shade, opacity);
  }
  for (Layer* layer : {&_background, &_foreground})
    if (!layer->picture.isNull()) layer->picture.setColorTable(layer->colors);
  update();
}

QSize NYXRegistrationCanvas::viewedSize(const QSize& imageSize) const
{
  const int margin = marginOf(imageSize);
  return imageSize.grownBy({margin, margin, margin, margin});
}

/// The size of the image is that of the view without its margin.
NYXSliceFrame NYXRegistrationCanvas::frame() const
{
  const QSize own = _proxy.getOriginalImageSize();
  return frameOf(_proxy, own.isValid() ? own : fallbackImageSize());
}

QTransform NYXRegistrationCanvas::frameToCanvas() const
{
  const int margin = marginOf(frame().size);
  return QTransform::fromTranslate(margin, margin) * itemsToCanvas();
}

QTransform NYXRegistrationCanvas::foregroundToCanvas() const
{
  return placement(frame(), _registration) * frameToCanvas();
}

QTransform NYXRegistrationCanvas::backgroundToCanvas() const
{
  const QSize own = _previousProxy.getOriginalImageSize();
  const QSize size = own.isValid() || _previous == nullptr ? own : NYXSliceImageProxy::fallbackImageSize(*_previous);
  return placementOfPrevious(frame(), frameOf(_previousProxy, size)) * frameToCanvas();
}

QPoint NYXRegistrationCanvas::imagePixelAt(const QPoint& canvasPoint) const
{
  return roundedPosition(foregroundToCanvas().inverted().map(QPointF(canvasPoint) + QPointF(0.5, 0.5)));
}

void NYXRegistrationCanvas::forgetPicture(Layer& layer)
{
  layer.level = nullptr;
  layer.picture = QImage();
  update();
}

void NYXRegistrationCanvas::updatePicture(Layer& layer, const NYXImageProxy& proxy)
{
  const Image& level = proxy.getImageForZoom(getZoomFactor() * static_cast<float>(devicePixelRatioF()));
  if (layer.level == &level) return;
  layer.level = &level;
  layer.picture = greyPicture(level);
  layer.picture.setColorTable(layer.colors);
}

void NYXRegistrationCanvas::paintLayer(QPainter& painter, Layer& layer, const NYXImageProxy& proxy,
                                       const QTransform& toCanvas)
{
  if (!proxy.hasImage()) return;
  updatePicture(layer, proxy);
  painter.setTransform(toCanvas);
  painter.drawImage(QRectF(QPointF(-0.5, -0.5), QSizeF(proxy.getOriginalImageSize())), layer.picture);
}

void NYXRegistrationCanvas::paintImage(const QRect& part)
{
  const double pixelRatio = devicePixelRatioF();
  QPainter painter(this);
  painter.setClipRect(QRectF(QPointF(part.topLeft()) / pixelRatio, QSizeF(part.size()) / pixelRatio));
  painter.setRenderHint(QPainter::SmoothPixmapTransform, static_cast<double>(getZoomFactor()) < crispZoom);
  if (_shownSlices != NYXShownSlices::Foreground)
    paintLayer(painter, _background, _previousProxy, backgroundToCanvas());
  if (_shownSlices != NYXShownSlices::Background) paintLayer(painter, _foreground, _proxy, foregroundToCanvas());
}

void NYXRegistrationCanvas::paintForeground(QPainter& painter)
{
  if (!hasSlice()) return;
  if (getCanvasMode() != CanvasMode::Background)
  {
    if (_shownSlices != NYXShownSlices::Foreground) drawBackgroundItems(painter);
    if (_shownSlices != NYXShownSlices::Background) drawForegroundItems(painter);
  }
  if (_shownSlices == NYXShownSlices::Both) drawOutline(painter);
  if (isImageShown()) drawPreviousProblem(painter);
}

/// At the top: the middle is where a problem of the current slice stands.
void NYXRegistrationCanvas::drawPreviousProblem(QPainter& painter) const
{
  if (_previousProxy.problem().isEmpty()) return;
  const QString text = tr("The image of the previous slice cannot be shown.") + "\n" + _previousProxy.problem();
  constexpr int flags = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
  const QRect place = painter.boundingRect(rect().adjusted(20, 20, -20, -20), flags, text);
  painter.fillRect(place.adjusted(-6, -4, 6, 4), palette().window());
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(place, flags, text);
}

void NYXRegistrationCanvas::drawItems(QPainter& painter, const StackSlice& slice, const QTransform& toCanvas) const
{
  const NYXItemDetail detail = _isDragged ? NYXItemDetail::Thin : NYXItemDetail::Full;
  painter.setRenderHint(QPainter::Antialiasing, detail == NYXItemDetail::Full);
  for (const ModelItem* item : slice.getItems()) drawModelItem(painter, *item, toCanvas, rect(), detail);
}

void NYXRegistrationCanvas::drawBackgroundItems(QPainter& painter) const
{
  if (_previous == nullptr) return;
  painter.setOpacity(_shownSlices == NYXShownSlices::Both ? backgroundItemOpacity : 1);
  drawItems(painter, *_previous, backgroundToCanvas());
  painter.setOpacity(1);
}

void NYXRegistrationCanvas::drawForegroundItems(QPainter& painter) const
{
  drawItems(painter, getSlice(), foregroundToCanvas());
}

/// The border of the current slice, as it is placed, and the point that it turns about.
void NYXRegistrationCanvas::drawOutline(QPainter& painter) const
{
  const QTransform toCanvas = foregroundToCanvas();
  const NYXSliceFrame slice = frame();
  const QPointF center = toCanvas.map(slice.center());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(QColor(85, 170, 255, 160), 1));
  painter.drawPolygon(toCanvas.map(QPolygonF(QRectF(QPointF(-0.5, -0.5), QSizeF(slice.size)))));
  painter.drawLine(center - QPointF(5, 0), center + QPointF(5, 0));
  painter.drawLine(center - QPointF(0, 5), center + QPointF(0, 5));
}

void NYXRegistrationCanvas::mousePressEvent(QMouseEvent* event)
{
  const bool isLeft = event->button() == Qt::LeftButton;
  if (!_isEditable || !hasSlice() || (!isLeft && event->button() != Qt::RightButton)) return;
  _mouseMode = isLeft ? Translation : Rotation;
  _isDragged = true;
  _pressPosition = roundedPosition(event->localPos());
  _pressRegistration = _registration;
  _actualAngle = actualAngle(static_cast<double>(_registration.getAngle()));
}

void NYXRegistrationCanvas::mouseMoveEvent(QMouseEvent* event)
{
  _isDragged = _isDragged && event->buttons().testFlag(draggingButton()); // a dialog may have taken the release
  if (!_isDragged) return;
  _mouseMode == Translation ? translate(event->localPos()) : rotate(event->localPos());
}

void NYXRegistrationCanvas::mouseReleaseEvent(QMouseEvent* event)
{
  if (!_isDragged || event->button() != draggingButton()) return;
  _isDragged = false;
  update();
}

/// By whole pixels of the image; what is less adds up while the button is held.
void NYXRegistrationCanvas::translate(const QPointF& position)
{
  const QPoint moved = roundedPosition(position) - _pressPosition;
  const QPoint pixels = roundedPosition({moved.x() / viewport().scaleX(), moved.y() / viewport().scaleY()});
  Registration registration = _registration;
  registration.setHorizontalShift(_pressRegistration.getHorizontalShift() + pixels.x());
  registration.setVerticalShift(_pressRegistration.getVerticalShift() + pixels.y());
  edit(registration);
}

void NYXRegistrationCanvas::rotate(const QPointF& position)
{
  const QPointF center = foregroundToCanvas().map(frame().center());
  const double turn = angleBetween(center, _pressPosition, roundedPosition(position));
  const double angle = actualAngle(static_cast<double>(_pressRegistration.getAngle()) + turn);
  if (angle == _actualAngle) return; // an angle of more digits stays until it is turned
  _actualAngle = angle;
  Registration registration = _registration;
  registration.setAngle(static_cast<float>(angle));
  edit(registration);
}

void NYXRegistrationCanvas::edit(const Registration& registration)
{
  if (registration == _registration) return;
  _registration = registration;
  update();
  emit registrationChanged(registration);
}
