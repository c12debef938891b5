#include "analysis/nyxmodelanalysistable.h"

void NYXModelAnalysisTable::setModels(const std::vector<ModelMeasures>& models, const std::string& unit)
{
  setTable(modelTable(models, _geometry, unit));
  measures().setRemarks([models](int source)
                        { return QString::fromStdString(models[static_cast<std::size_t>(source)].remark); });
}
