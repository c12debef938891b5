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

  int numSlices() const;

  /// Index of the selected slice in the stack, -1 when there is none.
  int currentSlice() const;

  /// Selects a slice; indices past the ends select the end.
  void select(int slice);

signals:
  void currentSliceChanged(int slice);

private:
  void filter(const QString& text);

  QLineEdit* _filter;
  QListWidget* _list;
};
