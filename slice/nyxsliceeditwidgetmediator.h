#pragma once

#include "slice/image/nyxslicewidgetmediator.h"

#include <QStringList>

#include <memory>
#include <vector>

class ModelItem;
class NYXAction;
class NYXActionHistory;
class NYXPreviousSlice;
class NYXSliceEditWidget;
class NYXSliceEditWidgetMediatorCreationDelegate;
class NYXSliceEditWidgetMediatorDelegate;
class NYXSliceEditWidgetMediatorDouglasPeuckerDecimationDelegate;
class NYXSliceEditWidgetMediatorEditionDelegate;
class NYXSliceEditWidgetMediatorFourierDelegate;
class NYXSliceEditWidgetMediatorReoriginDelegate;
class NYXSliceEditWidgetMediatorResamplingDelegate;
class NYXSliceEditWidgetMediatorSelectionDelegate;
class NYXSliceEditWidgetMediatorShiftDelegate;
class NYXSliceEditWidgetMediatorSnakeDelegate;
class NYXSliceEditWidgetMediatorSplitDelegate;
class NYXSliceEditWidgetMediatorThresholdingDelegate;
class QActionGroup;
class QMenu;

/// Drives the slice editor: owns its actions, its menus of models and its tools, one of which is active at a time.
class NYXSliceEditWidgetMediator : public NYXSliceWidgetMediator
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediator(NYXSliceEditWidget& widget);

  void initialize() override;
  void setSlice(StackSlice* slice) override;

  NYXSliceEditWidget& editWidget() const;
  /// The window of the widget, for message boxes.
  QWidget& window() const;
  /// The stack of the slice that is shown. \throw ProgramError  there is none
  NYXStack& stack() const;
  /// Of the slice.
  NYXActionHistory& history() const;

  /// Whether there is a slice and it is not locked: tools are activated on no other.
  bool isEditable() const;
  /// The tool at work, or nullptr while the selection is; called by the tools. Locks the editor while there is one.
  void setActiveTool(NYXSliceEditWidgetMediatorDelegate* tool);
  NYXSliceEditWidgetMediatorDelegate* activeTool() const { return _activeTool; }
  void showEditMode(const QString& mode, const QString& hint);
  /// What the next click, drag or key does now.
  const QString& hint() const { return _hint; }
  /// A line for the user, gone after a while.
  void showMessage(const QString& text);

  /// Applies actions and records them as one step of the slice's history, without those that change nothing. One that
  /// fails takes the step back and is told. \return whether there is a step
  bool pushStep(std::unique_ptr<NYXAction> action);
  bool pushStep(std::vector<std::unique_ptr<NYXAction>> actions);
  /// The same of another history: the stack's, when several slices change.
  bool pushStep(NYXActionHistory& history, std::vector<std::unique_ptr<NYXAction>> actions);

  /// Names for the menus: the models of the stack, those with items on the slice, those of closed contours.
  QStringList buildStackModelList() const;
  QStringList buildSliceModelList() const;
  QStringList buildPolygonModelList() const;

  /// The model that new items belong to: the one that was chosen last, else the first; empty without models.
  QString modelInUse() const;
  /// Nothing happens when the stack has no model of this name.
  void setModelInUse(const QString& name);

  /// The tools of the strip; nullptr sets groups apart.
  QList<QAction*> toolActions() const;

  /// The menus, filled when they are about to be shown.
  QMenu& manualMenu() const { return *_manualMenu; }
  QMenu& automaticMenu() const { return *_automaticMenu; }
  QMenu& selectMenu() const { return *_selectMenu; }
  QMenu& convertMenu() const { return *_convertMenu; }
  QMenu& reconstructionMenu() const { return *_reconstructionMenu; }

  /// Offers what can be done with what is selected.
  void showContextMenu(const QPoint& globalPosition);
  /// Enables the actions that apply to the selection.
  void refreshContextMenuActions();
  void updateEditActions();

  NYXSliceEditWidgetMediatorSelectionDelegate& selection() const { return *_selection; }
  NYXSliceEditWidgetMediatorCreationDelegate& creation() const { return *_creation; }
  NYXSliceEditWidgetMediatorEditionDelegate& edition() const { return *_edition; }

public slots:
  /// Gives the active tool up, or else what is selected.
  void cancel();
  /// Leaves the active tool with what is worth keeping of its work.
  void finishTool();
  /// Items like those of the slice before, on the slice that is shown; one step.
  void copyPreviousItems();
  /// Whether the slice has to stay, since a tool works on it.
  void requestLock(bool isLocked);

