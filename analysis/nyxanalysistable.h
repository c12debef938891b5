#pragma once

#include "analysis/nyxmeasuretablemodel.h"

#include <QTableView>

/// Puts all cells of a table on the clipboard, with its headers. \return the number of rows
int copyAll(const MeasureTable& table);

/// A read-only table of measures: its columns sort, its rows can be opened, its cells be copied.
class NYXAnalysisTable : public QTableView
{
  Q_OBJECT

public:
  explicit NYXAnalysisTable(QWidget* parent = nullptr);

  NYXMeasureTableModel& measures() const { return *_measures; }
  void setTable(MeasureTable table);
  /// Makes the table as high as its rows, or as so many of them.
  void showAllRows(int most);

  bool hasSelection() const;
  /// Puts the selected cells on the clipboard, with the headers of their columns: of all rows and columns with a
  /// selected cell. All cells when none is selected. \return the number of rows
  int copySelection() const;

signals:
  /// A row was double-clicked, or Return pressed on it.
  void opened(int source);

protected:
  void keyPressEvent(QKeyEvent* event) override;

private:
  void sortBy(int column, Qt::SortOrder order);
  void fitColumns();
  void widenColumns();

  NYXMeasureTableModel* _measures;
};
