#include "app/core/actions/nyxlengthunitaction.h"

#include "app/core/nyxstack.h"

NYXLengthUnitAction::NYXLengthUnitAction(NYXStack& stack, int scale)
  : NYXStackAction(stack), _oldScale(stack.getLengthUnit().getScale()), _scale(scale)
{
}

void NYXLengthUnitAction::apply()
{
  _oldProperties = NYXStackProperties(getStack());
  _oldOfSlices.clear();
  for (int i = 0; i < getStack().getNumSlices(); ++i) _oldOfSlices.emplace_back(*getStack().getSlice(i));
  getStack().convertLengthUnit(_scale);
  NYXStackAction::apply();
}

void NYXLengthUnitAction::revert()
{
  getStack().setDefaultSliceThickness(_oldProperties.defaultSliceThickness);
  getStack().setDefaultRelativePosition(_oldProperties.defaultRelativePosition);
  getStack().setDefaultPixelCalibration(_oldProperties.defaultPixelCalibration);
  for (int i = 0; i < getStack().getNumSlices(); ++i)
    _oldOfSlices[static_cast<std::size_t>(i)].setTo(*getStack().getSlice(i));
  NYXStackAction::revert();
}

QString NYXLengthUnitAction::description(bool isDetailed) const
{
  return isDetailed ? tr("Length unit: ") + QString::fromStdString(LengthUnit(_scale).name()) : tr("Length unit");
}

void NYXLengthUnitAction::postEvents()
{
  post(NYXStackSliceSpacingEvent(getStack()));
  post(NYXStackImageCalibrationEvent(getStack()));
}

bool NYXLengthUnitAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXLengthUnitAction&>(other);
  return &getStack() == &action.getStack() && _scale == action._scale;
}
