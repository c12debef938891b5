#include "slice/image/nyximagewidgetcanvas.h"

#include "app/core/nyxpreferences.h"
#include "image/image.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidgetcanvasextrapainter.h"

#include <GL/glu.h>

#include <QMutexLocker>
#include <QPainter>

#include <algorithm>
#include <iostream>

namespace
{
constexpr float pixelGridZoom = 16; // from which on the borders of pixels are drawn
}

NYXImageWidgetCanvas::NYXImageWidgetCanvas(QWidget* parent) : QOpenGLWidget(parent)
{
  setObjectName("imageCanvas");
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setMinimumSize(64, 64);
  setUpdateBehavior(PartialUpdate); // so that a picture can be held
}

NYXImageWidgetCanvas::~NYXImageWidgetCanvas() = default;

NYXImageProxy& NYXImageWidgetCanvas::getImageProxy()
{
  if (!_proxy) _proxy = newImageProxy();
  return *_proxy;
}

std::unique_ptr<NYXImageProxy> NYXImageWidgetCanvas::newImageProxy() const
{
  return std::make_unique<NYXImageProxy>();
}

void NYXImageWidgetCanvas::clear()
{
  getImageProxy().setImageSource(nullptr);
  updateImageSize();
  update();
}

void NYXImageWidgetCanvas::update()
{
  _isAllStale = true;
  QOpenGLWidget::update();
}

void NYXImageWidgetCanvas::updatePart(const QRect& part)
{
  _stale |= part & rect();
  if (!_stale.isEmpty()) QOpenGLWidget::update();
}

QPoint NYXImageWidgetCanvas::convertToImagePosition(const QPoint& canvasPoint) const
{
  return _viewport.convertToImagePosition(canvasPoint);
}

QPoint NYXImageWidgetCanvas::convertToCanvasPosition(const QPoint& imagePoint) const
{
  return _viewport.convertToCanvasPosition(imagePoint);
}

Vector<int> NYXImageWidgetCanvas::convertToVectori(const QPoint& canvasPoint) const
{
  const QPoint position = convertToImagePosition(canvasPoint);
  Vector<int> result(2);
  result[0] = position.x();
  result[1] = position.y();
  return result;
}

void NYXImageWidgetCanvas::updateImageSize()
{
  const NYXImageProxy& proxy = getImageProxy();
  const QSize own = proxy.getOriginalImageSize();
  const QSize size = own.isValid() ? own : fallbackImageSize();
  _viewport.setImageSize(size.isValid() ? viewedSize(size) : size);
  _viewport.setPixelCalibration(proxy.getPixelCalibration());
  if (isBestFitMode()) setBestFitZoomFactor();
  rectifyViewOrigin();
}

// Without updates the canvas would let what lies behind it shine through.
void NYXImageWidgetCanvas::holdPicture(bool isHeld)
{
  if (_isPictureHeld && !isHeld) update();
  _isPictureHeld = isHeld;
}

void NYXImageWidgetCanvas::setBlackAndWhite(float black, float white)
{
  _imagePainter.setBlackAndWhite(black, white);
}

void NYXImageWidgetCanvas::addExtraPainter(NYXImageWidgetCanvasExtraPainter* painter)
{
  _extraPainters.push_back(painter);
}

void NYXImageWidgetCanvas::removeExtraPainter(NYXImageWidgetCanvasExtraPainter* painter)
{
  std::erase(_extraPainters, painter);
}

void NYXImageWidgetCanvas::initPainterTransform(QPainter& painter) const
{
  painter.scale(_viewport.scaleX(), _viewport.scaleY());
  painter.translate(0.5 - getViewOrigin().x(), 0.5 - getViewOrigin().y());
}

void NYXImageWidgetCanvas::resizeEvent(QResizeEvent* event)
{
  _isPictureHeld = false;
  _isAllStale = true;
  const QPoint center = viewCenter();
  _viewport.setCanvasSize(size());
  if (isBestFitMode())
    setBestFitZoomFactor();
  else
    setViewCenter(center);
  rectifyViewOrigin();
  QOpenGLWidget::resizeEvent(event);
  emit resized();
}

