#pragma once

#include "analysis/nyxanalysistable.h"

class NYXStack;

/// What each slice of a stack holds of each model; the source of a row is the slice's place in the stack.
class NYXSliceAnalysisTable : public NYXAnalysisTable
{
  Q_OBJECT

public:
  using NYXAnalysisTable::NYXAnalysisTable;

  /// Counts anew; nullptr empties the table.
  void setStack(const NYXStack* stack);
};
