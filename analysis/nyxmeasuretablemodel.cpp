#include "analysis/nyxmeasuretablemodel.h"

#include <QCollator>
#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{
/// The place of each text among all of them.
std::vector<double> ranksOf(const std::vector<std::string>& texts)
{
  const QLocale locale;
  QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale); // C knows no numbers
  collator.setNumericMode(true);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  std::vector<QCollatorSortKey> keys;
  for (const std::string& text : texts) keys.push_back(collator.sortKey(QString::fromStdString(text)));
  std::vector<std::size_t> order(texts.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  std::vector<double> ranks(texts.size());
  for (std::size_t i = 0; i < order.size(); ++i)
  {
    const bool isSame = i > 0 && !(keys[order[i - 1]] < keys[order[i]]);
    ranks[order[i]] = isSame ? ranks[order[i - 1]] : static_cast<double>(i);
  }
  return ranks;
}

QString text(const std::string& text)
{
  return QString::fromStdString(text);
}

/// Of a tool tip; what no screen would hold is left out.
QString paragraph(const QString& text)
{
  constexpr int longest = 500;
  if (text.isEmpty()) return text;
  const QString shown = text.size() > longest ? text.left(longest) + QChar(0x2026) : text;
  return "<p>" + shown.toHtmlEscaped() + "</p>";
}
} // namespace

void NYXMeasureTableModel::setTable(MeasureTable table)
{
  const bool isSameShape = table.getNumRows() == _table.getNumRows() && table.getNumColumns() == _table.getNumColumns();
  if (!isSameShape) beginResetModel();
  _table = std::move(table);
  order();
  if (!isSameShape) return endResetModel();
  if (columnCount() > 0) emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
  if (rowCount() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

void NYXMeasureTableModel::setStale(std::function<bool(int)> isStale)
{
  _isStale = std::move(isStale);
  if (rowCount() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

int NYXMeasureTableModel::rowCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : _table.getNumRows();
}

int NYXMeasureTableModel::columnCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : _table.getNumColumns();
}

QVariant NYXMeasureTableModel::data(const QModelIndex& index, int role) const
{
  const int row = tableRow(index.row());
  const bool isText = _table.getColumn(index.column()).kind == MeasureColumn::Text;
  switch (role)
  {
  case Qt::DisplayRole:
    return text(_table.getText(row, index.column(), MeasureTable::shownDigits));
  case Qt::TextAlignmentRole:
    return int(Qt::AlignVCenter | (isText ? Qt::AlignLeft : Qt::AlignRight));
  case Qt::ToolTipRole:
    return toolTip(index, isText);
  case Qt::ForegroundRole:
    if (_isStale && _isStale(sourceOf(index.row())))
      return QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text);
    return {};
  case Qt::FontRole:
    if (_isStale && _isStale(sourceOf(index.row())))
    {
      QFont font;
      font.setItalic(true);
      return font;
    }
    return {};
  default:
    return {};
  }
}

/// A text that may be cut off, and the remark on the row; rich text, whose lines are broken.
QString NYXMeasureTableModel::toolTip(const QModelIndex& index, bool isText) const
{
  QString lines;
  if (isText) lines += paragraph(text(_table.getText(tableRow(index.row()), index.column())));
  if (_remark) lines += paragraph(_remark(sourceOf(index.row())));
  return lines;
}

QVariant NYXMeasureTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
  if (orientation == Qt::Vertical) return QAbstractTableModel::headerData(section, orientation, role);
  const MeasureColumn& column = _table.getColumn(section);
  if (role == Qt::DisplayRole) return text(column.header("\n"));
  if (role == Qt::ToolTipRole) return paragraph(text(column.definition));
  return {};
}

void NYXMeasureTableModel::sort(int column, Qt::SortOrder sortOrder)
{
  emit layoutAboutToBeChanged();
  _sortedColumn = column;
  _sortOrder = sortOrder;
  order();
  emit layoutChanged();
}

std::vector<double> NYXMeasureTableModel::keys(int column) const
{
  const bool isText = _table.getColumn(column).kind == MeasureColumn::Text;
  const std::vector<double> ranks = isText ? ranksOf(_table.getTexts()) : std::vector<double>();
  std::vector<double> keys(static_cast<std::size_t>(_table.getNumRows()));
  for (int i = 0; i < _table.getNumRows(); ++i)
  {
    const double value = _table.getValue(i, column);
    keys[static_cast<std::size_t>(i)] = isText ? ranks[static_cast<std::size_t>(value)] : value;
  }
  return keys;
}

void NYXMeasureTableModel::order()
{
  _order.resize(static_cast<std::size_t>(_table.getNumRows()));
  std::iota(_order.begin(), _order.end(), 0);
  if (_sortedColumn < 0 || _sortedColumn >= _table.getNumColumns()) return;
  const std::vector<double> keys = this->keys(_sortedColumn);
  const auto key = [&](int row) { return keys[static_cast<std::size_t>(row)]; };
  const auto missing =
      std::stable_partition(_order.begin(), _order.end(), [&](int row) { return !std::isnan(key(row)); });
  if (_sortOrder == Qt::AscendingOrder)
    std::stable_sort(_order.begin(), missing, [&](int a, int b) { return key(a) < key(b); });
  else
    std::stable_sort(_order.begin(), missing, [&](int a, int b) { return key(a) > key(b); });
}
