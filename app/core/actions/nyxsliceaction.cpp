#include "app/core/actions/nyxsliceaction.h"

#include "model/stackslice.h"

NYXSliceAction::NYXSliceAction(StackSlice& slice)
  : NYXSliceAction(openStack(slice.getStack(), "NYXSliceAction::NYXSliceAction(StackSlice&)"), slice)
{
}
