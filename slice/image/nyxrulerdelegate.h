#pragma once

#include "slice/image/nyximagewidgetmediatordelegate.h"

class PixelCalibration;

/// Measures distances: a line from where the left button goes down to where it is released, with its length in
/// calibrated units and its angle. The last line stays until the tool is left.
class NYXRulerDelegate : public NYXImageWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXRulerDelegate(NYXImageWidgetMediator& mediator);

  void activate() override;
  void deactivate() override;
  void toggle() { isActive() ? deactivate() : activate(); }

  void paint(QPainter& painter) override;

  /// Length between two pixels and the angle from the horizontal, counted counter-clockwise as seen on the screen.
  static QString measureText(const QPoint& from, const QPoint& to, const PixelCalibration& calibration);

signals:
  void activeChanged(bool isActive);

protected:
  void mousePressEvent(QMouseEvent& event) override;
  void mouseDoubleClickEvent(QMouseEvent& event) override;
  void mouseMoveEvent(QMouseEvent& event) override;
  void mouseReleaseEvent(QMouseEvent& event) override;
  void keyPressEvent(QKeyEvent& event) override;
  bool anyEvent(QEvent& event) override;

private:
  QPoint imagePosition(const QMouseEvent& event) const;
  void paintText(QPainter& painter, const QPointF& at) const;

  QPoint _from; // image pixels
  QPoint _to;
  bool _hasLine = false;
  bool _isDrawing = false;
};
