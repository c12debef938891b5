#include "analysis/measures/measuretable.h"

#include "numeric/exception.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>

namespace
{
constexpr double notAvailable = std::numeric_limits<double>::quiet_NaN();

/// Number of bytes of the character at a place, 0 when they are no UTF-8.
/// Source: The Unicode Standard 15, table 3-7, "Well-formed UTF-8 byte sequences".
std::size_t utf8Length(const std::string& text, std::size_t place)
{
  const auto byte = [&](std::size_t i) { return place + i < text.size() ? text[place + i] & 0xFF : 0; };
  const auto continues = [&](std::size_t i, int least = 0x80, int most = 0xBF)
  { return byte(i) >= least && byte(i) <= most; };
  const int lead = byte(0);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  if (lead < 0xE0) return continues(1) ? 2 : 0;
  if (lead < 0xF0) return continues(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF) && continues(2) ? 3 : 0;
  const bool isSecond = continues(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF);
  return isSecond && continues(2) && continues(3) ? 4 : 0;
}

/// The text with a replacement character for each byte that is no UTF-8, which names in old files may have.
std::string toUtf8(const std::string& text)
{
  std::string valid;
  for (std::size_t i = 0; i < text.size();)
  {
    const std::size_t length = utf8Length(text, i);
    valid += length > 0 ? text.substr(i, length) : "\uFFFD";
    i += std::max<std::size_t>(length, 1);
  }
  return valid;
}

/// The field as it stands in the text: in quotes when it holds a separator, a quote or a line end.
void appendField(std::string& text, const std::string& field, char separator)
{
  if (field.find_first_of(std::string("\"\r\n") + separator) == std::string::npos)
  {
    text += field;
    return;
  }
  text += '"';
  for (const char c : field) text += c == '"' ? "\"\"" : std::string(1, c);
  text += '"';
}

std::string toText(double number, int digits)
{
  char text[32];
  const std::to_chars_result result =
      digits == MeasureTable::allDigits
          ? std::to_chars(text, text + sizeof text, number)
          : std::to_chars(text, text + sizeof text, number, std::chars_format::general, digits);
  return std::string(text, result.ptr);
}

std::vector<int> upTo(int n)
{
  std::vector<int> numbers(static_cast<std::size_t>(n));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}
} // namespace

std::string MeasureColumn::header(const std::string& separator) const
{
  return unit.empty() ? name : name + separator + "[" + unit + "]";
}

double MeasureTable::addText(const std::string& text)
{
  _texts.push_back(text);
  return static_cast<double>(_texts.size() - 1);
}

void MeasureTable::reserve(std::size_t numRows)
{
  _values.reserve(numRows * _columns.size());
  _sources.reserve(numRows);
}

void MeasureTable::addRow(int source, const std::vector<double>& values)
{
  if (values.size() != _columns.size())
    throw UsageError("void MeasureTable::addRow(int,const std::vector<double>&)", "A row has one value per column");
  const auto stored = [](double value) { return std::isfinite(value) ? value + 0. : notAvailable; }; // no -0
  std::transform(values.begin(), values.end(), std::back_inserter(_values), stored);
  _sources.push_back(source);
}

std::string MeasureTable::getText(int row, int column, int digits) const
{
  const double value = getValue(row, column);
  switch (getColumn(column).kind)
  {
  case MeasureColumn::Text:
    return _texts[static_cast<std::size_t>(value)];
  case MeasureColumn::Count:
    return std::isnan(value) ? "NA" : std::to_string(static_cast<long>(value));
  default:
    return std::isnan(value) ? "NA" : ::toText(value, digits);
  }
}

std::string MeasureTable::toCsv() const
{
  return toText(upTo(getNumRows()), upTo(getNumColumns()), ',', "\r\n");
}

std::string MeasureTable::toTabText(const std::vector<int>& rows, const std::vector<int>& columns) const
{
  return toText(rows, columns, '\t', "\n");
}

std::string MeasureTable::toText(const std::vector<int>& rows, const std::vector<int>& columns, char separator,
                                 const char* lineEnd) const
{
  std::string text;
  const auto appendRow = [&](const auto& field)
  {
    for (std::size_t i = 0; i < columns.size(); ++i)
    {
      if (i > 0) text += separator;
      appendField(text, field(columns[i]), separator);
    }
    text += lineEnd;
  };
  appendRow([&](int column) { return toUtf8(getColumn(column).header()); });
  for (const int row : rows)
    appendRow(
        [&](int column)
        {
          const bool isName = getColumn(column).kind == MeasureColumn::Text;
          return isName ? toUtf8(getText(row, column)) : getText(row, column);
        });
  return text;
}
