#include "slice/nyxsliceeditwidget.h"

#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsliceeditwidgetstatusbar.h"

NYXSliceEditWidget::NYXSliceEditWidget(QWidget* parent)
  : NYXSliceWidget(new NYXSliceEditWidgetCanvas, new NYXSliceEditWidgetStatusBar, parent)
{
  setObjectName("sliceEditWidget");
  setMediator(new NYXSliceEditWidgetMediator(*this));
}

NYXSliceEditWidgetCanvas& NYXSliceEditWidget::editCanvas() const
{
  return static_cast<NYXSliceEditWidgetCanvas&>(canvas());
}

NYXSliceEditWidgetMediator& NYXSliceEditWidget::editMediator() const
{
  return static_cast<NYXSliceEditWidgetMediator&>(mediator());
}

NYXSliceEditWidgetStatusBar& NYXSliceEditWidget::editStatusBar() const
{
  return static_cast<NYXSliceEditWidgetStatusBar&>(statusBar());
}
