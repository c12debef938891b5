#pragma once

#include "geometry/bufferallocator.h"

#include <string>
#include <vector>

/// What a column of measures holds.
struct MeasureColumn
{
  enum Kind
  {
    Text,
    Count,
    Number
  };

  std::string name;
  Kind kind = Number;
  std::string definition = {}; ///< a sentence for those who read the table
  std::string unit = {};       ///< empty for none

  /// The name and, in brackets, the unit: "Area [µm^2]".
  std::string header(const std::string& separator = " ") const;
};

/// A table of measures: typed columns, and rows of texts and numbers. NaN is a value that cannot be computed, "NA".
///
/// One contiguous block; a text that many rows share, such as the name of a slice, is stored once.
class MeasureTable
{
public:
  static constexpr int allDigits = 0; ///< as many as make a number what it was when it is read back
  static constexpr int shownDigits = 6;

  MeasureTable() = default;
  explicit MeasureTable(std::vector<MeasureColumn> columns) : _columns(std::move(columns)) {}

  int getNumRows() const { return static_cast<int>(_sources.size()); }
  int getNumColumns() const { return static_cast<int>(_columns.size()); }
  const MeasureColumn& getColumn(int column) const { return _columns[static_cast<std::size_t>(column)]; }

  /// Stores a text. \return its number, the value of the cells that hold it
  double addText(const std::string& text);
  /// Makes place for a number of rows.
  void reserve(std::size_t numRows);
  /// Adds a row with one value per column; a text column takes the number of a text. What is not finite is "NA".
  /// \param source  what the row was measured on, in the caller's numbering
  void addRow(int source, const std::vector<double>& values);

  int getSource(int row) const { return _sources[static_cast<std::size_t>(row)]; }
  /// The number in a cell, NaN for "NA"; of a text its number. Unchecked.
  double getValue(int row, int column) const
  {
    return _values[static_cast<std::size_t>(row) * _columns.size() + static_cast<std::size_t>(column)];
  }
  /// The texts that were added, by their numbers.
  const std::vector<std::string>& getTexts() const { return _texts; }
  /// A cell as text. \param digits  significant digits of numbers; counts have all
  std::string getText(int row, int column, int digits = allDigits) const;

  /// Comma-separated text (RFC 4180) in UTF-8 with a line of headers.
  std::string toCsv() const;
  /// Some cells as tab-separated text with a line of headers, as spreadsheets paste it.
  std::string toTabText(const std::vector<int>& rows, const std::vector<int>& columns) const;

private:
  std::string toText(const std::vector<int>& rows, const std::vector<int>& columns, char separator,
                     const char* lineEnd) const;

  std::vector<MeasureColumn> _columns;
  BufferVector<double> _values; // row by row
  std::vector<int> _sources;
  std::vector<std::string> _texts;
};
