#include "numberslicesaction.h"

#include "app/core/nyxstack.h"
#include "model/stackslice.h"

#include <utility>

NumberSlicesAction::NumberSlicesAction(NYXStack& stack, std::vector<std::string> names)
  : NYXStackAction(stack), _names(std::move(names))
{
  for (int i = 0; i < stack.getNumSlices(); ++i) _oldNames.push_back(stack.getSlice(i)->getName());
}

void NumberSlicesAction::apply()
{
  rename(_names);
  NYXStackAction::apply();
}

void NumberSlicesAction::revert()
{
  rename(_oldNames);
  NYXStackAction::revert();
}

void NumberSlicesAction::rename(const std::vector<std::string>& names)
{
  NYXStack& stack = getStack();
  const int segmented = stack.findSlice(stack.getLastSegmentedSlice());
  const int registered = stack.findSlice(stack.getLastRegisteredSlice());
  for (std::size_t i = 0; i < names.size(); ++i) stack.getSlice(static_cast<int>(i))->setName(names[i]);
  if (segmented >= 0) stack.setLastSegmentedSlice(names[static_cast<std::size_t>(segmented)]);
  if (registered >= 0) stack.setLastRegisteredSlice(names[static_cast<std::size_t>(registered)]);
}

QString NumberSlicesAction::description(bool) const
{
  return "Number slices";
}

void NumberSlicesAction::postEvents()
{
  for (std::size_t i = 0; i < _names.size(); ++i)
  {
    if (_names[i] != _oldNames[i]) post(NYXSliceNameEvent(*getStack().getSlice(static_cast<int>(i))));
  }
}
