#pragma once

#include "app/core/nyxeventclient.h"

#include <QKeySequence>
#include <QList>
#include <QObject>

#include <functional>
#include <string>

class ModelItem;
class NYXAnalysisWindow;
class NYXOverview;
class NYXPanorama;
class NYXRegistrationWindow;
class NYXRootSliceEditWidget;
class NYXRootStatusBar;
class NYXRootWindow;
class NYXSliceListWidget;
class NYXStack;
class NYXStackIO;
class NYXStackListWidget;
class StackSlice;
class QAction;
class QMenu;
class QToolBar;
struct NYXLoadedPlugin;

/// Owns the actions of the root window, enables them with the current stack and forwards them. Follows the event bus.
class NYXRootMediator : public QObject, public NYXEventClient
{
  Q_OBJECT

public:
  explicit NYXRootMediator(QObject* parent);

  /// The parts of the window that the actions work on; all are set before initialize().
  void setRootWindow(NYXRootWindow& window) { _window = &window; }
  void setStackListWidget(NYXStackListWidget& list) { _stackList = &list; }
  void setSliceListWidget(NYXSliceListWidget& list) { _sliceList = &list; }
  void setSliceEditWidget(NYXRootSliceEditWidget& widget) { _sliceEditWidget = &widget; }
  void setPanorama(NYXPanorama& panorama) { _panorama = &panorama; }
  void setOverview(NYXOverview& overview) { _overview = &overview; }
  void setStatusBar(NYXRootStatusBar& statusBar) { _statusBar = &statusBar; }
  void setToolBar(QToolBar& toolBar) { _toolBar = &toolBar; }

  void initFileMenu(QMenu& menu);
  void initEditMenu(QMenu& menu);
  void initProcessMenu(QMenu& menu);
  void initAnalyzeMenu(QMenu& menu);
  void initPluginsMenu(QMenu& menu);

  /// Fills the tool bar and connects the lists.
  void initialize();

  NYXStack* currentStack() const;
  /// The slice that is shown, or nullptr.
  StackSlice* currentSlice() const;
  /// Opens a stack file, or shows its stack if it is open already.
  void openStack(const QString& filename);
  /// Asks for the images of a new stack, these at first.
  void newStack(const QStringList& images);

  /// Leaves the tool at work with what is worth keeping of its work.
  void finishTool();
  /// The same before the window closes; asks what is to become of a registration that was not applied.
  /// \return whether the window may close
  bool confirmLeaving();
  /// Shows the stack that is selected in the list, or the start page.
  void showCurrentStack();
  /// Shows the overview if it was shown when the program was used last.
  void restoreOverview();

protected:
  void stackNameEvent(const NYXStackNameEvent& event) override;
  void stackFileNameEvent(const NYXStackFileNameEvent& event) override;
  void stackModifyEvent(const NYXStackModifyEvent& event) override;
  void preferencesEvent(const NYXPreferencesEvent& event) override;
  void sliceLockEvent(const NYXSliceLockEvent& event) override;
  void sliceNameEvent(const NYXSliceNameEvent& event) override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override;
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override;
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override;
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void processSliceAction(NYXSliceAction& action) override;
  void atEventBatchEnd() override;

private:
  static constexpr int messageMilliseconds = 5000;

