#pragma once

#include "analysis/nyxanalysistable.h"
#include "model/modelproperties.h"

class Model;
class NYXMeasures;

/// The measures of the items of one model, or of its points; the source of a row is the item's place in them.
class NYXModelItemAnalysisTable : public NYXAnalysisTable
{
  Q_OBJECT

public:
  using NYXAnalysisTable::NYXAnalysisTable;

  /// The measures of the items; they are borrowed.
  void setMeasures(const NYXMeasures& measures) { _measures = &measures; }
  using QTableView::setModel;
  /// Shows the items of a model; nullptr empties the table.
  void setModel(const Model* model);

private:
  void updateContentsPolygon() { updateContents(MPrimitive::Polygon); } // and regions
  void updateContentsPolyline() { updateContents(MPrimitive::Polyline); }
  void updateContentsPolypoint() { updateContents(MPrimitive::Polypoint); }
  void updateContents(MPrimitive columns);

  const NYXMeasures* _measures = nullptr;
};
