// The text form of data sets.
#include "numeric/dataset.h"

#include "numeric/atomicfile.h"
#include "numeric/stringtools.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

namespace
{
const char* const readWhere = "std::istream& operator>>(std::istream&, DataSet&)";

/// Shortest text that reads back as the same number, with a decimal point.
template <class T> std::string toText(T value)
{
  char buffer[64];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  std::string text(buffer, end);
  if constexpr (std::is_floating_point_v<T>)
    if (std::isfinite(value) && text.find('.') == std::string::npos)
      text.insert(std::min(text.find('e'), text.size()), ".0");
  return text;
}

const std::string& toText(const std::string& value)
{
  return value;
}

/// Reads the whole text as a number, which a sign or spaces may precede: std::errc() when it is one that fits the type,
/// std::errc::result_out_of_range when it is another one.
template <class T> std::errc read(const std::string& text, T& value)
{
  const char* first = text.data();
  const char* const last = first + text.size();
  while (first != last && *first == ' ') ++first;
  if (last - first > 1 && *first == '+' && first[1] != '-') ++first;
  const auto [end, error] = std::from_chars(first, last, value);
  return end == last && first != last ? error : std::errc::invalid_argument;
}

template <class T> bool isNumber(const std::string& text)
{
  T value;
  return read(text, value) != std::errc::invalid_argument;
}

/// The value of the whole text, if it is one of this type. Numbers too small for it are zero.
template <class T> std::optional<T> parse(const std::string& text)
{
  T value;
  const std::errc error = read(text, value);
  if (error == std::errc()) return value;
  long double exact;
  const bool isTooSmall = std::is_floating_point_v<T> && error == std::errc::result_out_of_range &&
                          read(text, exact) == std::errc() && std::abs(exact) < 1;
  return isTooSmall ? std::optional<T>(T(0)) : std::nullopt;
}

/// Whether the text is no integer, or one that T holds exactly.
template <class T> bool keepsInteger(const std::string& text)
{
  const std::optional<long> integer = parse<long>(text);
  return !integer || static_cast<long double>(static_cast<T>(*integer)) == static_cast<long double>(*integer);
}

/// The fields of a column as values of type T, if all of them are.
template <class T> std::optional<Vector<T>> parseAll(const std::vector<std::string>& fields, bool keepIntegers = false)
{
  Vector<T> values(static_cast<int>(fields.size()));
  T* target = values.begin();
  for (const std::string& field : fields)
  {
    const std::optional<T> value = parse<T>(field);
    if (!value || (keepIntegers && !keepsInteger<T>(field))) return std::nullopt;
    *target++ = *value;
  }
  return values;
}

std::vector<std::string> split(const std::string& line, char separator)
{
  std::vector<std::string> fields;
  std::size_t first = 0, end;
  do
  {
    end = line.find(separator, first);
    fields.push_back(StringTools::removeQuotes(line.substr(first, end - first)));
    first = end + 1;
  } while (end != std::string::npos);
  return fields;
}

/// Next line without its end, be it "\n" or "\r\n".
bool readLine(std::istream& stream, std::string& line)
{
  if (!std::getline(stream, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

void appendRow(std::vector<std::string> fields, std::vector<std::vector<std::string>>& columns)
{
  if (fields.size() != columns.size())
    throw FileFormatError(readWhere,
                          std::to_string(fields.size()) + " fields for " + std::to_string(columns.size()) + " columns");
  for (std::size_t i = 0; i < fields.size(); ++i) columns[i].push_back(std::move(fields[i]));
}

void requireDistinct(std::vector<std::string> names)
{
  std::sort(names.begin(), names.end());
  const auto twin = std::adjacent_find(names.begin(), names.end());
  if (twin != names.end()) throw FileFormatError(readWhere, "two columns have the name '" + *twin + "'");
}
} // namespace

void DataSet::write(std::ostream& stream) const
{
  std::string line;
  const auto endLine = [&]
  {
    if (!line.empty()) line.pop_back(); // the last separator
    stream << line << '\n';
    line.clear();
  };
  for (const Column& column : _columns) line += column.name + _fieldSeparator;
  endLine();
  for (int row = 0; row < _numRows; ++row)
  {
    for (const Column& column : _columns)
    {
      std::visit([&](const auto& values) { line += toText(values[row]); }, column.values);
      line += _fieldSeparator;
    }
    endLine();
  }
}

/// The column's type is that of its first field, and a wider one where a later field does not fit.
DataSet::Values DataSet::typedValues(const std::vector<std::string>& fields)
{
  if (fields.empty()) return Vector<std::string>();
  const bool isInteger = parse<long>(fields[0]).has_value();
  if (isInteger)
  {
    if (auto values = parseAll<int>(fields)) return *std::move(values);
    if (auto values = parseAll<long>(fields)) return *std::move(values);
  }
  if (isNumber<float>(fields[0]))
  {
    if (auto values = parseAll<float>(fields, isInteger)) return *std::move(values);
    if (auto values = parseAll<double>(fields, isInteger)) return *std::move(values);
    if (auto values = parseAll<long double>(fields, isInteger)) return *std::move(values);
  }
  return Vector<std::string>(fields);
}

void DataSet::read(std::istream& stream)
{
  long lineNumber = 1;
  std::vector<std::vector<std::string>> columns;
  try
  {
    std::string line;
    if (!readLine(stream, line)) throw FileFormatError(readWhere, "there are no column names");
    if (!line.empty())
      for (const std::string& name : split(line, _fieldSeparator)) _columns.push_back({name, Vector<std::string>()});
    requireDistinct(getNames());
    columns.resize(_columns.size());
    while (readLine(stream, line))
    {
      ++lineNumber;
      const bool isBlank = line.empty() && columns.size() != 1; // in a single column, a row of empty text
      if (!isBlank) appendRow(split(line, _fieldSeparator), columns);
    }
  }
  catch (FileFormatError& error)
  {
    error.setWhat("Line " + std::to_string(lineNumber) + ": " + error.getWhat());
    throw;
  }
  _numRows = columns.empty() ? 0 : static_cast<int>(columns[0].size());
  for (std::size_t i = 0; i < columns.size(); ++i) _columns[i].values = typedValues(columns[i]);
}

std::ostream& operator<<(std::ostream& stream, const DataSet& dataSet)
{
  dataSet.write(stream);
  return stream;
}

std::istream& operator>>(std::istream& stream, DataSet& dataSet)
{
  DataSet read(dataSet._fieldSeparator);
  read.read(stream);
  if (stream.bad()) throw FileReadError(readWhere, "The data set cannot be read");
  stream.clear(std::ios::eofbit); // the failure to read beyond the last line is none
  dataSet = std::move(read);
  return stream;
}

void DataSet::save(const std::string& filename, bool overwrite) const
{
  const char* const where = "void DataSet::save(const std::string&, bool) const";
  std::error_code unreachable; // is reported when the file is created
  if (!overwrite && std::filesystem::exists(std::filesystem::symlink_status(filename, unreachable)))
    throw FileWriteError(where, "File exists", filename);
  try
  {
    std::ostringstream text;
    text << *this;
    AtomicFile file(filename);
    file.write(text.view());
    file.commit(AtomicFile::Durability::FlushToDisk);
  }
  catch (FileError& error)
  {
    error.addWhere(where);
    throw;
  }
}

void DataSet::load(const std::string& filename)
{
  const char* const where = "void DataSet::load(const std::string&)";
  std::error_code error;
  if (!std::filesystem::exists(filename, error)) throw FileReadError(where, "The file does not exist", filename);
  std::ifstream stream(filename, std::ios::binary);
  if (!stream || std::filesystem::is_directory(filename, error))
    throw FileReadError(where, "The file cannot be opened", filename);
  try
  {
    stream >> *this;
  }
  catch (FileError& exception)
  {
    exception.setFilename(filename);
    exception.setWhat(filename + ": " + exception.getWhat());
    exception.addWhere(where);
    throw;
  }
}
