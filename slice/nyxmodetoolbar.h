#pragma once

#include <QToolBar>

class NYXSliceEditWidgetMediator;
class QMenu;
class QToolButton;

/// The strip of tools of the slice editor: the one at work is highlighted, and above them is the model that new items
/// belong to, with its colour.
class NYXModeToolBar : public QToolBar
{
  Q_OBJECT

public:
  explicit NYXModeToolBar(NYXSliceEditWidgetMediator& mediator, QWidget* parent = nullptr);

  /// An action that the list of models offers below them.
  void setModelsAction(QAction& action) { _modelsAction = &action; }

private:
  void fillModelMenu();
  void showModelInUse();

  NYXSliceEditWidgetMediator& _mediator;
  QToolButton* _model;
  QMenu* _modelMenu;
  QAction* _modelsAction = nullptr;
};
