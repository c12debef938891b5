#pragma once

#include "geometry/boundingbox.h"
#include "slice/image/nyximagewidgetmediatordelegate.h"

#include <QElapsedTimer>
#include <QRect>
#include <QString>

#include <memory>

class Model;
class ModelItem;
class NYXAction;
class NYXSliceEditWidgetCanvas;
class NYXSliceEditWidgetMediator;
class NYXStack;
class StackSlice;
class QPointF;

/// A press or move of the mouse or the pen.
struct NYXPointerEvent
{
  QPoint position; ///< on the canvas
  Qt::MouseButton button = Qt::NoButton;
  Qt::MouseButtons buttons = Qt::NoButton; ///< that are down
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

/// Base of the slice editor's tools. One of them is active at a time: activating one deactivates the one before, locks
/// the editor, so that the slice stays, and shows the tool's name; deactivating it sets "READY" and unlocks.
///
/// Each finished change is recorded as one step of the slice's history.
class NYXSliceEditWidgetMediatorDelegate : public NYXImageWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorDelegate(NYXSliceEditWidgetMediator& mediator);

  void activate() override;
  void deactivate() override;

  /// Whether the tool cannot go on when the item leaves its slice or model.
  virtual bool worksOn(const ModelItem&) const { return false; }
  /// Whether the tool cannot go on when the model leaves its stack.
  virtual bool worksOn(const Model&) const { return true; }

  /// Draws the feedback while active, and notes its place.
  void paint(QPainter& painter) final;
  /// Called when an item that the tool works on has changed.
  virtual void followItem() {}

  /// Shows the tool's name and hint.
  void showMode();
  /// The box of the source image, (0, 0) to (W - 1, H - 1), in which tools work.
  BoundingBox<int> imageBox() const;

public slots:
  /// Gives the tool up; what it has not finished is as if it had never begun. Nothing happens when it is not active.
  virtual void cancel();
  /// Leaves the tool with what is worth keeping of its work; cancels by default.
  virtual void finish() { cancel(); }

protected:
  NYXSliceEditWidgetMediator& editMediator() const;
  NYXSliceEditWidgetCanvas& editCanvas() const;
  /// Those that are shown; a tool is only used while there is a slice.
  StackSlice& slice() const;
  NYXStack& stack() const;

  /// What the mouse and the pen do alike; a release is that of the left button or of the pen.
  /// @{
  virtual void press(const NYXPointerEvent&) {}
  virtual void move(const NYXPointerEvent&) {}
  virtual void release() {}
  /// Comes instead of the second press.
  virtual void doubleClick(const NYXPointerEvent& event) { press(event); }
  /// @}
  void mousePressEvent(QMouseEvent& event) override;
  void mouseMoveEvent(QMouseEvent& event) override;
  void mouseReleaseEvent(QMouseEvent& event) override;
  void mouseDoubleClickEvent(QMouseEvent& event) override;
  void tabletPressEvent(QTabletEvent& event) override;
  void tabletMoveEvent(QTabletEvent& event) override;
  void tabletReleaseEvent(QTabletEvent& event) override;
  /// Keys that a tool does not know are left to the windows around the canvas.
  void keyPressEvent(QKeyEvent& event) override;
  void keyReleaseEvent(QKeyEvent& event) override;

  /// Name of the tool in the status bar, and what the next click, drag or key does.
  virtual QString editMode() const = 0;
  virtual QString hint() const = 0;

  bool isOnImage(const QPoint& canvasPoint) const;
  /// The image position under a canvas point, moved into the box of the image.
  Vector<int> pointOnImage(const QPoint& canvasPoint) const;
  /// The centre of an image position on the canvas.
  QPointF canvasCenter(const int* position) const;
  /// What the tool shows over the image, in pixels of the canvas, and the rectangle in which that lies: nothing, and
  /// all of the canvas, by default.
  /// @{
  virtual void paintFeedback(QPainter&) {}
  virtual QRect feedbackRect() const;
  /// @}
  /// Repaints the feedback where it was drawn last and where it is now.
  void updateFeedback();

  /// Why a tool has no image to work on.
  QString missingImageText() const;
  /// Puts a window at the side of the canvas where it hides the item the least.
  void placeBeside(const ModelItem& item, QWidget& window) const;
  /// How far from the mouse a vertex of the item is picked, in pixels of the image.
  int pickTolerance(const ModelItem& item) const;

  /// Applies an action and records it as one step, unless it changes nothing.
  void pushStep(std::unique_ptr<NYXAction> action);

private:
  bool isSecondTap(const QTabletEvent& event);

  QRect _painted;          // where feedback may be on the screen
  QElapsedTimer _sinceTap; // of the pen
  QPoint _tap;
};
