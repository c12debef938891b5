#pragma once

#include "numeric/vector.h"
#include "slice/image/nyximagepainter.h"
#include "slice/image/nyximageviewport.h"

#include <QMutex>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>

#include <memory>
#include <vector>

class NYXImageProxy;
class NYXImageWidgetCanvasExtraPainter;

/// Shows an image from the levels of its proxy: fitted into the canvas, or at a zoom from an origin on.
class NYXImageWidgetCanvas : public QOpenGLWidget, protected QOpenGLFunctions
{
  Q_OBJECT

public:
  explicit NYXImageWidgetCanvas(QWidget* parent = nullptr);
  ~NYXImageWidgetCanvas() override;

  /// Made on first use.
  NYXImageProxy& getImageProxy();
  /// Shows nothing any more.
  virtual void clear();

  /// The arithmetic of the view; see NYXImageViewport for what these do. None of them repaints.
  /// @{
  const NYXImageViewport& viewport() const { return _viewport; }
  bool isBestFitMode() const { return _viewport.isBestFitMode(); }
  float getZoomFactor() const { return _viewport.getZoomFactor(); }
  void setZoomFactor(float factor) { _viewport.setZoomFactor(factor); }
  void setBestFitMode(bool isOn, bool zoomingIn) { _viewport.setBestFitMode(isOn, zoomingIn); }
  void setBestFitZoomFactor() { _viewport.setBestFitZoomFactor(); }
  void stepZoomFactor(bool zoomingIn) { _viewport.stepZoomFactor(zoomingIn); }
  const QPoint& getViewOrigin() const { return _viewport.getViewOrigin(); }
  void setViewOrigin(const QPoint& origin) { _viewport.setViewOrigin(origin); }
  void setViewCenter(const QPoint& center) { _viewport.setViewCenter(center); }
  QPoint viewCenter() const { return _viewport.viewCenter(); }
  QRect currentView() const { return _viewport.currentView(); }
  QSize computeMaxViewSize() const { return _viewport.computeMaxViewSize(); }
  QPoint computeMaxViewOrigin() const { return _viewport.computeMaxViewOrigin(); }
  void rectifyViewOrigin() { _viewport.rectifyViewOrigin(); }
  QPoint convertToImagePosition(const QPoint& canvasPoint) const;
  QPoint convertToCanvasPosition(const QPoint& imagePoint) const;
  /// The pixel of the proxy's image that is shown at a place of the canvas, also beyond its borders.
  virtual QPoint imagePixelAt(const QPoint& canvasPoint) const { return convertToImagePosition(canvasPoint); }
  /// The image position as the two coordinates of a vertex.
  Vector<int> convertToVectori(const QPoint& canvasPoint) const;
  /// @}

  /// Repaints all of the canvas soon, or what lies in a rectangle of it.
  /// @{
  void update();
  void updatePart(const QRect& part);
  /// @}

  /// Takes over the size and the pixel calibration of the proxy's source.
  void updateImageSize();

  /// Keeps the picture as it is, whatever there is to paint, until it is let go or the canvas gets another size.
  void holdPicture(bool isHeld);
  bool isPictureHeld() const { return _isPictureHeld; }

  /// Grey levels drawn black and white, as shares of the largest one.
  void setBlackAndWhite(float black, float white);

  /// Painters are borrowed and called after the image, in the order of their insertion.
  void addExtraPainter(NYXImageWidgetCanvasExtraPainter* painter);
  void removeExtraPainter(NYXImageWidgetCanvasExtraPainter* painter);
  /// Makes a painter draw in image pixels; whole numbers are the centres of pixels.
  void initPainterTransform(QPainter& painter) const;

signals:
  /// The canvas has another size.
  void resized();

protected:
  virtual std::unique_ptr<NYXImageProxy> newImageProxy() const;
  /// The size of the image when its source cannot tell; not valid when nobody knows.
  virtual QSize fallbackImageSize() const { return {}; }
  /// The size of what is viewed, by the size of the image.
  virtual QSize viewedSize(const QSize& imageSize) const { return imageSize; }
  /// Draws the image of the proxy, of which there is a level: at least the part, in device pixels of the canvas.
  virtual void paintImage(const QRect& part);
  /// What lies on the image, below the extra painters.
  virtual void paintForeground(QPainter&) {}
  virtual bool isImageShown() const { return true; }

  void initializeGL() override;
  void paintGL() override;
  void resizeEvent(QResizeEvent* event) override;

private:
  void paintOver(const QRectF& part);
  void paintPixelGrid(QPainter& painter) const;
  void paintProblem(QPainter& painter) const;
  void reportErrors() const;

  std::unique_ptr<NYXImageProxy> _proxy;
  NYXImageViewport _viewport;
  NYXImagePainter _imagePainter;
  std::vector<NYXImageWidgetCanvasExtraPainter*> _extraPainters;
  bool _isPictureHeld = false;
  QRect _stale; // what is to be repainted; empty for all of the canvas
  bool _isAllStale = true;
  QMutex _mutex; // held while painting
};
