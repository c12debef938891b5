#pragma once

#include "geometry/vertices.h"
#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include <QPoint>

class Model;

/// Makes a closed contour of the object within a rectangle that is drawn with the left button.
class NYXSliceEditWidgetMediatorThresholdingDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorThresholdingDelegate(NYXSliceEditWidgetMediator& mediator);

  /// Draws for the stack's model of this name; nothing happens when there is none.
  void activate(const QString& modelName);
  void deactivate() override;

protected:
  void paintFeedback(QPainter& painter) override;
  QRect feedbackRect() const override;
  QString editMode() const override { return "THRESHOLD"; }
  QString hint() const override { return tr("Drag a rectangle around the object, Escape to cancel"); }
  void press(const NYXPointerEvent& event) override;
  void move(const NYXPointerEvent& event) override;
  void release() override;

private:
  /// Asks for the levels and makes the contour. \return what is told under the result's title, empty when given up
  QString run(const QRect& roi);
  bool ask(const QString& label, int& level, int largest, int step) const;
  void create(const Vertices<int>& vertices);

  Model* _model = nullptr; // while active: the tool ends when a model is deleted
  bool _isDrawing = false;
  QPoint _from; // on the canvas
  QPoint _to;
  int _smoothing = 0; // as entered last
  int _decimation = 0;
};
