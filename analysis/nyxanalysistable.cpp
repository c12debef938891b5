#include "analysis/nyxanalysistable.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

#include <numeric>
#include <set>

namespace
{
constexpr int sampledCells = 2000; // whose texts decide on the widths of columns
constexpr int widestColumn = 36;   // characters, of what is not made wider by hand

std::vector<int> numbersTo(int n)
{
  std::vector<int> numbers(static_cast<std::size_t>(n));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}
} // namespace

int copyAll(const MeasureTable& table)
{
  const std::string text = table.toTabText(numbersTo(table.getNumRows()), numbersTo(table.getNumColumns()));
  QGuiApplication::clipboard()->setText(QString::fromStdString(text));
  return table.getNumRows();
}

NYXAnalysisTable::NYXAnalysisTable(QWidget* parent) : QTableView(parent), _measures(new NYXMeasureTableModel(this))
{
  setModel(_measures);
  setEditTriggers(NoEditTriggers);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setTabKeyNavigation(false);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
  horizontalHeader()->setSortIndicatorShown(true);
  horizontalHeader()->setSectionsClickable(true);
  connect(horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, &NYXAnalysisTable::sortBy);
  connect(this, &QTableView::doubleClicked, this,
          [this](const QModelIndex& index) { emit opened(_measures->sourceOf(index.row())); });
}

void NYXAnalysisTable::setTable(MeasureTable table)
{
  const bool isOtherShape = table.getNumColumns() != _measures->columnCount() || _measures->rowCount() == 0;
  if (table.getNumColumns() != _measures->columnCount()) horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
  _measures->setTable(std::move(table));
  isOtherShape ? fitColumns() : widenColumns();
}

/// For numbers that have come or grown, which must not be cut off.
void NYXAnalysisTable::widenColumns()
{
  for (int i = 0; i < _measures->columnCount(); ++i)
    if (_measures->table().getColumn(i).kind == MeasureColumn::Number && columnWidth(i) < sizeHintForColumn(i))
      setColumnWidth(i, sizeHintForColumn(i));
}

void NYXAnalysisTable::fitColumns()
{
  const int widest = fontMetrics().averageCharWidth() * widestColumn;
  horizontalHeader()->setResizeContentsPrecision(sampledCells / qMax(1, _measures->columnCount()));
  resizeColumnsToContents();
  for (int i = 0; i < _measures->columnCount(); ++i)
    if (columnWidth(i) > widest) setColumnWidth(i, widest);
}

void NYXAnalysisTable::showAllRows(int most)
{
  const int numRows = qMin(most, _measures->rowCount());
  const int bar = horizontalScrollBar()->sizeHint().height();
  setFixedHeight(horizontalHeader()->sizeHint().height() + numRows * verticalHeader()->defaultSectionSize() + bar +
                 2 * frameWidth());
}

/// What was selected would be other cells; the current row stays the same one.
void NYXAnalysisTable::sortBy(int column, Qt::SortOrder order)
{
  const QModelIndex current = currentIndex();
  const int row = current.isValid() ? _measures->tableRow(current.row()) : -1;
  setCurrentIndex({});
  clearSelection();
  _measures->sort(column, order);
  for (int i = 0; row >= 0 && i < _measures->rowCount(); ++i)
    if (_measures->tableRow(i) == row) return setCurrentIndex(_measures->index(i, current.column()));
  scrollToTop();
}

bool NYXAnalysisTable::hasSelection() const
{
  return selectionModel()->hasSelection();
}

int NYXAnalysisTable::copySelection() const
{
  std::set<int> rows, columns;
  for (const QItemSelectionRange& range : selectionModel()->selection())
  {
    for (int row = range.top(); row <= range.bottom(); ++row) rows.insert(row);
    for (int column = range.left(); column <= range.right(); ++column) columns.insert(column);
  }
  const bool isAll = rows.empty();
  std::vector<int> tableRows = isAll ? numbersTo(_measures->rowCount()) : std::vector<int>(rows.begin(), rows.end());
  for (int& row : tableRows) row = _measures->tableRow(row);
  const std::vector<int> tableColumns =
      isAll ? numbersTo(_measures->columnCount()) : std::vector<int>(columns.begin(), columns.end());
  QGuiApplication::clipboard()->setText(QString::fromStdString(_measures->table().toTabText(tableRows, tableColumns)));
  return static_cast<int>(tableRows.size());
}

void NYXAnalysisTable::keyPressEvent(QKeyEvent* event)
{
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isReturn && currentIndex().isValid()) return emit opened(_measures->sourceOf(currentIndex().row()));
  if (event->matches(QKeySequence::Copy)) return event->ignore(); // left to the window, which adds the headers
  QTableView::keyPressEvent(event);
}