  QAction* createAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut,
                        const std::function<void()>& slot);
  QAction* createStackAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut,
                             const std::function<void()>& slot);
  QAction* createWholeStackAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut,
                                  const std::function<void()>& slot);
  template <class Dialog, class... Arguments> void openDialog(Arguments&&... arguments);
  QAction* createLaterAction(const QString& text, const QString& toolTip);
  void createFileActions();
  void createEditActions();
  void createViewActions();
  void createSliceActions();
  void createProcessActions();
  void createAnalyzeActions();
  void createPluginsActions();

  NYXStackIO stackIO() const;
  void selectStack(const NYXStack* stack);
  void saveCurrentStack();
  static QString lockText(const StackSlice& slice);
  static QString obstacleText(const StackSlice* obstacle, const StackSlice* locked);
  static QString deletionText(const StackSlice& slice);
  static QString neighbourText(const NYXStack& stack, const StackSlice& deleted);
  void undo();
  void redo();
  void insertSlices();
  void deleteSlice();
  void moveSlice(int slice, int place);
  void moveCurrentSlice(int distance);
  void change(const std::function<void(NYXStack&)>& make);
  void lockRequest(bool isLocked);
  void lockSlice(bool isToolAtWork);
  void connectSliceEditor();
  void editItemProperties();
  void followHistories();
  void showHistories();
  void noteConcernedSlice(const NYXSliceAction& action);
  void refreshSlices();
  void refreshSlice(const StackSlice* slice);
  void editPreferences();
  void openRegistration();
  void openMeasures();
  void showItem(ModelItem& item);
  void revealSlice(int slice);
  void createListMenus();
  void selectView(bool isPanorama);
  void openSlice();
  void showView();
  void showOverview(bool isOn);
  void showSlice(int slice);
  void showStackState();
  void updateActions();
  void enableActions(bool flag);
  void enableSliceMoves(const QString& obstacle);
  QString missingSliceText() const;
  void updateRecentFilesMenu();
  void refreshPlugins();
  void updatePluginActions();
  void pluginActionTriggered(NYXLoadedPlugin plugin);
  void showPluginError(const QString& name, const QString& reason);

  NYXRootWindow* _window = nullptr;
  NYXStackListWidget* _stackList = nullptr;
  NYXSliceListWidget* _sliceList = nullptr;
  NYXRootSliceEditWidget* _sliceEditWidget = nullptr;
  NYXPanorama* _panorama = nullptr;
  NYXOverview* _overview = nullptr;
  NYXRootStatusBar* _statusBar = nullptr;
  QToolBar* _toolBar = nullptr;
  NYXRegistrationWindow* _registrationWindow = nullptr; // made on first use
  NYXAnalysisWindow* _analysisWindow = nullptr;         // made on first use

  QAction* _newWindow;
  QAction* _closeWindow;
  QAction* _quit;
  QAction* _newStack;
  QAction* _newStackFromFile;
  QAction* _openStack;
  QAction* _saveStack;
  QAction* _saveStackAs;
  QAction* _closeStack;
  QAction* _closeAll;
  QMenu* _recentFilesMenu = nullptr;

  QAction* _displayPanorama;
  QAction* _displaySingleSlice;
  QAction* _displayOverview;
  QAction* _selectFirstSlice;
  QAction* _selectLastSlice;
  QAction* _selectNextSlice;
  QAction* _selectPreviousSlice;
  QAction* _undo;
  QAction* _redo;
  QAction* _insertSlice;
  QAction* _deleteSlice;
  QAction* _moveSliceUp;
  QAction* _moveSliceDown;
  QAction* _stackProperties;
  QAction* _sliceProperties;
  QAction* _annotateStack;
  QAction* _annotateSlice;
  QList<QAction*> _editDialogs;
  QList<QAction*> _sliceActions; // that edit the shown slice
  QAction* _preferences;

  QList<QAction*> _process;
  QAction* _measures;
  QAction* _runSpatialAnalysis;
  QAction* _refreshPlugins;
  QMenu* _pluginsMenu = nullptr;
  QList<QAction*> _pluginActions;
  QList<QAction*> _stackActions;      // enabled only while a stack is current
  QList<QAction*> _wholeStackActions; // and none of its slices is locked

  bool _isToolAtWork = false;                  // on the slice that is shown, which then stays
  bool _areSlicesStale = false;                // in the list, until the end of a batch of events
  const StackSlice* _concernedSlice = nullptr; // the first that came or moved with the change that is made here
  QMetaObject::Connection _historiesChanged;   // of the current stack
};
