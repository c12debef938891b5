#include "slice/image/nyxslicewidget.h"

#include "slice/image/nyxslicewidgetcanvas.h"
#include "slice/image/nyxslicewidgetmediator.h"
#include "slice/image/nyxslicewidgetstatusbar.h"

NYXSliceWidget::NYXSliceWidget(QWidget* parent)
  : NYXSliceWidget(new NYXSliceWidgetCanvas, new NYXSliceWidgetStatusBar, parent)
{
  setMediator(new NYXSliceWidgetMediator(*this));
}

NYXSliceWidget::NYXSliceWidget(NYXSliceWidgetCanvas* canvas, NYXSliceWidgetStatusBar* statusBar, QWidget* parent)
  : NYXImageWidget(canvas, statusBar, parent)
{
  setObjectName("sliceWidget");
}

NYXSliceWidgetCanvas& NYXSliceWidget::sliceCanvas() const
{
  return static_cast<NYXSliceWidgetCanvas&>(canvas());
}

NYXSliceWidgetMediator& NYXSliceWidget::sliceMediator() const
{
  return static_cast<NYXSliceWidgetMediator&>(mediator());
}

void NYXSliceWidget::setSlice(StackSlice* slice)
{
  sliceMediator().setSlice(slice);
}
