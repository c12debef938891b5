#pragma once

#include "analysis/measures/stackmeasures.h"
#include "analysis/nyxanalysistable.h"

/// The measures of the models of one geometry, a row each; the source of a row is the model's place in the stack.
class NYXModelAnalysisTable : public NYXAnalysisTable
{
  Q_OBJECT

public:
  using NYXAnalysisTable::NYXAnalysisTable;

  /// Which models are shown, and in which columns.
  void setModelGeometry(MPrimitive geometry) { _geometry = geometry; }
  MPrimitive getModelGeometry() const { return _geometry; }
  void setModels(const std::vector<ModelMeasures>& models, const std::string& unit);

private:
  MPrimitive _geometry = MPrimitive::Polygon;
};
