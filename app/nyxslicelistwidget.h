#pragma once

#include <QWidget>

#include <map>

class NYXStack;
class QLineEdit;
class QListWidget;
class StackSlice;

/// The slices of the current stack, each with a dot per model that has items on it and a lock while it is locked, and a
/// field that filters by name. The selection follows its slice, also when the list is left for another stack's.
class NYXSliceListWidget : public QWidget
{
  Q_OBJECT

public:
  explicit NYXSliceListWidget(QWidget* parent = nullptr);

  /// Lists the slices of a stack and selects the one that was selected last, at first the first one; nullptr empties
  /// the list.
  void setStack(const NYXStack* stack);
  /// Forgets which slice of a stack was selected.
  void forget(const NYXStack& stack) { _selected.erase(&stack); }

  /// Lists the slices of the stack anew; the selection stays with its slice, or at the place that it has left.
  void refresh(const NYXStack& stack);
  /// Shows another name, or other models, of a slice.
  void refreshSlice(const NYXStack& stack, int slice);
  void showLock(int slice, bool isLocked);

  int numSlices() const;

  /// What a right click offers for the slice that it selects.
  void setMenuActions(const QList<QAction*>& actions);

  /// Index of the selected slice in the stack, -1 when there is none.
  int currentSlice() const;

  /// Selects a slice if the filter shows it.
  void selectSlice(const StackSlice& slice);
  /// Selects a slice; a filter that hides it is cleared.
  void revealSlice(const StackSlice& slice);

  /// Selects the next slice in a direction, 1 or -1, that the filter shows; past the ends nothing happens.
  void selectNeighbour(int direction);

  /// Selects the first or the last slice that the filter shows.
  void selectEnd(bool last);

signals:
  void currentSliceChanged(int slice);
  /// The user has dragged the slice of this index to another place. The list shows it there, the stack does not yet
  /// have it there: it is to be moved, or the list to be refreshed.
  void sliceDragged(int slice, int place);

private:
  void list(const NYXStack* stack, int row);
  void filter(const QString& text);
  void describe(int row);
  void noteRow(int row);
  const StackSlice* sliceOf(int row) const;
  int selectedRow(int otherwise) const;
  void selectNearestShown(int row);
  void selectShown(int from, int direction);

  QLineEdit* _filter;
  QListWidget* _list;
  const NYXStack* _stack = nullptr;
  std::map<const NYXStack*, const StackSlice*> _selected; // last, only to be compared with slices that are listed
};
