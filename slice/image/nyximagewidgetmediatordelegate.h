#pragma once

#include "slice/image/nyximagewidgetcanvasextrapainter.h"

#include <QObject>
#include <QPoint>

class NYXImageWidgetCanvas;
class NYXImageWidgetMediator;
class QContextMenuEvent;
class QKeyEvent;
class QMouseEvent;
class QTabletEvent;

/// Base of the interaction tools of a mediator: looks at the canvas's events, and paints its feedback over the image.
///
/// While active, a delegate gets the events of the canvas by kind; a blocking one keeps them from those that were added
/// to the mediator before it and from the canvas.
class NYXImageWidgetMediatorDelegate : public QObject, public NYXImageWidgetCanvasExtraPainter
{
  Q_OBJECT

public:
  /// Adds itself to the mediator's canvas, as a painter too.
  explicit NYXImageWidgetMediatorDelegate(NYXImageWidgetMediator& mediator);
  ~NYXImageWidgetMediatorDelegate() override;

  bool isActive() const { return _isActive; }
  void setActive(bool isActive) { _isActive = isActive; }
  bool isBlocking() const { return _isBlocking; }
  void setBlocking(bool isBlocking) { _isBlocking = isBlocking; }

  /// Canvas pixels; nothing by default.
  void paint(QPainter&) override {}

public slots:
  virtual void activate();
  virtual void deactivate();

protected:
  NYXImageWidgetMediator& mediator() const { return _mediator; }
  NYXImageWidgetCanvas& canvas() const { return _canvas; }

  /// Dispatches the canvas's events. True when the event goes no further.
  bool eventFilter(QObject* object, QEvent* event) override;

  /// Called while active. A press by mouse or tablet, a move with or without a pressed button, and so on.
  /// @{
  virtual void mousePressEvent(QMouseEvent&) {}
  virtual void mouseMoveEvent(QMouseEvent&) {}
  virtual void mouseReleaseEvent(QMouseEvent&) {}
  virtual void mouseDoubleClickEvent(QMouseEvent&) {}
  virtual void tabletPressEvent(QTabletEvent&) {}
  virtual void tabletMoveEvent(QTabletEvent&) {}
  virtual void tabletReleaseEvent(QTabletEvent&) {}
  virtual void keyPressEvent(QKeyEvent&) {}
  virtual void keyReleaseEvent(QKeyEvent&) {}
  virtual void contextMenuEvent(QContextMenuEvent&) {}
  /// @}
  /// Called with every event, active or not, before the others. True when the delegate has dealt with the event.
  virtual bool anyEvent(QEvent&) { return false; }

private:
  bool dispatch(QEvent& event);

  NYXImageWidgetMediator& _mediator;
  NYXImageWidgetCanvas& _canvas;
  bool _isActive = false;
  bool _isBlocking = false;
};
