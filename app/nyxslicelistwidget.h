#pragma once

#include <QWidget>

class Stack;
class QLineEdit;
class QListWidget;

/// The slices of the current stack, each with a dot per model that has items on it, and a field that filters by name.
class NYXSliceListWidget : public QWidget
{
  Q_OBJECT

public:
  explicit NYXSliceListWidget(QWidget* parent = nullptr);

  /// Lists the slices of a stack and selects the first one; nullptr empties the list.
  void setStack(const Stack* stack);

  /// Lists the slices of the stack anew; the selection stays at its place.
  void refresh(const Stack& stack);
  /// Shows another name, or other models, of a slice.
  void refreshSlice(const Stack& stack, int slice);

  int numSlices() const;

  /// Index of the selected slice in the stack, -1 when there is none.
  int currentSlice() const;

  /// Selects the next slice in a direction, 1 or -1, that the filter shows; past the ends nothing happens.
  void selectNeighbour(int direction);

  /// Selects the first or the last slice that the filter shows.
  void selectEnd(bool last);

signals:
  void currentSliceChanged(int slice);

private:
  void list(const Stack* stack);
  void filter(const QString& text);
  void showOrHide(int row);
  void selectNearestShown(int row);
  void selectShown(int from, int direction);

  QLineEdit* _filter;
  QListWidget* _list;
};
