#include "app/core/actions/nyxsliceinsertiondeletionaction.h"

#include "app/core/nyxstack.h"
#include "numeric/exception.h"

NYXSliceInsertionDeletionAction::NYXSliceInsertionDeletionAction(NYXStack& stack, std::unique_ptr<StackSlice> slice,
                                                                 int place)
  : NYXSliceAction(stack, *slice), _mode(Insertion), _place(place), _slice(std::move(slice))
{
  if (place < 0 || place > stack.getNumSlices())
    throw RangeError("NYXSliceInsertionDeletionAction::NYXSliceInsertionDeletionAction(NYXStack&, "
                     "std::unique_ptr<StackSlice>, int)",
                     "There is no such place");
}

NYXSliceInsertionDeletionAction::NYXSliceInsertionDeletionAction(StackSlice& slice)
  : NYXSliceAction(slice), _mode(Deletion), _place(slice.getIndex())
{
}

NYXSliceInsertionDeletionAction::~NYXSliceInsertionDeletionAction()
{
  if (_slice) getStack().histories().forget(*_slice);
}

void NYXSliceInsertionDeletionAction::apply()
{
  if (_mode == Deletion) _place = getSlice().getIndex();
  _mode == Insertion ? putIn() : takeOut();
  NYXSliceAction::apply();
}

void NYXSliceInsertionDeletionAction::revert()
{
  _mode == Insertion ? takeOut() : putIn();
  NYXSliceAction::revert();
}

void NYXSliceInsertionDeletionAction::putIn()
{
  StackSlice& slice = getStack().addSlice(std::move(_slice), _place);
  if (_source) slice.Slice::setImageSource(*_source); // not to be resolved against the images path once more
  _items.attach();
}

void NYXSliceInsertionDeletionAction::takeOut()
{
  StackSlice& slice = getSlice();
  _source = slice.getImageSource() ? slice.getImageSource()->clone() : nullptr;
  _items = NYXDetachedItems(slice.getItems());
  _items.detach();
  _slice = getStack().removeSlice(_place);
}

QString NYXSliceInsertionDeletionAction::description(bool) const
{
  return _mode == Insertion ? tr("Insert slice") : tr("Delete slice");
}

bool NYXSliceInsertionDeletionAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXSliceInsertionDeletionAction&>(other);
  return &getSlice() == &action.getSlice() && _mode == action._mode && _place == action._place;
}
