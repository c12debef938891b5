#include "analysis/nyxsliceanalysistable.h"

#include "analysis/measures/stackmeasures.h"
#include "app/core/nyxstack.h"

#include <QHeaderView>

void NYXSliceAnalysisTable::setStack(const NYXStack* stack)
{
  horizontalHeader()->setTextElideMode(Qt::ElideRight); // of names, which have one line
  if (stack == nullptr) return setTable(MeasureTable());
  std::vector<const Model*> models;
  for (int i = 0; i < stack->getNumModels(); ++i) models.push_back(stack->getModel(i));
  setTable(sliceTable(*stack, models));
}
