#include "app/core/actions/nyxsliceorderaction.h"

#include "app/core/nyxstack.h"
#include "numeric/exception.h"

NYXSliceOrderAction::NYXSliceOrderAction(StackSlice& slice, int place)
  : NYXSliceAction(slice), _oldPlace(slice.getIndex()), _place(place)
{
  if (place < 0 || place >= getStack().getNumSlices())
    throw RangeError("NYXSliceOrderAction::NYXSliceOrderAction(StackSlice&, int)", "There is no such place");
}

void NYXSliceOrderAction::apply()
{
  _oldPlace = getSlice().getIndex();
  getStack().moveSlice(_oldPlace, _place);
  NYXSliceAction::apply();
}

void NYXSliceOrderAction::revert()
{
  getStack().moveSlice(_place, _oldPlace);
  NYXSliceAction::revert();
}

QString NYXSliceOrderAction::description(bool) const
{
  return tr("Order of slices");
}

void NYXSliceOrderAction::postEvents()
{
  post(NYXStackSliceSpacingEvent(getStack()));
}

bool NYXSliceOrderAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXSliceOrderAction&>(other);
  return &getSlice() == &action.getSlice() && _place == action._place;
}
