#pragma once

#include <QMainWindow>

class ModelItem;
class NYXAnalysisTable;
class NYXAnalysisWindowMediator;
class NYXModelAnalysisWidget;
class NYXModelItemAnalysisWidget;
class NYXSliceAnalysisTable;
class NYXStack;
class QAction;
class QLabel;
class QProgressBar;
class QPushButton;
class QTabWidget;

/// Measures of a stack: its models, what is on its slices, and the items of one model. Remembers its place.
class NYXAnalysisWindow : public QMainWindow
{
  Q_OBJECT

public:
  explicit NYXAnalysisWindow(QWidget* parent = nullptr);

  /// Shows the measures of another stack; nullptr for none.
  void setStack(NYXStack* stack);
  NYXAnalysisWindowMediator& mediator() const { return *_mediator; }

  QTabWidget& tabs() const { return *_tabs; }
  NYXModelAnalysisWidget& models() const { return *_models; }
  NYXSliceAnalysisTable& slices() const { return *_slices; }
  NYXModelItemAnalysisWidget& items() const { return *_items; }

  /// Shows what is at work: the stack's name, progress with Cancel, and news.
  /// @{
  void showStackName(const QString& name);
  void showRunning(bool isRunning, bool isStale);
  void showProgress(double share);
  void showMessage(const QString& text);
  /// What the sheet leaves out, below it; nothing for an empty text.
  void showNote(const QString& text);
  /// @}
  QAction& saveAction() const { return *_save; }
  QAction& copyAction() const { return *_copy; }

protected:
  /// Measures nothing while nobody looks.
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  QAction* createAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut);
  void createActions();
  void createTabs();
  void createStatusBar();
  void restoreGeometryFromSettings();

  QTabWidget* _tabs;
  NYXModelAnalysisWidget* _models;
  NYXSliceAnalysisTable* _slices;
  NYXModelItemAnalysisWidget* _items;
  QAction* _save = nullptr;
  QAction* _copy = nullptr;
  QLabel* _note = nullptr;
  QLabel* _stackName = nullptr;
  QProgressBar* _progress = nullptr;
  QPushButton* _cancel = nullptr;
  QPushButton* _refresh = nullptr;
  NYXAnalysisWindowMediator* _mediator;
};
