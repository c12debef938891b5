#pragma once

#include "app/core/nyxevent.h"

class NYXItemAction;
class NYXSliceAction;

/// Base of everything that listens to the event bus. Handlers do nothing by default.
///
/// A client attaches itself with NYXEventServer::attach() and is detached by its destructor.
class NYXEventClient
{
public:
  NYXEventClient() = default;
  NYXEventClient(const NYXEventClient&) = delete;
  NYXEventClient& operator=(const NYXEventClient&) = delete;
  virtual ~NYXEventClient();

  /// Posts an event with this client as its sender; every attached client receives it, this one included.
  void notifyEvent(NYXEvent& event);
  void notifyEvent(NYXEvent&& event) { notifyEvent(event); }
  /// Tells every attached client of an action that was applied or reverted.
  static void notifyAction(NYXAction& action);

  /// Opens or closes a batch. Clients may put costly refreshes off to its end. NYXEventBatch does both.
  /// \throw UsageError  a batch is open already, or none is
  static void enableEventBatch(const bool flag);
  /// Whether a batch is open.
  static bool eventBatchEnabled() { return _eventBatchEnabled; }

  /// Calls the handler of the event's kind, or of the action's.
  void processEvent(const NYXEvent& event);
  void processAction(NYXAction& action);

  /// Called when a batch is closed.
  virtual void atEventBatchEnd() {}

protected:
  virtual void stackOpenEvent(const NYXStackOpenEvent&) {}
  virtual void stackCloseEvent(const NYXStackCloseEvent&) {}
  virtual void stackNameEvent(const NYXStackNameEvent&) {}
  virtual void stackFileNameEvent(const NYXStackFileNameEvent&) {}
  virtual void stackModifyEvent(const NYXStackModifyEvent&) {}
  virtual void stackRegistrationEvent(const NYXStackRegistrationEvent&) {}
  virtual void stackSliceSpacingEvent(const NYXStackSliceSpacingEvent&) {}
  virtual void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent&) {}
  virtual void sliceAnnotationEvent(const NYXSliceAnnotationEvent&) {}
  virtual void sliceLockEvent(const NYXSliceLockEvent&) {}
  virtual void sliceNameEvent(const NYXSliceNameEvent&) {}
  virtual void sliceSpacingEvent(const NYXSliceSpacingEvent&) {}
  virtual void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent&) {}
  virtual void sliceItemSelectionEvent(const NYXSliceItemSelectionEvent&) {}
  virtual void modelCreateEvent(const NYXModelCreateEvent&) {}
  virtual void modelDeleteEvent(const NYXModelDeleteEvent&) {}
  virtual void modelPropertiesEvent(const NYXModelPropertiesEvent&) {}
  virtual void modelItemCreateEvent(const NYXModelItemCreateEvent&) {}
  virtual void modelItemDeleteEvent(const NYXModelItemDeleteEvent&) {}
  virtual void modelItemVertexEvent(const NYXModelItemVertexEvent&) {}
  virtual void modelItemAttributeEvent(const NYXModelItemAttributeEvent&) {}
  virtual void modelItemTriangulationTagEvent(const NYXModelItemTriangulationTagEvent&) {}
  virtual void modelItemSelectEvent(const NYXModelItemSelectEvent&) {}
  virtual void modelItemConvertEvent(const NYXModelItemConvertEvent&) {}
  virtual void poseCreateEvent(const NYXPoseCreateEvent&) {}
  virtual void poseDeleteEvent(const NYXPoseDeleteEvent&) {}
  virtual void preferencesEvent(const NYXPreferencesEvent&) {}

  virtual void processModelItemAction(NYXItemAction&) {}
  /// Also news of slices that were inserted, deleted or moved, for which there is no event.
  virtual void processSliceAction(NYXSliceAction&) {}

private:
  static bool _eventBatchEnabled;
};
