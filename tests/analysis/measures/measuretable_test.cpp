#include "analysis/measures/measuretable.h"
#include "tests/support/errors.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace
{
/// The fields of each line, read as RFC 4180 says.
std::vector<std::vector<std::string>> fieldsOf(const std::string& csv)
{
  std::vector<std::vector<std::string>> lines(1, {""});
  bool isQuoted = false;
  for (std::size_t i = 0; i < csv.size(); ++i)
  {
    std::string& field = lines.back().back();
    if (csv[i] == '"' && isQuoted && csv.substr(i + 1, 1) == "\"")
      field += csv[++i];
    else if (csv[i] == '"')
      isQuoted = !isQuoted;
    else if (isQuoted || (csv[i] != ',' && csv[i] != '\r'))
      field += csv[i];
    else if (csv[i] == ',')
      lines.back().emplace_back();
    else if (csv[++i] == '\n' && i + 1 < csv.size())
      lines.push_back({""});
  }
  return lines;
}

MeasureTable tableOf(const std::string& header, const std::vector<double>& values)
{
  MeasureTable table({{header, MeasureColumn::Text}, {"Area", MeasureColumn::Number, "", "\u00b5m^2"}});
  for (const double value : values) table.addRow(0, {table.addText(header), value});
  return table;
}
} // namespace

TEST(MeasureTable, NamesSurviveCommaSeparatedText)
{
  for (const std::string name :
       {"plain", "", " blanks ", "a,b", "say \"a\"", "\"", "two\nlines", "c\r\nd", "\u00e9;\t="})
  {
    SCOPED_TRACE(name);
    const std::vector<std::vector<std::string>> expected = {{name, "Area [\u00b5m^2]"}, {name, "2.5"}, {name, "NA"}};
    EXPECT_EQ(fieldsOf(tableOf(name, {2.5, std::nan("")}).toCsv()), expected);
  }
  EXPECT_EQ(tableOf("a", {}).toCsv(), "a,Area [\u00b5m^2]\r\n");
}

TEST(MeasureTable, SavedNumbersAreTheNumbersThatWereMeasured)
{
  const std::vector<double> values = {1. / 3, -2e-9 / 7, 123456789.125, 1e22 / 3, 0.1f, 5e-324, 4503599627370497.5, 3};
  const MeasureTable table = tableOf("a", values);
  const auto fields = fieldsOf(table.toCsv());
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(std::strtod(fields[i + 1][1].c_str(), nullptr), values[i]) << fields[i + 1][1];
  EXPECT_EQ(table.getText(0, 1, MeasureTable::shownDigits), "0.333333");
  EXPECT_EQ(table.getText(2, 1, MeasureTable::shownDigits), "1.23457e+08");
  EXPECT_EQ(tableOf("a", {-0.}).getText(0, 1), "0");
  EXPECT_EQ(tableOf("a", {-std::numeric_limits<double>::infinity()}).getText(0, 1), "NA");
}

TEST(MeasureTable, TextIsUtf8WhateverTheNamesAre)
{
  const std::pair<std::string, std::string> names[] = {
      {"\u00b5\u20ac\U0001F52C", "\u00b5\u20ac\U0001F52C"},
      {"n\xE9", "n\uFFFD"},                              // Latin-1
      {"a\xE2\x82", "a\uFFFD\uFFFD"},                    // cut off
      {"\xC0\xAF", "\uFFFD\uFFFD"},                      // longer than needed
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},            // half of a pair
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}}; // beyond the last character
  for (const auto& [name, shown] : names) EXPECT_EQ(fieldsOf(tableOf(name, {1}).toCsv())[1][0], shown);
}

TEST(MeasureTable, TabTextHasTheChosenCellsInTheirOrder)
{
  MeasureTable table(
      {{"Slice", MeasureColumn::Text}, {"n", MeasureColumn::Count}, {"X", MeasureColumn::Number, "", "m"}});
  table.addRow(7, {table.addText("a\tb"), 2147483648., 0.5});
  table.addRow(9, {table.addText("c,d"), std::nan(""), -1});
  EXPECT_EQ(table.toTabText({1, 0}, {0, 2, 1}), "Slice\tX [m]\tn\nc,d\t-1\tNA\n\"a\tb\"\t0.5\t2147483648\n");
  EXPECT_EQ(table.getSource(1), 9);
  EXPECT_EQ(table.getColumn(2).header("\n"), "X\n[m]");
  expectError<UsageError>("one value per column", [&] { table.addRow(0, {1, 2}); });
}
