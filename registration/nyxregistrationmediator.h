#pragma once

#include "app/core/nyxeventclient.h"
#include "geometry/reconstruction/slicealignment.h"
#include "registration/nyxautomaticregistrationconfig.h"

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

class NYXAutomaticRegistrationPanel;
class NYXRegistrationPanel;
class NYXRegistrationRun;
class NYXRegistrationStatusBar;
class NYXRegistrationToolBar;
class NYXRegistrationView;
class NYXStack;
class QAction;
class QWidget;

/// Drives the registration window: the current stack and slice, the registration that is edited, and the canvas, panels
/// and tool bar that show them.
class NYXRegistrationMediator : public QObject, public NYXEventClient
{
  Q_OBJECT

public:
  /// A child of the window.
  explicit NYXRegistrationMediator(QWidget& window);

  /// The parts of the window, before initialize().
  /// @{
  void setView(NYXRegistrationView& view) { _view = &view; }
  void setPanel(NYXRegistrationPanel& panel) { _panel = &panel; }
  void setAutomaticPanel(NYXAutomaticRegistrationPanel& panel) { _automaticPanel = &panel; }
  void setToolBar(NYXRegistrationToolBar& toolBar) { _toolBar = &toolBar; }
  void setStatusBar(NYXRegistrationStatusBar& statusBar) { _statusBar = &statusBar; }
  void initialize();
  /// @}

  /// Follows another stack, from the slice that was registered last on; nullptr for none.
  void setStack(NYXStack* stack);
  NYXStack* getStack() const { return _stack; }
  StackSlice* getSlice() const { return _slice; }

  /// Shows another slice of the stack with its stored registration, and forgets what was edited. The first slice has
  /// nothing to be aligned on, and nullptr is no slice. A name that no slice has changes nothing.
  /// @{
  void setSlice(StackSlice* slice);
  void setSlice(const std::string& name);
  void setFirstSlice(); ///< the second of the stack
  void setLastSlice();
  void setNextSlice();
  void setPreviousSlice();
  /// @}

  /// The one that is edited.
  const Registration& getRegistration() const { return _registration; }
  /// Puts it into the canvas and the panel.
  void setRegistration(const Registration& registration);
  /// Whether it differs from the one that the slice has.
  bool isEdited() const;
  /// Stores it in the slice, as a step that can be undone. \return whether that could be done
  bool apply();
  /// Returns to the one that the slice has.
  void reset();

  void setScale(float scale);
  void increaseScale();
  void decreaseScale();

  /// Automatic alignment of the current slice, or of every one but the first; stored, in one step that can be undone.
  /// @{
  void registerCurrentSlice();
  void registerAllSlices();
  void runAutomaticRegistration(const NYXAutomaticRegistrationConfig& config);
  /// @}
  /// Proposes the registration that brings the first contour of the slice, which becomes the current one, onto that of
  /// the same model on the slice before.
  void runICP(StackSlice& slice);

  /// Asks what is to be done with an edited registration that was not applied. \return whether it may be left
  bool confirmLeaving();

signals:
  /// The stack, its name, or whether something was edited.
  void stateChanged();

protected:
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void stackNameEvent(const NYXStackNameEvent& event) override;
  void stackFileNameEvent(const NYXStackFileNameEvent& event) override;
  void stackRegistrationEvent(const NYXStackRegistrationEvent& event) override;
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override;
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override;
  void sliceNameEvent(const NYXSliceNameEvent& event) override;
  void sliceLockEvent(const NYXSliceLockEvent& event) override;
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override { followItem(event); }
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override { followItem(event); }
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override { followItem(event); }
  void modelItemAttributeEvent(const NYXModelItemAttributeEvent& event) override { followItem(event); }
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override { followItem(event); }
  void processSliceAction(NYXSliceAction& action) override;

private:
  QAction* createAction(const QString& text, const QString& toolTip, const QString& name, const QKeySequence& shortcut,
                        const std::function<void()>& slot);
  void createActions();
  void connectParts();
  void go(void (NYXRegistrationMediator::*navigate)());
  void showImages();
  void showSlice();
  void showSliceNames();
  void updateActions();
  void takeEdit(const Registration& registration);
  void followItem(const NYXModelItemEvent& event);
  void showMessage(const QString& text);
  void changeHistory(const std::function<void()>& change);

  bool isAnyLocked(const std::vector<StackSlice*>& slices);
  bool run(NYXRegistrationRun& run);
  void showStep(StackSlice& slice, const SliceAlignment& alignment);
  bool store(const NYXRegistrationRun& run);
  void tellResult(const NYXRegistrationRun& run, bool isComplete, bool isStep);
  void undo();
  void setFlicker(bool isOn);
  void flicker();

  QWidget& _window;
  NYXRegistrationView* _view = nullptr;
  NYXRegistrationPanel* _panel = nullptr;
  NYXAutomaticRegistrationPanel* _automaticPanel = nullptr;
  NYXRegistrationToolBar* _toolBar = nullptr;
  NYXRegistrationStatusBar* _statusBar = nullptr;

  NYXStack* _stack = nullptr;
  StackSlice* _slice = nullptr;
  Registration _stored; // of the slice, when it was shown or changed last
  Registration _registration;
  bool _isSpecimenDark = false;
  bool _isRunning = false; // an automatic registration
  QTimer _flickering;
  QMetaObject::Connection _historiesChanged;

  QAction* _first = nullptr;
  QAction* _previous = nullptr;
  QAction* _next = nullptr;
  QAction* _last = nullptr;
  QAction* _undo = nullptr;
  QAction* _redo = nullptr;
  QAction* _flicker = nullptr;
  QAction* _reset = nullptr;
  QAction* _apply = nullptr;
};
