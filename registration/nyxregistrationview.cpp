#include "registration/nyxregistrationview.h"

#include "model/stackslice.h"
#include "registration/nyxregistrationcanvas.h"
#include "slice/image/nyxdoubleslider.h"
#include "slice/image/nyxsliceimageserver.h"
#include "slice/image/nyxslicewidgetmediator.h"
#include "slice/image/nyxslicewidgetstatusbar.h"

NYXRegistrationView::NYXRegistrationView(QWidget* parent)
  : NYXSliceWidget(new NYXRegistrationCanvas, new NYXSliceWidgetStatusBar, parent)
{
  setObjectName("registrationView");
  setMediator(new NYXSliceWidgetMediator(*this));
  mediator().setImageServer(NYXSliceImageServer::server());
  connect(&slider(), &NYXDoubleSlider::valuesChanged, &registrationCanvas(), &NYXRegistrationCanvas::setLevels);
}

NYXRegistrationCanvas& NYXRegistrationView::registrationCanvas() const
{
  return static_cast<NYXRegistrationCanvas&>(canvas());
}

void NYXRegistrationView::showSlice(StackSlice* slice)
{
  setSlice(slice);
  registrationCanvas().setPreviousSlice(slice == nullptr ? nullptr : slice->prevSlice());
}
