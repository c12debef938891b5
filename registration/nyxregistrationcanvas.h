#pragma once

#include "registration/nyxregistrationgeometry.h"
#include "slice/image/nyxsliceimageproxy.h"
#include "slice/image/nyxslicewidgetcanvas.h"

#include <QImage>
#include <QVector>

class ModelItem;

/// Which of the two slices are shown.
enum class NYXShownSlices
{
  Both,
  Background, ///< the slice before
  Foreground  ///< the current slice
};

/// Superposes the current slice, as the registration places it, on the slice before it, with the items of both; the
/// mouse moves and turns it.
///
/// The view is that of the current slice's pixels where it is not registered, with a margin around for what is moved.
class NYXRegistrationCanvas : public NYXSliceWidgetCanvas
{
  Q_OBJECT

public:
  enum MouseMode
  {
    Translation = 0,
    Rotation = 1
  };

  explicit NYXRegistrationCanvas(QWidget* parent = nullptr);

  /// The slice before the current one, nullptr for none; its image is asked for. To be called after setSlice().
  void setPreviousSlice(StackSlice* slice);
  NYXImageProxy& getPreviousProxy() { return _previousProxy; }

  /// That which is edited.
  const Registration& getRegistration() const { return _registration; }
  void setRegistration(const Registration& registration);
  /// Whether the mouse changes it.
  void setEditable(bool isEditable);
  MouseMode getMouseMode() const { return _mouseMode; }

  /// How transparent the current slice is, 0 to 100.
  int getTransparency() const { return _transparency; }
  void setTransparency(int percent);
  NYXShownSlices getShownSlices() const { return _shownSlices; }
  void setShownSlices(NYXShownSlices slices);
  /// The grey levels of both images that are shown black and white, as shares of the largest.
  void setLevels(float black, float white);

  /// The colours of the current slice's grey levels, opacity included.
  const QVector<QRgb>& getTransparencyMap() const { return _foreground.colors; }

  /// From pixels of the current slice, as it is placed, and of the slice before to those of the canvas.
  /// @{
  QTransform foregroundToCanvas() const;
  QTransform backgroundToCanvas() const;
  /// @}

  /// Of the current slice, where it is placed.
  QPoint imagePixelAt(const QPoint& canvasPoint) const override;

signals:
  /// The user has changed it.
  void registrationChanged(const Registration& registration);

protected:
  QSize viewedSize(const QSize& imageSize) const override;
  void paintImage(const QRect& part) override;
  void paintForeground(QPainter& painter) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

private:
  /// One of the two images, as 8-bit grey levels.
  struct Layer
  {
    const Image* level = nullptr; ///< that the picture is of
    QImage picture;
    QVector<QRgb> colors; ///< by grey level
  };

  NYXSliceFrame frame() const;
  QTransform frameToCanvas() const;
  void computeTransparencyMap();
  void forgetPicture(Layer& layer);
  void updatePicture(Layer& layer, const NYXImageProxy& proxy);
  void paintLayer(QPainter& painter, Layer& layer, const NYXImageProxy& proxy, const QTransform& toCanvas);
  void drawItems(QPainter& painter, const StackSlice& slice, const QTransform& toCanvas) const;
  void drawBackgroundItems(QPainter& painter) const;
  void drawForegroundItems(QPainter& painter) const;
  void drawOutline(QPainter& painter) const;
  void drawPreviousProblem(QPainter& painter) const;
  Qt::MouseButton draggingButton() const { return _mouseMode == Translation ? Qt::LeftButton : Qt::RightButton; }
  void translate(const QPointF& position);
  void rotate(const QPointF& position);
  void edit(const Registration& registration);

  const NYXImageProxy& _proxy; // of the current slice
  StackSlice* _previous = nullptr;
  NYXSliceImageProxy _previousProxy;
  Layer _background;
  Layer _foreground;
  Registration _registration;
  bool _isEditable = false;
  int _transparency = 50;
  NYXShownSlices _shownSlices = NYXShownSlices::Both;
  float _black = 0;
  float _white = 1;

  MouseMode _mouseMode = Translation;
  bool _isDragged = false;
  QPoint _pressPosition;
  Registration _pressRegistration;
  double _actualAngle = 0;
};
