#include "batch/measuretable.h"

namespace
{
/// The field as it stands in the text: in quotes when it holds a comma, a quote or a line end.
std::string quoted(const std::string& field)
{
  if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
  std::string result = "\"";
  for (const char c : field) result += c == '"' ? "\"\"" : std::string(1, c);
  return result + "\"";
}

std::string field(const Json& value)
{
  if (value.is_null()) return "NA";
  return quoted(value.is_string() ? value.get<std::string>() : value.dump());
}
} // namespace

MeasureTable::MeasureTable(const std::vector<std::string>& headers)
{
  addRow({headers.begin(), headers.end()});
}

void MeasureTable::addRow(const std::vector<Json>& values)
{
  for (std::size_t i = 0; i < values.size(); ++i) _text += (i > 0 ? "," : "") + field(values[i]);
  _text += "\r\n";
}
