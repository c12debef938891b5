#pragma once

#include "app/core/nyxeventclient.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "slice/image/nyxslicewidgetcanvas.h"

class NYXSliceWidget;

/// Drives a slice widget: its display modes, and what the event bus tells of the slice and its items.
class NYXSliceWidgetMediator : public NYXImageWidgetMediator, public NYXEventClient
{
  Q_OBJECT

public:
  explicit NYXSliceWidgetMediator(NYXSliceWidget& widget);

  void initialize() override;

  NYXSliceWidgetCanvas& sliceCanvas() const;

  /// Shows another slice of an open stack; nullptr for none. It is let go when the stack closes.
  virtual void setSlice(StackSlice* slice);
  void clear() override;
  void imageProxyChange() override;

public slots:
  /// Image only, items only (the image may be freed then), both.
  /// @{
  void setBackgroundMode() { setCanvasMode(CanvasMode::Background); }
  void setForegroundMode() { setCanvasMode(CanvasMode::Foreground); }
  void setAllgroundMode() { setCanvasMode(CanvasMode::Allground); }
  /// @}

signals:
  void canvasModeChanged(CanvasMode mode);

protected:
  void attachProxy() override;
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override;
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override;
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override;
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override;
  void modelItemAttributeEvent(const NYXModelItemAttributeEvent& event) override;
  void modelItemTriangulationTagEvent(const NYXModelItemTriangulationTagEvent& event) override;
  void modelItemSelectEvent(const NYXModelItemSelectEvent& event) override;
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override;
  void preferencesEvent(const NYXPreferencesEvent& event) override;

private:
  void setCanvasMode(CanvasMode mode);
  QAction* createModeAction(const QString& text, const QString& toolTip, const QString& name, CanvasMode mode);
  void followItem(const NYXModelItemEvent& event);
  void followModel(const Stack* stack);
  void followCalibration();
  void updateSliceInfo();
  /// Without an image the view reaches as far as the items: makes room for one.
  void updateExtent(const ModelItem& item);
  /// Reads the neighbours' images when nothing else is to be read.
  void prefetchNeighbours();

  QList<QAction*> _modeActions; // by mode
};
