#pragma once

#include "slice/image/nyximagewidgetmediatordelegate.h"

#include <QPointF>

class QWheelEvent;

/// Moves and zooms the view: by Space and the left button or the pen, by the middle button, and by the wheel.
///
/// With Space held, the view moves with the mouse over the image, a pixel of the image for each of the screen. The
/// middle button drags the image with the hand. The wheel zooms about the cursor, one step per notch.
class NYXPanDelegate : public NYXImageWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXPanDelegate(NYXImageWidgetMediator& mediator);
  ~NYXPanDelegate() override;

  void activate() override;
  void deactivate() override;

protected:
  void mousePressEvent(QMouseEvent& event) override;
  void mouseDoubleClickEvent(QMouseEvent& event) override;
  void mouseMoveEvent(QMouseEvent& event) override;
  void tabletPressEvent(QTabletEvent& event) override;
  void tabletMoveEvent(QTabletEvent& event) override;
  bool anyEvent(QEvent& event) override;

private:
  bool spaceEvent(const QKeyEvent& event, bool isPress);
  bool handEvent(const QMouseEvent& event);
  bool wheelEvent(QWheelEvent& event);
  void slide(const QPointF& position);
  void startHand(const QPoint& position);
  void dragHand(const QPoint& position);
  void endHand();

  QPointF _lastPosition; // of the mouse while Space is held
  bool _isHandDown = false;
  QPoint _handPosition; // where the middle button went down
  QPoint _handOrigin;   // and the origin of the view then
  int _wheelAngle = 0;  // turned since the last step of zooming
};
