#pragma once

#include "analysis/spatial/stackspatialanalysis.h"

#include <QString>
#include <QStringList>

/// What came out of a spatial analysis, independent of the stack, which may change or close since.
struct NYXSpatialResult
{
  struct Slice
  {
    QString name;
    int numObjects;
    std::vector<StackSpatialAnalysis::FunctionResult> functions;
  };

  NYXSpatialResult(const StackSpatialAnalysis& analysis, const QString& stack, const QString& lengthUnit);

  /// The letters of the functions that were evaluated, in the order of the table's columns.
  std::string functions() const;
  /// The table as text: tabs between columns, "NA" where there is no value.
  QString tableText() const;
  /// The curves of a function on all slices, one below the other: slice, grid, observed, average, lower and upper.
  QString curvesText(std::size_t function) const;

  QString stackName;
  QString unit;
  QString settings; ///< what was compared with what, in one line
  std::vector<Slice> slices;
  std::vector<StackSpatialAnalysis::Combination> combinations; ///< one for each function
  QStringList messages;
};

/// The column of a function in tables: "B-SDI".
QString columnName(char function);
