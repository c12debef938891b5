#pragma once

#include <QTimer>
#include <QWidget>

class NYXModeToolBar;
class NYXNavigationToolBar;
class NYXSliceEditWidget;
class Stack;
class StackSlice;
class QAction;
class NYXStatusField;
class QLabel;
class QStackedLayout;
class QToolButton;
class QVBoxLayout;

/// The right side of the root window: the current slice with its tools and what the next click, drag or key does, a
/// page that offers stacks to open when there is none, or one that says why there is no slice.
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

  NYXSliceEditWidget& sliceWidget() const { return *_sliceWidget; }
  NYXModeToolBar& modeToolBar() const { return *_modeToolBar; }
  /// For the window to fill and to place.
  NYXNavigationToolBar& navigationToolBar() const { return *_navigationToolBar; }

signals:
  void openRequested(const QString& file);

private:
  QWidget* createStartPage();
  QWidget* createSlicePage();
  void showHint();
  QWidget* createNoSlicePage();
  QToolButton* createButton(QAction& action);

  QStackedLayout* _pages;
  NYXSliceEditWidget* _sliceWidget;
  NYXModeToolBar* _modeToolBar;
  NYXNavigationToolBar* _navigationToolBar;
  NYXStatusField* _hint; // behind the message, as long as there is one
  QString _message;
  QTimer _messageEnd;
  QVBoxLayout* _startActions;
  QLabel* _recentFiles;
  QLabel* _noSlice;
  QVBoxLayout* _insertion;
};
