#include "slice/image/nyximageviewport.h"

#include <algorithm>
#include <cmath>

namespace
{
float nextZoomAbove(float zoom)
{
  if (zoom >= 0.5F) return std::ceil(zoom);
  float next = 0.5F;
  while (next / 2 >= zoom) next /= 2;
  return next;
}

float nextZoomBelow(float zoom)
{
  if (zoom > 1) return std::floor(zoom);
  float next = 1;
  while (next > zoom) next /= 2;
  return next;
}

int visibleExtent(int canvas, double scale, int image)
{
  return static_cast<int>(std::min(std::ceil(canvas / scale), static_cast<double>(image)));
}

int truncated(double x)
{
  constexpr double limit = 1 << 30; // positions far off the canvas stay numbers that can be added up
  return static_cast<int>(std::clamp(x, -limit, limit));
}
} // namespace

void NYXImageViewport::setPixelCalibration(const PixelCalibration& calibration)
{
  const double ratio = calibration.getAspectRatio();
  const bool isUsable = std::isfinite(ratio) && ratio > 0;
  _betaWidth = isUsable ? std::min(1.0, 1 / ratio) : 1;
  _betaHeight = isUsable ? std::min(1.0, ratio) : 1;
}

void NYXImageViewport::setBestFitMode(bool isOn, bool zoomingIn)
{
  if (_isBestFit && !isOn) _zoomFactor = zoomingIn ? nextZoomAbove(_zoomFactor) : nextZoomBelow(_zoomFactor);
  _isBestFit = isOn;
  if (!isOn) return;
  setBestFitZoomFactor();
  rectifyViewOrigin();
}

void NYXImageViewport::setBestFitZoomFactor()
{
  if (!_imageSize.isValid() || _canvasSize.isEmpty()) return;
  const double w = std::max(1.0, std::trunc(_betaWidth * _imageSize.width()));
  const double h = std::max(1.0, std::trunc(_betaHeight * _imageSize.height()));
  const double cw = _canvasSize.width();
  const double ch = _canvasSize.height();
  const double zoom = ch * w > cw * h ? std::round(cw * h / w) / h : std::round(ch * w / h) / w;
  _zoomFactor = static_cast<float>(zoom > 0 ? zoom : std::min(cw / w, ch / h)); // lower than a pixel
}

void NYXImageViewport::stepZoomFactor(bool zoomingIn)
{
  if (zoomingIn)
    _zoomFactor = _zoomFactor < 1 ? _zoomFactor * 2 : _zoomFactor + 1;
  else
    _zoomFactor = _zoomFactor > 1 ? _zoomFactor - 1 : _zoomFactor / 2;
}

void NYXImageViewport::rectifyViewOrigin()
{
  const QPoint maximum = computeMaxViewOrigin();
  _viewOrigin.setX(std::max(0, std::min(_viewOrigin.x(), maximum.x())));
  _viewOrigin.setY(std::max(0, std::min(_viewOrigin.y(), maximum.y())));
}

void NYXImageViewport::setViewCenter(const QPoint& center)
{
  const QSize size = computeMaxViewSize();
  _viewOrigin = center - QPoint(size.width() / 2, size.height() / 2);
}

QPoint NYXImageViewport::viewCenter() const
{
  const QSize size = computeMaxViewSize();
  return _viewOrigin + QPoint(size.width() / 2, size.height() / 2);
}

QRect NYXImageViewport::currentView() const
{
  return {_viewOrigin, computeMaxViewSize()};
}

QSize NYXImageViewport::computeMaxViewSize() const
{
  if (!_imageSize.isValid()) return {0, 0};
  if (_isBestFit) return _imageSize;
  return {visibleExtent(_canvasSize.width(), scaleX(), _imageSize.width()),
          visibleExtent(_canvasSize.height(), scaleY(), _imageSize.height())};
}

QPoint NYXImageViewport::computeMaxViewOrigin() const
{
  if (_isBestFit || !_imageSize.isValid()) return {0, 0};
  const QSize size = computeMaxViewSize();
  return {_imageSize.width() - size.width(), _imageSize.height() - size.height()};
}

QPoint NYXImageViewport::convertToImagePosition(const QPoint& canvasPoint) const
{
  return QPoint(truncated(canvasPoint.x() / scaleX()), truncated(canvasPoint.y() / scaleY())) + _viewOrigin;
}

QPoint NYXImageViewport::convertToCanvasPosition(const QPoint& imagePoint) const
{
  return {truncated((imagePoint.x() - _viewOrigin.x()) * scaleX()),
          truncated((imagePoint.y() - _viewOrigin.y()) * scaleY())};
}

QPointF NYXImageViewport::mapToCanvas(const QPointF& imagePoint) const
{
  return {(imagePoint.x() - _viewOrigin.x()) * scaleX(), (imagePoint.y() - _viewOrigin.y()) * scaleY()};
}
