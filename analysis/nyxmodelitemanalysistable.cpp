#include "analysis/nyxmodelitemanalysistable.h"

#include "analysis/measures/stackmeasures.h"
#include "analysis/nyxmeasures.h"
#include "app/core/nyxstack.h"
#include "model/model.h"

void NYXModelItemAnalysisTable::setModel(const Model* model)
{
  if (model == nullptr) return setTable(MeasureTable());
  switch (model->getGeometry())
  {
  case MPrimitive::Polypoint:
    return updateContentsPolypoint();
  case MPrimitive::Polyline:
    return updateContentsPolyline();
  default:
    return updateContentsPolygon();
  }
}

/// Without rows while the items are not measured in these columns.
void NYXModelItemAnalysisTable::updateContents(MPrimitive columns)
{
  MeasureTable empty = emptyItemTable(columns, _measures->getStack()->getLengthUnit().symbol());
  const MeasureTable& items = _measures->items();
  setTable(items.getNumColumns() == empty.getNumColumns() ? items : std::move(empty));
  measures().setStale([this](int source) { return _measures->isItemStale(source); });
}
