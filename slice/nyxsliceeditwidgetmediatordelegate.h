#pragma once

#include "geometry/boundingbox.h"
#include "slice/image/nyximagewidgetmediatordelegate.h"

#include <QString>

#include <memory>

class ModelItem;
class NYXAction;
class NYXSliceEditWidgetCanvas;
class NYXSliceEditWidgetMediator;
class NYXStack;
class StackSlice;
class QPointF;

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

  /// Whether the tool cannot go on when the item leaves its slice.
  virtual bool worksOn(const ModelItem&) const { return false; }

public slots:
  /// Gives the tool up; what it has not finished is as if it had never begun. Nothing happens when it is not active.
  virtual void cancel();

protected:
  NYXSliceEditWidgetMediator& editMediator() const;
  NYXSliceEditWidgetCanvas& editCanvas() const;
  /// Those that are shown; a tool is only used while there is a slice.
  StackSlice& slice() const;
  NYXStack& stack() const;

  /// Name of the tool in the status bar, and what the next click, drag or key does.
  virtual QString editMode() const = 0;
  virtual QString hint() const = 0;
  void showMode();

  /// The box of the source image, (0, 0) to (W - 1, H - 1), in which tools work.
  BoundingBox<int> imageBox() const;
  bool isOnImage(const QPoint& canvasPoint) const;
  /// The image position under a canvas point, moved into the box of the image.
  Vector<int> pointOnImage(const QPoint& canvasPoint) const;
  /// The centre of an image position on the canvas.
  QPointF canvasCenter(const int* position) const;
  /// How far from the mouse a vertex of the item is picked, in pixels of the image.
  int pickTolerance(const ModelItem& item) const;

  /// Applies an action and records it as one step, unless it changes nothing.
  void pushStep(std::unique_ptr<NYXAction> action);
};
