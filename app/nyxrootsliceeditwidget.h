#pragma once

#include <QWidget>

class NYXSliceWidget;
class Stack;
class StackSlice;
class QAction;
class QLabel;
class QStackedLayout;
class QVBoxLayout;

/// The right side of the root window: the current slice, or a page that offers stacks to open when there is none.
class NYXRootSliceEditWidget : public QWidget
{
  Q_OBJECT

public:
  explicit NYXRootSliceEditWidget(QWidget* parent = nullptr);

  /// The actions that the page without a stack offers, as buttons.
  void setStartActions(const QList<QAction*>& actions);

  /// The stack files that the page without a stack offers.
  void setRecentFiles(const QStringList& files);

  void showStartPage();

  /// Shows a slice; nullptr for a stack without slices.
  void showSlice(StackSlice* slice);

  NYXSliceWidget& sliceWidget() const { return *_sliceWidget; }

signals:
  void openRequested(const QString& file);

private:
  QWidget* createStartPage();

  QStackedLayout* _pages;
  NYXSliceWidget* _sliceWidget;
  QVBoxLayout* _startActions;
  QLabel* _recentFiles;
};
