#include "slice/image/nyxslicewidgetstatusbar.h"

#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <QLabel>
#include <QStringList>

NYXSliceWidgetStatusBar::NYXSliceWidgetStatusBar(QWidget* parent)
  : NYXImageWidgetStatusBar(parent),
    _slice(addField("itemsField", tr("Number of items on the slice"), "99 contour(s), 999 point(s)"))
{
  setObjectName("sliceStatusBar");
}

void NYXSliceWidgetStatusBar::setSliceInfo(const StackSlice* slice)
{
  _slice->setText(slice ? sliceText(*slice) : QString());
}

QString NYXSliceWidgetStatusBar::sliceText(const StackSlice& slice)
{
  int numContours = 0;
  long numPoints = 0;
  for (int i = 0; i < slice.getNumItems(); ++i)
  {
    const ModelItem& item = *slice.getItem(i);
    if (item.getModel() != nullptr && item.getModel()->getGeometry() == MPrimitive::Polypoint)
      numPoints += item.getVertices().getNumVertices();
    else
      ++numContours;
  }
  QStringList parts;
  if (numContours > 0) parts << QString("%1 contour(s)").arg(numContours);
  if (numPoints > 0) parts << QString("%1 point(s)").arg(numPoints);
  return parts.join(", ");
}
