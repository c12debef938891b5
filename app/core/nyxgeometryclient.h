#pragma once

#include "app/core/nyxeventclient.h"

class Stack;

/// Base of the clients that need to know when models lie or look otherwise in space: it names the events that this
/// follows from. A derived class that needs such an event for more calls the handler here as well.
class NYXGeometryClient : public NYXEventClient
{
protected:
  /// The slices or the unit of a stack have changed, and with them all models.
  virtual void noteStackChange(const Stack& stack) = 0;
  /// An item of a model came, went or changed.
  virtual void noteItemChange(const Model& model, const ModelItem& item) = 0;

  void stackRegistrationEvent(const NYXStackRegistrationEvent& event) override;
  void stackSliceSpacingEvent(const NYXStackSliceSpacingEvent& event) override;
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override;
  void sliceSpacingEvent(const NYXSliceSpacingEvent& event) override;
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override;
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override { noteItemEvent(event); }
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override { noteItemEvent(event); }
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override { noteItemEvent(event); }
  void modelItemTriangulationTagEvent(const NYXModelItemTriangulationTagEvent& event) override { noteItemEvent(event); }
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override;

private:
  void noteItemEvent(const NYXModelItemEvent& event);
  void noteSliceChange(const StackSlice& slice);
};
