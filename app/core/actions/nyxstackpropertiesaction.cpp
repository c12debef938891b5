#include "app/core/actions/nyxstackpropertiesaction.h"

#include "app/core/nyxstack.h"

NYXStackProperties::NYXStackProperties(const NYXStack& stack)
  : name(stack.getName()),
    annotation(stack.getAnnotation()),
    imagesPath(stack.getImagesPath()),
    absoluteImagesPathPolicy(stack.getAbsoluteImagesPathPolicy()),
    invertZAxis(stack.getInvertZAxis()),
    defaultSliceThickness(stack.getDefaultSliceThickness()),
    defaultRelativePosition(stack.getDefaultRelativePosition()),
    defaultPixelCalibration(stack.getDefaultPixelCalibration())
{
}

void NYXStackProperties::setTo(NYXStack& stack) const
{
  const std::string oldName = stack.getName();
  stack.setName(name);
  try
  {
    stack.setImagesPath(imagesPath);
  }
  catch (...)
  {
    stack.setName(oldName);
    throw;
  }
  stack.setAnnotation(annotation);
  stack.setAbsoluteImagesPathPolicy(absoluteImagesPathPolicy);
  stack.setInvertZAxis(invertZAxis);
  stack.setDefaultSliceThickness(defaultSliceThickness);
  stack.setDefaultRelativePosition(defaultRelativePosition);
  stack.setDefaultPixelCalibration(defaultPixelCalibration);
}

NYXStackPropertiesAction::NYXStackPropertiesAction(NYXStack& stack, NYXStackProperties properties)
  : NYXStackAction(stack), _oldProperties(stack), _properties(std::move(properties))
{
}

void NYXStackPropertiesAction::apply()
{
  _properties.setTo(getStack());
  NYXStackAction::apply();
}

void NYXStackPropertiesAction::revert()
{
  _oldProperties.setTo(getStack());
  NYXStackAction::revert();
}

/// The defaults and the images path are those of all slices; name and notes are the stack's own.
bool NYXStackPropertiesAction::changes(const StackSlice&) const
{
  NYXStackProperties renamed = _oldProperties;
  renamed.name = _properties.name;
  renamed.annotation = _properties.annotation;
  return renamed != _properties;
}

QString NYXStackPropertiesAction::description(bool) const
{
  return tr("Stack properties");
}

void NYXStackPropertiesAction::postEvents()
{
  const NYXStackProperties &a = _oldProperties, &b = _properties;
  if (a.name != b.name || a.annotation != b.annotation || a.imagesPath != b.imagesPath ||
      a.absoluteImagesPathPolicy != b.absoluteImagesPathPolicy)
    post(NYXStackNameEvent(getStack()));
  if (a.invertZAxis != b.invertZAxis || a.defaultSliceThickness != b.defaultSliceThickness ||
      a.defaultRelativePosition != b.defaultRelativePosition)
    post(NYXStackSliceSpacingEvent(getStack()));
  if (a.defaultPixelCalibration != b.defaultPixelCalibration) post(NYXStackImageCalibrationEvent(getStack()));
}

bool NYXStackPropertiesAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXStackPropertiesAction&>(other);
  return &getStack() == &action.getStack() && _properties == action._properties;
}
