#pragma once

#include "slice/nyxsliceeditwidgetmediatordelegate.h"
#include "slice/nyxvertexeditiontoolbar.h"

#include "numeric/vector.h"

#include <QPoint>
#include <QPolygonF>

class NYXMoveVertexAction;

/// Edits the vertices of the selected item one by one: moves, inserts and deletes them. Regions are erased.
class NYXSliceEditWidgetMediatorEditionDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorEditionDelegate(NYXSliceEditWidgetMediator& mediator);
  ~NYXSliceEditWidgetMediatorEditionDelegate() override;

  /// Edits the last item of the slice with a selection; nothing happens when there is none.
  void activate() override;
  void deactivate() override;

  VertexEditionMode getMode() const { return _mode; }
  /// Nothing happens when the tool is not active. Regions stay in the delete mode.
  void setMode(VertexEditionMode mode);

  using NYXSliceEditWidgetMediatorDelegate::worksOn;
  bool worksOn(const ModelItem& item) const override { return &item == _item; }

protected:
  void paintFeedback(QPainter& painter) override;
  QRect feedbackRect() const override;
  QString editMode() const override;
  QString hint() const override;
  void press(const NYXPointerEvent& event) override;
  void move(const NYXPointerEvent& event) override;
  void release() override;
  void contextMenuEvent(QContextMenuEvent& event) override;

private:
  /// Ends a drag that is not over, without its change.
  void giveUp();

  void change(const Vector<int>& point);
  double eraserRadius() const;
  int vertexAtCursor() const;
  QPolygonF insertionAtCursor() const;
  void paintVertices(QPainter& painter) const;
  void beginMove(const Vector<int>& point);
  void beginInsertion(const Vector<int>& point);
  void insert(const Vector<int>& point);
  void beginDeletion(const Vector<int>& point);
  void deleteNear(const Vector<int>& point);
  void erase(const Vector<int>& point);
  /// Why no vertex can be deleted; empty when one can.
  QString deletionRefusal() const;
  void openStep();
  void closeStep();

  ModelItem* _item = nullptr;
  VertexEditionMode _mode = VertexEditionMode::Move;
  NYXVertexEditionToolBar* _toolBar;
  QPoint _cursor; // on the canvas
  bool _isPressed = false;
  std::unique_ptr<NYXMoveVertexAction> _moveAction; // of the drag at work
  int _insertionIndex = -1;
  Vector<int> _last; // position of the drag
};