signals:
  void lockRequested(bool isLocked);
  /// The tool at work, what can be done, or the models have changed.
  void toolsChanged();
  /// What the next click, drag or key does; empty when there is no slice.
  void hintShown(const QString& text);
  void messageShown(const QString& text);
  /// The properties of what is selected are to be edited.
  void propertiesRequested();

protected:
  void sliceLockEvent(const NYXSliceLockEvent& event) override;
  void sliceItemSelectionEvent(const NYXSliceItemSelectionEvent& event) override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override;
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override;
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override;

private:
  using Items = std::vector<ModelItem*>;
  /// What can be done with what is selected, if it is the right thing.
  struct ContourAction
  {
    QAction* action;
    bool (*isApplicable)(const Items& selected);
  };

  /// A tool of the strip, checked while it is active; triggered again, it is finished.
  QAction* createTool(const QString& text, const QString& toolTip, const QString& name, const QKeySequence& shortcut,
                      NYXSliceEditWidgetMediatorDelegate& tool, const std::function<void()>& activate);
  void createEditActions();
  void createDrawingTools();
  void createModelKeys();
  void createBrushActions();
  void changeBrushSize(int change);
  void createContourTools();
  void createPreviousSliceActions();
  void draw(const QString& modelName);
  void drawAutomatically(const QString& modelName);
  void updateToolActions();
  void showTools();
  void showIdleMode();
  void enableConversions();
  void showPreviousItems();
  bool isOfOtherStack(const NYXModelEvent& event) const;
  const Model* modelNamed(const std::string& name) const;
  QString previousItemsText(int numCopied, int numLeftOut) const;
  void createMenus();
  QMenu* createModelMenu(const QString& title, const QString& toolTip, const QString& name,
                         QStringList (NYXSliceEditWidgetMediator::*names)() const,
                         const std::function<void(const QString&)>& choose);
  QAction* createTagAction(const QString& text, const QString& toolTip, const QString& name, int tag);
  StackSlice& slice() const { return sliceCanvas().getSlice(); }

  NYXSliceEditWidgetMediatorDelegate* _activeTool = nullptr;
  NYXSliceEditWidgetMediatorSelectionDelegate* _selection = nullptr;
  NYXSliceEditWidgetMediatorCreationDelegate* _creation = nullptr;
  NYXSliceEditWidgetMediatorEditionDelegate* _edition = nullptr;
  NYXSliceEditWidgetMediatorThresholdingDelegate* _thresholding = nullptr;
  NYXSliceEditWidgetMediatorResamplingDelegate* _resampling = nullptr;
  NYXSliceEditWidgetMediatorDouglasPeuckerDecimationDelegate* _douglasPeucker = nullptr;
  NYXSliceEditWidgetMediatorReoriginDelegate* _reorigin = nullptr;
  NYXSliceEditWidgetMediatorFourierDelegate* _fourier = nullptr;
  NYXSliceEditWidgetMediatorSnakeDelegate* _snake = nullptr;
  NYXSliceEditWidgetMediatorSplitDelegate* _split = nullptr;
  NYXSliceEditWidgetMediatorShiftDelegate* _shift = nullptr;

  QString _hint;
  std::string _modelInUse;
  const Model* _modelInUseHere = nullptr; // in the stack that is shown, when it has one of that name
  NYXPreviousSlice* _previous = nullptr;

  std::vector<std::pair<QAction*, NYXSliceEditWidgetMediatorDelegate*>> _tools;
  QActionGroup* _toolGroup = nullptr; // at most one is checked
  QAction* _select = nullptr;
  QAction* _draw = nullptr;
  QAction* _drawAutomatically = nullptr;
  QList<QAction*> _modelKeys;
  QAction* _showPrevious = nullptr;
  QAction* _copyPrevious = nullptr;
  QAction* _cancel = nullptr;
  QAction* _copy = nullptr;
  QAction* _paste = nullptr;
  QAction* _delete = nullptr;
  QAction* _editPoints = nullptr;
  QAction* _splitContour = nullptr;
  QAction* _runSnake = nullptr;
  QAction* _shiftItems = nullptr;
  std::vector<ContourAction> _contourActions; // in the menu's order
  QAction* _selectAll = nullptr;
  QAction* _properties = nullptr;
  QActionGroup* _tags = nullptr;
  QMenu* _manualMenu = nullptr;
  QMenu* _automaticMenu = nullptr;
  QMenu* _selectMenu = nullptr;
  QMenu* _convertMenu = nullptr;
  QMenu* _reconstructionMenu = nullptr;
};
