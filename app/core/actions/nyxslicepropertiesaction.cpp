#include "app/core/actions/nyxslicepropertiesaction.h"

#include "app/core/nyxstack.h"

NYXSliceProperties::NYXSliceProperties(const StackSlice& slice)
  : name(slice.getName()),
    annotation(slice.getAnnotation()),
    pixelCalibration(slice.getPixelCalibration()),
    thickness(slice.getThickness())
{
  if (slice.useRelativePosition() && slice.useDefaultRelativePosition()) return;
  position = slice.useRelativePosition() ? Relative : Absolute;
  depth = slice.useRelativePosition() ? slice.getRelativePosition() : slice.getAbsolutePosition();
}

void NYXSliceProperties::setTo(StackSlice& slice) const
{
  if (name != slice.getName()) slice.setName(name); // the only one that can fail comes first
  slice.setAnnotation(annotation);
  slice.setPixelCalibration(pixelCalibration);
  slice.setThickness(thickness);
  if (position == Default)
    slice.setDefaultRelativePosition();
  else if (position == Relative)
    slice.setRelativePosition(depth);
  else
    slice.setAbsolutePosition(depth);
}

NYXSlicePropertiesAction::NYXSlicePropertiesAction(StackSlice& slice, NYXSliceProperties properties)
  : NYXSliceAction(slice), _oldProperties(slice), _properties(std::move(properties))
{
}

void NYXSlicePropertiesAction::apply()
{
  _properties.setTo(getSlice());
  _isLastSegmented = getStack().getLastSegmentedSlice() == _oldProperties.name;
  _isLastRegistered = getStack().getLastRegisteredSlice() == _oldProperties.name;
  rename(_properties.name);
  NYXSliceAction::apply();
}

void NYXSlicePropertiesAction::revert()
{
  _oldProperties.setTo(getSlice());
  rename(_oldProperties.name);
  NYXSliceAction::revert();
}

void NYXSlicePropertiesAction::rename(const std::string& name)
{
  if (_isLastSegmented) getStack().setLastSegmentedSlice(name);
  if (_isLastRegistered) getStack().setLastRegisteredSlice(name);
}

QString NYXSlicePropertiesAction::description(bool isDetailed) const
{
  return isDetailed ? tr("Slice properties: ") + QString::fromStdString(_properties.name) : tr("Slice properties");
}

void NYXSlicePropertiesAction::postEvents()
{
  const NYXSliceProperties &a = _oldProperties, &b = _properties;
  if (a.name != b.name) post(NYXSliceNameEvent(getSlice()));
  if (a.annotation != b.annotation) post(NYXSliceAnnotationEvent(getSlice()));
  if (a.pixelCalibration != b.pixelCalibration) post(NYXSliceImageCalibrationEvent(getSlice()));
  if (a.thickness != b.thickness || a.position != b.position || a.depth != b.depth)
    post(NYXSliceSpacingEvent(getSlice()));
}

bool NYXSlicePropertiesAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXSlicePropertiesAction&>(other);
  return &getSlice() == &action.getSlice() && _properties == action._properties;
}
