#pragma once

#include "analysis/measures/stackmeasures.h"

#include <QScrollArea>

#include <vector>

class NYXAnalysisTable;
class NYXMeasures;
class NYXModelAnalysisTable;
class QLabel;
class QVBoxLayout;

/// The measures of the models: a table for each geometry that the stack has models of.
class NYXModelAnalysisWidget : public QScrollArea
{
  Q_OBJECT

public:
  explicit NYXModelAnalysisWidget(QWidget* parent = nullptr);

  void setMeasures(const NYXMeasures& measures);
  /// All models in one table.
  MeasureTable table() const;
  /// The table with selected cells; nullptr when there is none.
  NYXAnalysisTable* selectedTable() const;

signals:
  /// \param model  its place in the stack
  void opened(int model);

private:
  struct Section
  {
    QLabel* heading;
    NYXModelAnalysisTable* table;
  };

  Section createSection(MPrimitive geometry, const QString& heading);
  void keepSelectionIn(const NYXModelAnalysisTable* table);

  QLabel* _emptyNote;
  QVBoxLayout* _layout;
  std::vector<Section> _sections;
  std::vector<ModelMeasures> _models;
  std::string _unit;
};