void NYXImageWidgetCanvas::initializeGL()
{
  _isPictureHeld = false;
  _isAllStale = true;
  initializeOpenGLFunctions();
}

void NYXImageWidgetCanvas::paintGL()
{
  if (_isPictureHeld) return;
  const QMutexLocker lock(&_mutex);
  // Without a wish of this program, the screen wants a picture.
  const QRect part = _isAllStale || _stale.isEmpty() ? rect() : _stale;
  _isAllStale = false;
  _stale = QRect();
  const double pixelRatio = devicePixelRatioF();
  const QRect pixels = QRectF(QPointF(part.topLeft()) * pixelRatio, QSizeF(part.size()) * pixelRatio).toAlignedRect();
  glEnable(GL_SCISSOR_TEST);
  glScissor(pixels.left(), qRound(height() * pixelRatio) - pixels.bottom() - 1, pixels.width(), pixels.height());
  const QColor background = NYXPreferences::getImageCanvasBackgroundColor();
  glClearColor(static_cast<float>(background.redF()), static_cast<float>(background.greenF()),
               static_cast<float>(background.blueF()), 1);
  glClear(GL_COLOR_BUFFER_BIT);
  if (isImageShown() && getImageProxy().hasImage()) paintImage(pixels);
  glDisable(GL_SCISSOR_TEST);
  paintOver(QRectF(QPointF(pixels.topLeft()) / pixelRatio, QSizeF(pixels.size()) / pixelRatio));
  reportErrors();
}

void NYXImageWidgetCanvas::paintImage(const QRect& part)
{
  const double pixelRatio = devicePixelRatioF();
  const Image& level = getImageProxy().getImageForZoom(getZoomFactor() * static_cast<float>(pixelRatio));
  _imagePainter.paint(level, _viewport, pixelRatio, part);
}

void NYXImageWidgetCanvas::paintOver(const QRectF& part)
{
  QPainter painter(this);
  painter.setClipRect(part);
  if (isImageShown() && getZoomFactor() >= pixelGridZoom) paintPixelGrid(painter);
  paintForeground(painter);
  if (isImageShown()) paintProblem(painter);
  for (NYXImageWidgetCanvasExtraPainter* extra : _extraPainters)
  {
    painter.save();
    extra->paint(painter);
    painter.restore();
  }
}

void NYXImageWidgetCanvas::paintPixelGrid(QPainter& painter) const
{
  const QRect view = currentView();
  const QPointF end = _viewport.mapToCanvas(view.bottomRight() + QPoint(1, 1));
  painter.setPen(QPen(QColor(128, 128, 128, 90), 1));
  for (int x = view.left(); x <= view.right() + 1; ++x)
  {
    const double column = _viewport.mapToCanvas(QPointF(x, 0)).x();
    painter.drawLine(QPointF(column, 0), QPointF(column, end.y()));
  }
  for (int y = view.top(); y <= view.bottom() + 1; ++y)
  {
    const double line = _viewport.mapToCanvas(QPointF(0, y)).y();
    painter.drawLine(QPointF(0, line), QPointF(end.x(), line));
  }
}

void NYXImageWidgetCanvas::paintProblem(QPainter& painter) const
{
  if (!_proxy || _proxy->problem().isEmpty()) return;
  const QString text = tr("The image of this slice cannot be shown.") + "\n" + _proxy->problem();
  const QColor background = NYXPreferences::getImageCanvasBackgroundColor();
  painter.setPen(background.lightnessF() < 0.6 ? Qt::white : Qt::black);
  painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap, text);
}

void NYXImageWidgetCanvas::reportErrors() const
{
  for (GLenum error = ::glGetError(); error != GL_NO_ERROR; error = ::glGetError())
    std::cerr << "*** OpenGL error: " << gluErrorString(error) << std::endl;
}
