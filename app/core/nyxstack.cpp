#include "app/core/nyxstack.h"

#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

namespace
{
const Stack* stackOf(const NYXSliceEvent& event)
{
  return event.getSlice().getStack();
}

const Stack* stackOf(const NYXModelItemEvent& event)
{
  const StackSlice* const slice = event.getItem().getSlice();
  return slice ? slice->getStack() : nullptr;
}
} // namespace

NYXStack::NYXStack()
{
  QObject::connect(&_histories, &NYXStackHistories::changed, [this] { tellWhenModifiedFlips(); });
  NYXEventServer::attach(*this);
}

NYXStack::~NYXStack()
{
  NYXEventServer::detach(*this); // what ends now is news to the others only
}

void NYXStack::setFilename(const QString& filename)
{
  _filename = filename;
  notifyEvent(NYXStackFileNameEvent(*this));
}

void NYXStack::noteFile(bool wasReadWhole)
{
  const QFileInfo file(_filename);
  _fileState = {wasReadWhole, file.lastModified(), file.size()};
}

bool NYXStack::hasFileChanged() const
{
  const QFileInfo file(_filename);
  return _fileState.lastModified.isValid() && file.exists() &&
         (file.lastModified() != _fileState.lastModified || file.size() != _fileState.size);
}

bool NYXStack::isModified() const
{
  return _isChangedByOthers || _numLooseChanges != 0 || !_histories.areAtSaved();
}

void NYXStack::setModified(bool flag)
{
  _isChangedByOthers = flag;
  if (!flag)
  {
    _numLooseChanges = 0;
    _histories.setSaved();
  }
  _wasModified = isModified();
  notifyEvent(NYXStackModifyEvent(*this));
}

void NYXStack::noteLooseChange(int count)
{
  _numLooseChanges += count;
  tellWhenModifiedFlips();
}

void NYXStack::tellWhenModifiedFlips()
{
  if (isModified() == _wasModified) return;
  _wasModified = !_wasModified;
  notifyEvent(NYXStackModifyEvent(*this));
}

QString NYXStack::displayName() const
{
  if (!getName().empty()) return QString::fromStdString(getName());
  if (!_filename.isEmpty()) return QFileInfo(_filename).completeBaseName();
  return QCoreApplication::translate("NYXStack", "Untitled");
}

bool NYXStack::isLocked(const StackSlice& slice) const
{
  return std::ranges::find(_lockedSlices, &slice) != _lockedSlices.end();
}

void NYXStack::updateReconstruction()
{
  _reconstruction.emplace(*this);
}

StackReconstruction<float>& NYXStack::getReconstruction()
{
  if (!_reconstruction) updateReconstruction();
  return *_reconstruction;
}

void NYXStack::noteChange(const NYXEvent& event, const Stack* stack)
{
  if (stack != this || event.getAction()) return; // the histories know of actions
  _isChangedByOthers = true;
  tellWhenModifiedFlips();
}

void NYXStack::noteMovedSlices(const NYXEvent& event, const Stack* stack)
{
  if (stack == this) _reconstruction.reset();
  noteChange(event, stack);
}

void NYXStack::processSliceAction(NYXSliceAction& action)
{
  if (&action.getStack() != this) return;
  _reconstruction.reset();
  if (action.getSlice().getStack() == nullptr) std::erase(_lockedSlices, &action.getSlice()); // it has left
}

void NYXStack::sliceLockEvent(const NYXSliceLockEvent& event)
{
  const StackSlice& slice = event.getSlice();
  const bool wasLocked = std::erase(_lockedSlices, &slice) > 0; // also one that has left the stack meanwhile
  const bool isLocked = event.isLocked && slice.getStack() == this;
  if (isLocked) _lockedSlices.push_back(&slice);
  if (isLocked != wasLocked) emit _histories.changed();
}

void NYXStack::modelItemCreateEvent(const NYXModelItemCreateEvent& event)
{
  const Stack* const stack = stackOf(event);
  if (stack == this && !event.getAction()) setLastSegmentedSlice(event.getItem().getSlice()->getName());
  noteChange(event, stack);
}

void NYXStack::stackNameEvent(const NYXStackNameEvent& event)
{
  noteChange(event, &event.getStack());
}

void NYXStack::stackRegistrationEvent(const NYXStackRegistrationEvent& event)
{
  noteMovedSlices(event, &event.getStack());
}

void NYXStack::stackSliceSpacingEvent(const NYXStackSliceSpacingEvent& event)
{
  noteMovedSlices(event, &event.getStack());
}

void NYXStack::stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event)
{
  noteMovedSlices(event, &event.getStack());
}

void NYXStack::sliceAnnotationEvent(const NYXSliceAnnotationEvent& event)
{
  noteChange(event, stackOf(event));
}

void NYXStack::sliceNameEvent(const NYXSliceNameEvent& event)
{
  noteChange(event, stackOf(event));
}

void NYXStack::sliceSpacingEvent(const NYXSliceSpacingEvent& event)
{
  noteMovedSlices(event, stackOf(event));
}

void NYXStack::sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event)
{
  noteMovedSlices(event, stackOf(event));
}

void NYXStack::modelCreateEvent(const NYXModelCreateEvent& event)
{
  noteChange(event, event.getStack());
}

void NYXStack::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  noteChange(event, event.getStack());
}

void NYXStack::modelPropertiesEvent(const NYXModelPropertiesEvent& event)
{
  noteChange(event, event.getStack());
}

void NYXStack::modelItemDeleteEvent(const NYXModelItemDeleteEvent& event)
{
  noteChange(event, stackOf(event));
}

void NYXStack::modelItemVertexEvent(const NYXModelItemVertexEvent& event)
{
  noteChange(event, stackOf(event));
}

void NYXStack::modelItemAttributeEvent(const NYXModelItemAttributeEvent& event)
{
  noteChange(event, stackOf(event));
}

void NYXStack::modelItemTriangulationTagEvent(const NYXModelItemTriangulationTagEvent& event)
{
  noteChange(event, stackOf(event));
}

void NYXStack::modelItemConvertEvent(const NYXModelItemConvertEvent& event)
{
  noteChange(event, stackOf(event));
}

void NYXStack::poseCreateEvent(const NYXPoseCreateEvent& event)
{
  noteChange(event, event.getPose().getStack());
}

void NYXStack::poseDeleteEvent(const NYXPoseDeleteEvent& event)
{
  noteChange(event, event.getPose().getStack());
}
