// Columns and rows of data sets; their text form is in datasettext.cpp.
#include "numeric/dataset.h"

#include <algorithm>
#include <limits>

namespace
{
/// Makes room for `size` values, of which the first `used` ones are kept. The room at least doubles, so that adding
/// rows one by one costs the same for each.
template <class T> void reserve(Vector<T>& values, int used, int size)
{
  if (values.getSize() >= size) return;
  const int doubled = values.getSize() > std::numeric_limits<int>::max() / 2 ? size : 2 * values.getSize();
  Vector<T> larger(std::max(doubled, size));
  std::move(values.begin(), values.begin() + used, larger.begin());
  values = std::move(larger);
}

TypeError otherType(const std::string& name, const char* where)
{
  return TypeError(where, "Variable '" + name + "' has values of another type");
}

template <class T> struct FormatCode
{
  static constexpr const char* text = "type error";
};
template <> struct FormatCode<int>
{
  static constexpr const char* text = "%d";
};
template <> struct FormatCode<long>
{
  static constexpr const char* text = "%ld";
};
template <> struct FormatCode<float>
{
  static constexpr const char* text = "%f";
};
template <> struct FormatCode<double>
{
  static constexpr const char* text = "%lf";
};
template <> struct FormatCode<std::string>
{
  static constexpr const char* text = "%s";
};
} // namespace

std::vector<std::string> DataSet::getNames() const
{
  std::vector<std::string> names;
  for (const Column& column : _columns) names.push_back(column.name);
  return names;
}

bool DataSet::hasVariable(const std::string& name) const
{
  return std::any_of(_columns.begin(), _columns.end(), [&](const Column& column) { return column.name == name; });
}

std::string DataSet::columnType(int column) const
{
  if (column < 0 || column >= getNumColumns())
    throw RangeError("std::string DataSet::columnType(int) const", "There is no column " + std::to_string(column));
  return std::visit([]<class T>(const Vector<T>&) { return FormatCode<T>::text; }, _columns[column].values);
}

DataSet::Column* DataSet::find(const std::string& name)
{
  const auto isNamed = [&name](const Column& column) { return column.name == name; };
  const auto found = std::find_if(_columns.begin(), _columns.end(), isNamed);
  return found == _columns.end() ? nullptr : &*found;
}

const DataSet::Column& DataSet::get(const std::string& name, const char* where) const
{
  std::string names;
  for (const Column& column : _columns)
  {
    if (column.name == name) return column;
    names += (names.empty() ? "" : ", ") + column.name;
  }
  throw NameError(where, "Variable name not found. Known variables are: " + names);
}

template <ColumnType T> const Vector<T>& DataSet::valuesOf(const std::string& name, const char* where) const
{
  const auto* const values = std::get_if<Vector<T>>(&get(name, where).values);
  if (!values) throw otherType(name, where);
  return *values;
}

template <ColumnType T> Vector<T>& DataSet::ensureColumn(const std::string& name, const char* where)
{
  if (!find(name))
  {
    Vector<T> values(_numRows);
    values.fill(T());
    _columns.push_back({name, std::move(values)});
  }
  auto* const values = std::get_if<Vector<T>>(&find(name)->values);
  if (!values) throw otherType(name, where);
  return *values;
}

void DataSet::growTo(int numRows)
{
  if (numRows <= _numRows) return;
  const auto grow = [this, numRows]<class T>(Vector<T>& values)
  {
    reserve(values, _numRows, numRows);
    std::fill(values.begin() + _numRows, values.begin() + numRows, T());
  };
  for (Column& column : _columns) std::visit(grow, column.values);
  _numRows = numRows;
}

template <ColumnType T> T DataSet::getValue(const std::string& name, int row) const
{
  const char* const where = "T DataSet::getValue<T>(const std::string&, int) const";
  const Vector<T>& values = valuesOf<T>(name, where);
  if (row < 0 || row >= _numRows)
    throw RangeError(where, "There is no row " + std::to_string(row) + " in " + std::to_string(_numRows) + " rows");
  return values[row];
}

