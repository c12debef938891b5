#pragma once

#include "batch/json.h"

#include <string>
#include <vector>

/// Comma-separated text (RFC 4180) with a line of headers; "NA" stands for null.
class MeasureTable
{
public:
  explicit MeasureTable(const std::vector<std::string>& headers);

  /// One value per header: a text, a number or null.
  void addRow(const std::vector<Json>& values);
  const std::string& text() const { return _text; }

private:
  std::string _text;
};
