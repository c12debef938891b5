#pragma once

#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include "model/rleitemset.h"
#include "numeric/vector.h"

#include <QPoint>

#include <vector>

class Model;

/// Draws a new item of a model: vertices by clicks, drags or "X", discs of a region by a brush.
///
/// A double click or Return finishes the item, Backspace takes the last vertex back, a right click or Escape cancels.
/// Points and regions are added to the item of the model that the slice has already.
class NYXSliceEditWidgetMediatorCreationDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorCreationDelegate(NYXSliceEditWidgetMediator& mediator);
  ~NYXSliceEditWidgetMediatorCreationDelegate() override;

  /// Begins an item of the stack's model of this name; nothing happens when there is none.
  void activate(const QString& modelName);
  void deactivate() override;
  /// Records the new item, or says why there can be none and cancels.
  void apply();
  /// Records the new item if it can be one, else cancels.
  void finish() override;
  /// Begins an item of another model if none is begun. \return whether it does
  bool changeModel(const QString& modelName);
  using NYXSliceEditWidgetMediatorDelegate::worksOn;
  bool worksOn(const Model& model) const override;
  /// The model of the item that is being drawn; only while active.
  const Model& model() const;

protected:
  void paintFeedback(QPainter& painter) override;
  QRect feedbackRect() const override;
  QString editMode() const override { return "CREATE"; }
  QString hint() const override;
  void press(const NYXPointerEvent& event) override;
  void move(const NYXPointerEvent& event) override;
  void doubleClick(const NYXPointerEvent& event) override;
  void keyPressEvent(QKeyEvent& event) override;
  bool anyEvent(QEvent& event) override;

private:
  void addVertex(const QPoint& canvasPoint, bool isStroke);
  void addDisc(const Vector<int>& center, bool isStroke);
  void removeLastVertex();
  bool isPoints() const;
  /// Why the vertices make no item; empty when they do.
  QString refusal() const;
  void decimate();
  void record();

  /// What a press or a move has added to a region.
  struct Disc
  {
    RLEItemSet positions;
    Vector<int> center;
    bool isConnected; ///< with the disc before
  };

  std::unique_ptr<ModelItem> _item;
  std::vector<Disc> _discs;        // in the order in which they were added
  bool _isInterrupted = false;     // the stroke of the brush
  bool _hasPressAskedMenu = false; // the press that cancels is also one for a context menu
  QPoint _cursor;                  // on the canvas
};
