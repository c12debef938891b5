#include "app/core/nyxeventclient.h"

#include "app/core/actions/nyxitemaction.h"
#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"
#include "numeric/exception.h"

bool NYXEventClient::_eventBatchEnabled = false;

NYXEventClient::~NYXEventClient()
{
  NYXEventServer::forget(*this);
}

void NYXEventClient::notifyEvent(NYXEvent& event)
{
  event.setSender(this);
  NYXEventServer::deliver(event);
}

void NYXEventClient::notifyAction(NYXAction& action)
{
  NYXEventServer::deliver(action);
}

void NYXEventClient::enableEventBatch(const bool flag)
{
  const char* const where = "void NYXEventClient::enableEventBatch(const bool)";
  if (flag && _eventBatchEnabled) throw UsageError(where, "An event sequence is already open");
  if (!flag && !_eventBatchEnabled) throw UsageError(where, "There is no event sequence to end");
  _eventBatchEnabled = flag;
  if (!flag) NYXEventServer::deliverBatchEnd();
}

void NYXEventClient::processAction(NYXAction& action)
{
  if (auto* sliceAction = dynamic_cast<NYXSliceAction*>(&action)) return processSliceAction(*sliceAction);
  if (auto* itemAction = dynamic_cast<NYXItemAction*>(&action)) return processModelItemAction(*itemAction);
}

void NYXEventClient::processEvent(const NYXEvent& event)
{
  switch (event.type())
  {
  case NYXEvent::StackOpen:
    return stackOpenEvent(static_cast<const NYXStackOpenEvent&>(event));
  case NYXEvent::StackClose:
    return stackCloseEvent(static_cast<const NYXStackCloseEvent&>(event));
  case NYXEvent::StackName:
    return stackNameEvent(static_cast<const NYXStackNameEvent&>(event));
  case NYXEvent::StackFileName:
    return stackFileNameEvent(static_cast<const NYXStackFileNameEvent&>(event));
  case NYXEvent::StackModify:
    return stackModifyEvent(static_cast<const NYXStackModifyEvent&>(event));
  case NYXEvent::StackRegistration:
    return stackRegistrationEvent(static_cast<const NYXStackRegistrationEvent&>(event));
  case NYXEvent::StackSliceSpacing:
    return stackSliceSpacingEvent(static_cast<const NYXStackSliceSpacingEvent&>(event));
  case NYXEvent::StackImageCalibration:
    return stackImageCalibrationEvent(static_cast<const NYXStackImageCalibrationEvent&>(event));
  case NYXEvent::SliceAnnotation:
    return sliceAnnotationEvent(static_cast<const NYXSliceAnnotationEvent&>(event));
  case NYXEvent::SliceLock:
    return sliceLockEvent(static_cast<const NYXSliceLockEvent&>(event));
  case NYXEvent::SliceName:
    return sliceNameEvent(static_cast<const NYXSliceNameEvent&>(event));
  case NYXEvent::SliceSpacing:
    return sliceSpacingEvent(static_cast<const NYXSliceSpacingEvent&>(event));
  case NYXEvent::SliceImageCalibration:
    return sliceImageCalibrationEvent(static_cast<const NYXSliceImageCalibrationEvent&>(event));
  case NYXEvent::SliceItemSelection:
    return sliceItemSelectionEvent(static_cast<const NYXSliceItemSelectionEvent&>(event));
  case NYXEvent::ModelCreate:
    return modelCreateEvent(static_cast<const NYXModelCreateEvent&>(event));
  case NYXEvent::ModelDelete:
    return modelDeleteEvent(static_cast<const NYXModelDeleteEvent&>(event));
  case NYXEvent::ModelProperties:
    return modelPropertiesEvent(static_cast<const NYXModelPropertiesEvent&>(event));
  case NYXEvent::ModelItemCreate:
    return modelItemCreateEvent(static_cast<const NYXModelItemCreateEvent&>(event));
  case NYXEvent::ModelItemDelete:
    return modelItemDeleteEvent(static_cast<const NYXModelItemDeleteEvent&>(event));
  case NYXEvent::ModelItemVertex:
    return modelItemVertexEvent(static_cast<const NYXModelItemVertexEvent&>(event));
  case NYXEvent::ModelItemAttribute:
    return modelItemAttributeEvent(static_cast<const NYXModelItemAttributeEvent&>(event));
  case NYXEvent::ModelItemTriangulationTag:
    return modelItemTriangulationTagEvent(static_cast<const NYXModelItemTriangulationTagEvent&>(event));
  case NYXEvent::ModelItemSelect:
    return modelItemSelectEvent(static_cast<const NYXModelItemSelectEvent&>(event));
  case NYXEvent::ModelItemConvert:
    return modelItemConvertEvent(static_cast<const NYXModelItemConvertEvent&>(event));
  case NYXEvent::PoseCreate:
    return poseCreateEvent(static_cast<const NYXPoseCreateEvent&>(event));
  case NYXEvent::PoseDelete:
    return poseDeleteEvent(static_cast<const NYXPoseDeleteEvent&>(event));
  case NYXEvent::Preferences:
    return preferencesEvent(static_cast<const NYXPreferencesEvent&>(event));
  default:
    return;
  }
}
