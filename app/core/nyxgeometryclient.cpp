#include "app/core/nyxgeometryclient.h"

#include "app/core/nyxstack.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

void NYXGeometryClient::noteItemEvent(const NYXModelItemEvent& event)
{
  if (const Model* const model = event.getItem().getModel()) noteItemChange(*model, event.getItem());
}

void NYXGeometryClient::noteSliceChange(const StackSlice& slice)
{
  if (const Stack* const stack = slice.getStack()) noteStackChange(*stack);
}

void NYXGeometryClient::stackRegistrationEvent(const NYXStackRegistrationEvent& event)
{
  noteStackChange(event.getStack());
}

void NYXGeometryClient::stackSliceSpacingEvent(const NYXStackSliceSpacingEvent& event)
{
  noteStackChange(event.getStack());
}

void NYXGeometryClient::stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event)
{
  noteStackChange(event.getStack());
}

void NYXGeometryClient::sliceSpacingEvent(const NYXSliceSpacingEvent& event)
{
  noteSliceChange(event.getSlice());
}

void NYXGeometryClient::sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event)
{
  noteSliceChange(event.getSlice());
}

void NYXGeometryClient::modelItemConvertEvent(const NYXModelItemConvertEvent& event)
{
  noteItemChange(event.getSourceModel(), event.getItem());
  noteItemChange(event.getDestinationModel(), event.getItem());
}
