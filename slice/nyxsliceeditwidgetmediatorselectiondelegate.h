#pragma once

#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include "model/modelitemselection.h"

#include <QPoint>

#include <memory>
#include <string>
#include <vector>

class Model;
class QAction;

/// Selects items and points, by clicks and by a rubber box, and changes what is selected. Active when no other tool is.
///
/// Selecting is not undone; what is done to the selection is one step each.
class NYXSliceEditWidgetMediatorSelectionDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorSelectionDelegate(NYXSliceEditWidgetMediator& mediator);
  ~NYXSliceEditWidgetMediatorSelectionDelegate() override;

  void activate() override;
  void deactivate() override;
  /// Gives the rubber box up; what is selected stays.
  void cancel() override;

  bool hasClipboard() const { return !_clipboard.empty(); }
  /// The first selected item of the slice, or nullptr.
  ModelItem* selectedItem() const;
  /// The only selected closed or open curve of the slice, or nullptr.
  ModelItem* selectedCurve() const;

  /// Selects an item of the slice that is shown, and no others.
  void selectItem(const ModelItem& item);

public slots:
  void cancelSelection();
  void selectAllModelItems();
  /// All items of the model of this name, and no others.
  void selectModelItems(const QString& modelName);
  void copySelection();
  void pasteSelection();
  void removeSelection();
  /// Leaves out vertices of the selected curves that their shape hardly needs.
  void decimateSelection();
  /// Asks for the dialog that changes how what is selected is drawn.
  void editSelectionProperties();
  /// Moves what is selected to the model of this name.
  void convertSelection(const QString& modelName);
  /// The action carries the tag for the first selected item.
  void changeSelectionTriangulationTag(const QAction& action);

protected:
  void paintFeedback(QPainter& painter) override;
  QRect feedbackRect() const override;
  QString editMode() const override { return "READY"; }
  QString hint() const override;
  void press(const NYXPointerEvent& event) override;
  /// What the first click has selected stays so.
  void doubleClick(const NYXPointerEvent&) override {}
  void move(const NYXPointerEvent& event) override;
  void release() override;
  void keyPressEvent(QKeyEvent& event) override;
  void contextMenuEvent(QContextMenuEvent& event) override;
  bool anyEvent(QEvent& event) override;

private:
  static constexpr QPoint outside = QPoint(-1, -1);

  /// What was copied: an item of its own, and the name of its model.
  struct Copied
  {
    std::string model;
    std::unique_ptr<ModelItem> item;
  };

  /// Something that a click would select: an item, and the point of a points item.
  struct Target
  {
    const ModelItem* item = nullptr;
    int vertex = -1;

    bool operator==(const Target&) const = default;
  };

  std::vector<Target> targetsAt(const QPoint& canvasPoint) const;
  void hover(const QPoint& canvasPoint);
  void paintTargets(QPainter& painter) const;
  std::vector<const ModelItem*> candidates(const Vector<int>& point) const;
  void selectNear(const Vector<int>& point, bool isExtending);
  /// The vertex near the point, 0 for a curve or region that is near it; -1 when none is.
  int findNear(const ModelItem& item, const Vector<int>& point) const;
  ModelItemSelection selectionNear(const ModelItem& item, int vertex, bool isExtending) const;
  void selectInBox(const BoundingBox<int>& box);
  bool setSelection(ModelItem& item, const ModelItemSelection& selection);
  /// Selects all vertices of the items for which the test holds, and none of the others.
  template <class Test> void selectItems(const Test& test);
  void notifySelection();
  QString removalRefusal(const ModelItem& item) const;
  std::unique_ptr<ModelItem> pasted(const Copied& copied, const BoundingBox<int>& box) const;
  /// What moves the selected items to a model. \throw UsageError  one of them cannot become such an item
  std::vector<std::unique_ptr<NYXAction>> conversionsTo(Model& destination) const;

  bool _isDragging = false;
  QPoint _cursor = outside;     // on the canvas
  std::vector<Target> _targets; // below the cursor; for comparing only, they may be gone
  QPoint _boxStart;             // on the canvas
  QPoint _boxEnd;
  std::vector<Copied> _clipboard;
};
