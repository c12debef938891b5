#pragma once

#include "image/pixelcalibration.h"

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

/// Which part of an image a canvas shows, and how large: the arithmetic of zooming, scrolling and pointing.
///
/// Canvas positions are in pixels of the widget, image positions in pixels of the source image. The image pixel at the
/// origin of the view lies at the top left of the canvas. The longer axis of non-square pixels is shrunk.
class NYXImageViewport
{
public:
  /// Not valid while the size of the image is not known.
  const QSize& getImageSize() const { return _imageSize; }
  void setImageSize(const QSize& size) { _imageSize = size; }
  const QSize& getCanvasSize() const { return _canvasSize; }
  void setCanvasSize(const QSize& size) { _canvasSize = size; }
  void setPixelCalibration(const PixelCalibration& calibration);

  double betaWidth() const { return _betaWidth; }
  double betaHeight() const { return _betaHeight; }
  /// Canvas pixels per image pixel along an axis.
  double scaleX() const { return static_cast<double>(_zoomFactor) * _betaWidth; }
  double scaleY() const { return static_cast<double>(_zoomFactor) * _betaHeight; }

  /// Canvas pixels per image pixel, before the correction of the aspect.
  float getZoomFactor() const { return _zoomFactor; }
  void setZoomFactor(float factor) { _zoomFactor = factor; }
  bool isBestFitMode() const { return _isBestFit; }
  /// Leaving the mode replaces the fitted zoom by the next full one: a whole number, or a half, a quarter...; the next
  /// larger one when `zoomingIn`, the next smaller one otherwise, the fitted one itself when it is one of them (but
  /// zooming in from a half gives 1).
  void setBestFitMode(bool isOn, bool zoomingIn);
  /// The zoom at which the whole image fits into the canvas; nothing happens while its size is not known.
  void setBestFitZoomFactor();
  /// One step of zooming outside of the best-fit mode: twice and half below 1, one more and one less above.
  void stepZoomFactor(bool zoomingIn);

  const QPoint& getViewOrigin() const { return _viewOrigin; }
  void setViewOrigin(const QPoint& origin) { _viewOrigin = origin; }
  /// Brings the view back onto the image.
  void rectifyViewOrigin();
  void setViewCenter(const QPoint& center);
  QPoint viewCenter() const;
  /// The image pixels on screen.
  QRect currentView() const;
  QSize computeMaxViewSize() const;
  QPoint computeMaxViewOrigin() const;

  QPoint convertToImagePosition(const QPoint& canvasPoint) const;
  QPoint convertToCanvasPosition(const QPoint& imagePoint) const;
  /// The place of an image position between canvas pixels; whole numbers are the corners of image pixels.
  QPointF mapToCanvas(const QPointF& imagePoint) const;

private:
  QSize _imageSize;
  QSize _canvasSize = QSize(0, 0);
  double _betaWidth = 1;
  double _betaHeight = 1;
  float _zoomFactor = 1;
  bool _isBestFit = true;
  QPoint _viewOrigin;
};
