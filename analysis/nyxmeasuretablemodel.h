#pragma once

#include "analysis/measures/measuretable.h"

#include <QAbstractTableModel>

#include <functional>
#include <vector>

/// Shows a table of measures, in the order of one of its columns.
class NYXMeasureTableModel : public QAbstractTableModel
{
  Q_OBJECT

public:
  using QAbstractTableModel::QAbstractTableModel;

  const MeasureTable& table() const { return _table; }
  void setTable(MeasureTable table);
  /// What is shown on rows by their sources: whether they are out of date, and why values are missing.
  void setStale(std::function<bool(int source)> isStale);
  void setRemarks(std::function<QString(int source)> remark) { _remark = std::move(remark); }

  /// The row of the table that is shown in a row.
  int tableRow(int row) const { return _order[static_cast<std::size_t>(row)]; }
  int sourceOf(int row) const { return _table.getSource(tableRow(row)); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  /// Texts in the order of the language and of the numbers in them; missing values are always last.
  void sort(int column, Qt::SortOrder order) override;

private:
  QString toolTip(const QModelIndex& index, bool isText) const;
  void order();
  std::vector<double> keys(int column) const;

  MeasureTable _table;
  std::vector<int> _order; // rows of the table
  std::function<bool(int)> _isStale;
  std::function<QString(int)> _remark;
  int _sortedColumn = -1;
  Qt::SortOrder _sortOrder = Qt::AscendingOrder;
};
