#pragma once

#include "slice/image/nyximageviewport.h"

#include <QPixmap>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QTimer>
#include <QWidget>

class Image;
class NYXImageWidget;

/// The whole image of an image widget, small, in a window of its own, with a frame around what the widget shows of it:
/// dragging the frame, or a click beside it, moves the view there.
///
/// Remembers its place in the settings.
class NYXOverview : public QWidget
{
  Q_OBJECT

public:
  /// A tool window over `parent`'s. The widget is borrowed.
  NYXOverview(NYXImageWidget& widget, QWidget* parent);

  QSize sizeHint() const override;

  /// What the widget shows, in pixels of the overview; empty without an image.
  QRectF frame() const;
  /// The image position shown at a point of the overview.
  QPointF imagePosition(const QPointF& point) const;

signals:
  /// The user has closed the window.
  void closed();

protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  NYXImageViewport fit() const;
  QRectF imageRect() const;
  void follow();
  void updatePicture();
  void restoreGeometryFromSettings();
  void dragTo(const QPointF& point);
  void updateCursor(const QPointF& point);

  NYXImageWidget& _widget;
  QPixmap _picture;
  QString _pictureKey; // of the image, its level and the size for which the picture was made
  QTimer _clearing;    // runs while the picture of the image before is still shown
  bool _isPlaced = false;
  bool _isDragged = false;
  QPointF _grip; // in image pixels, from the top left of the frame
};