template <ColumnType T> Vector<T> DataSet::getValues(const std::string& name) const
{
  return valuesOf<T>(name, "Vector<T> DataSet::getValues<T>(const std::string&) const").copy(0, _numRows);
}

template <ColumnType T> void DataSet::setValue(const std::string& name, int row, const T& value)
{
  ensureRow<T>(name, row);
  std::get<Vector<T>>(find(name)->values)[row] = value;
}

template <ColumnType T> void DataSet::setValues(const std::string& name, const Vector<T>& values)
{
  const bool isOnlyColumn = _columns.empty() || (_columns.size() == 1 && hasVariable(name));
  if (!isOnlyColumn && values.getSize() != _numRows)
    throw SizeError("void DataSet::setValues<T>(const std::string&, const Vector<T>&)",
                    "The column has another number of rows than the data set");
  if (Column* const column = find(name))
    column->values = values;
  else
    _columns.push_back({name, values});
  _numRows = values.getSize();
}

template <ColumnType T> void DataSet::setValues(const std::string& name, const T& value)
{
  Vector<T> values(_numRows);
  values.fill(value);
  setValues(name, values);
}

template <ColumnType T> void DataSet::ensureRow(const std::string& name, int row)
{
  const char* const where = "void DataSet::ensureRow<T>(const std::string&, int)";
  if (row < 0 || row == std::numeric_limits<int>::max())
    throw RangeError(where, "There cannot be a row " + std::to_string(row));
  ensureColumn<T>(name, where);
  growTo(row + 1);
}

void DataSet::keepRows(const std::vector<int>& rows)
{
  const auto keep = [&rows](auto& values)
  {
    for (std::size_t i = 0; i < rows.size(); ++i) values[static_cast<int>(i)] = values[rows[i]];
  };
  for (Column& column : _columns) std::visit(keep, column.values);
  _numRows = static_cast<int>(rows.size());
}

template <ColumnType T> void DataSet::crop(const std::string& name, const T& value)
{
  const Vector<T>& values = valuesOf<T>(name, "void DataSet::crop<T>(const std::string&, const T&)");
  std::vector<int> rows;
  for (int row = 0; row < _numRows; ++row)
    if (values[row] == value) rows.push_back(row);
  keepRows(rows);
}

void DataSet::append(const DataSet& other)
{
  const char* const where = "void DataSet::append(const DataSet&)";
  const DataSet added(other); // the other one may be this one
  if (_columns.empty())
  {
    _columns = added._columns;
    _numRows = added._numRows;
    return;
  }
  if (added._columns.size() != _columns.size()) throw NameError(where, "The data sets have different variables");
  for (const Column& column : _columns)
    if (added.get(column.name, where).values.index() != column.values.index()) throw otherType(column.name, where);
  const int first = _numRows;
  growTo(first + added._numRows);
  for (Column& column : _columns)
  {
    const auto paste = [&]<class T>(Vector<T>& values)
    { values.paste(first, added.valuesOf<T>(column.name, where).copy(0, added._numRows)); };
    std::visit(paste, column.values);
  }
}

#define NUMERIC_INSTANTIATE_COLUMN(T)                                                                                  \
  template T DataSet::getValue<T>(const std::string&, int) const;                                                      \
  template Vector<T> DataSet::getValues<T>(const std::string&) const;                                                  \
  template void DataSet::setValue<T>(const std::string&, int, const T&);                                               \
  template void DataSet::setValues<T>(const std::string&, const Vector<T>&);                                           \
  template void DataSet::setValues<T>(const std::string&, const T&);                                                   \
  template void DataSet::ensureRow<T>(const std::string&, int);                                                        \
  template void DataSet::crop<T>(const std::string&, const T&);
NUMERIC_FOR_EACH_COLUMN_TYPE(NUMERIC_INSTANTIATE_COLUMN)
