#pragma once

#include "numeric/vector.h"

#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

/// Types of the columns of a DataSet.
template <class T>
concept ColumnType = OneOf<T, std::string, int, long, float, double, long double>;

/// Table of named, typed columns of equal length, with a text form.
///
/// Text form: a line of column names, then a line per row, fields joined by the separator. Numbers have a decimal point
/// whatever the locale, and floating-point ones always show it. Text is written as it stands and should contain neither
/// the separator nor a line end. Reading takes enclosing quotes off and finds the column types in the first row: int,
/// else float, else text. A later field that does not fit widens its column, as does an integer beyond int or a number
/// beyond float: int, long, float, double, long double, text. An int or long column becomes a floating-point one only
/// of a type that holds all its integers.
class DataSet
{
public:
  explicit DataSet(char fieldSeparator = '\t') : _fieldSeparator(fieldSeparator) {}

  char getFieldSeparator() const { return _fieldSeparator; }
  void setFieldSeparator(char separator) { _fieldSeparator = separator; }
  int getNumRows() const { return _numRows; }
  int getNumColumns() const { return static_cast<int>(_columns.size()); }
  std::vector<std::string> getNames() const;
  bool hasVariable(const std::string& name) const;
  /// "%d", "%ld", "%f", "%lf", "%s" for a column of int, long, float, double, text, and "type error" for any other.
  /// \throw RangeError  no such column
  std::string columnType(int column) const;

  // NameError for an unknown column, TypeError for a column of another type, RangeError for a row that does not exist.
  template <ColumnType T> T getValue(const std::string& name, int row) const;
  template <ColumnType T> Vector<T> getValues(const std::string& name) const;
  /// Adds the column, and rows up to this one, where they are missing. \throw RangeError  row < 0
  template <ColumnType T> void setValue(const std::string& name, int row, const T& value);
  /// Replaces or adds a column. \throw SizeError  another number of rows than the other columns
  template <ColumnType T> void setValues(const std::string& name, const Vector<T>& values);
  /// Replaces or adds a column with the same value in every row.
  template <ColumnType T> void setValues(const std::string& name, const T& value);
  /// Adds the column, and rows up to this one, where they are missing; new values are 0 or empty.
  template <ColumnType T> void ensureRow(const std::string& name, int row);
  /// Keeps the rows whose value in this column equals the given one.
  template <ColumnType T> void crop(const std::string& name, const T& value);
  /// Adds the rows of a data set with the same columns in any order; to one without columns, the columns as well.
  /// \throw NameError  other columns   \throw TypeError  columns of other types
  void append(const DataSet& other);

  /// \throw FileWriteError  "File exists", when overwrite is false; or it cannot be written
  void save(const std::string& filename, bool overwrite = false) const;
  /// Keeps the field separator. The data set stays as it was when this fails.
  /// \throw FileReadError  "The file does not exist", or cannot be read
  /// \throw FileFormatError  a row has another number of fields, or two columns have the same name
  void load(const std::string& filename);

  friend std::ostream& operator<<(std::ostream& stream, const DataSet& dataSet);
  /// \throw FileFormatError  like load(), without a file name
  friend std::istream& operator>>(std::istream& stream, DataSet& dataSet);

private:
  using Values =
      std::variant<Vector<std::string>, Vector<int>, Vector<long>, Vector<float>, Vector<double>, Vector<long double>>;
  struct Column
  {
    std::string name;
    Values values; // room for at least _numRows; what is beyond them has no meaning
  };

  Column* find(const std::string& name);
  const Column& get(const std::string& name, const char* where) const;
  template <ColumnType T> const Vector<T>& valuesOf(const std::string& name, const char* where) const;
  template <ColumnType T> Vector<T>& ensureColumn(const std::string& name, const char* where);
  void growTo(int numRows);
  void keepRows(const std::vector<int>& rows);
  void write(std::ostream& stream) const;
  static Values typedValues(const std::vector<std::string>& fields);
  void read(std::istream& stream);

  std::vector<Column> _columns;
  int _numRows = 0;
  char _fieldSeparator;
};

#define NUMERIC_FOR_EACH_COLUMN_TYPE(MACRO)                                                                            \
  MACRO(std::string) MACRO(int) MACRO(long) MACRO(float) MACRO(double) MACRO(long double)

#define NUMERIC_EXTERN_COLUMN(T)                                                                                       \
  extern template T DataSet::getValue<T>(const std::string&, int) const;                                               \
  extern template Vector<T> DataSet::getValues<T>(const std::string&) const;                                           \
  extern template void DataSet::setValue<T>(const std::string&, int, const T&);                                        \
  extern template void DataSet::setValues<T>(const std::string&, const Vector<T>&);                                    \
  extern template void DataSet::setValues<T>(const std::string&, const T&);                                            \
  extern template void DataSet::ensureRow<T>(const std::string&, int);                                                 \
  extern template void DataSet::crop<T>(const std::string&, const T&);
NUMERIC_FOR_EACH_COLUMN_TYPE(NUMERIC_EXTERN_COLUMN)
