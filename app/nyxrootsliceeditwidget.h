#pragma once

#include <QWidget>

class NYXSliceWidget;
class Stack;
class StackSlice;
class QAction;
class QLabel;
class QStackedLayout;
class QToolButton;
class QVBoxLayout;

/// The right side of the root window: the current slice, a page that offers stacks to open when there is none, or one
/// that says why there is no slice.
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

  /// The action that the page of a stack without slices offers, as a button. To be set once.
  void setInsertAction(QAction& action);

  void showSlice(StackSlice& slice);
  /// The stack has no slices, or none that the filter of the slice list shows.
  void showNoSlice(bool hasStackSlices);

  NYXSliceWidget& sliceWidget() const { return *_sliceWidget; }

signals:
  void openRequested(const QString& file);

private:
  QWidget* createStartPage();
  QWidget* createNoSlicePage();
  QToolButton* createButton(QAction& action);

  QStackedLayout* _pages;
  NYXSliceWidget* _sliceWidget;
  QVBoxLayout* _startActions;
  QLabel* _recentFiles;
  QLabel* _noSlice;
  QVBoxLayout* _insertion;
};
