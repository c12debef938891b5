#include "model/io/statementbuffer.h"

#include "model/io/stackio.h"
#include "numeric/exception.h"

#include <charconv>
#include <cmath>

namespace
{
constexpr std::size_t pieceSize = 1 << 20; // written at once

void requireFinite(double value, const char* where)
{
  if (!std::isfinite(value)) throw ValueError(where, "A number of the stack is not finite");
}
} // namespace

std::string decimalText(float value)
{
  requireFinite(value, "std::string decimalText(float)");
  char digits[64]; // 39 digits before the point at the most
  const auto result = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 2);
  const std::string_view text(digits, static_cast<std::size_t>(result.ptr - digits));
  return std::string(text == "-0.00" ? text.substr(1) : text);
}

std::string lengthText(float value)
{
  std::string text = decimalText(value);
  if (value == 0 || text != "0.00") return text;
  char digits[64]; // the smallest float has 45 decimals
  const auto result = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed);
  return std::string(digits, result.ptr);
}

std::string exactText(double value)
{
  requireFinite(value, "std::string exactText(double)");
  char digits[32]; // 17 digits, sign, point and exponent
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

StatementBuffer& StatementBuffer::begin(StackKeyword keyword)
{
  _text += StackIO::getString(keyword);
  return *this;
}

StatementBuffer& StatementBuffer::quoted(std::string_view text)
{
  _text += " \"";
  _text += StackIO::exportString(text);
  _text += '"';
  return *this;
}

StatementBuffer& StatementBuffer::word(std::string_view text)
{
  _text += ' ';
  _text += text;
  return *this;
}

StatementBuffer& StatementBuffer::integer(int value)
{
  return tuple(&value, 1);
}

StatementBuffer& StatementBuffer::tuple(const int* values, int count)
{
  char digits[64]; // three integers with signs and commas
  char* text = digits;
  for (int i = 0; i < count; ++i)
  {
    *text++ = i == 0 ? ' ' : ',';
    text = std::to_chars(text, digits + sizeof digits, values[i]).ptr;
  }
  _text.append(digits, text);
  return *this;
}

void StatementBuffer::end()
{
  _text += ";\n";
  if (_text.size() >= pieceSize) flush();
}

void StatementBuffer::statement(std::string_view text)
{
  _text += text;
  end();
}

void StatementBuffer::flush()
{
  _file.write(_text);
  _text.clear();
}
