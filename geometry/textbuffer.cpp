#include "geometry/textbuffer.h"

#include <charconv>

namespace
{
constexpr std::size_t flushFrom = 1 << 16;
constexpr std::size_t longestNumber = 64; // more than any number takes with 21 significant digits

/// Appends what `format(first, last)` writes.
template <class Format> void appendFormatted(std::string& text, Format format)
{
  char digits[longestNumber];
  const std::to_chars_result result = format(digits, digits + longestNumber);
  text.append(digits, result.ptr);
}
} // namespace

TextBuffer& TextBuffer::operator<<(std::string_view text)
{
  _text += text;
  if (_text.size() >= flushFrom) flush();
  return *this;
}

TextBuffer& TextBuffer::operator<<(char character)
{
  return *this << std::string_view(&character, 1);
}

template <class Number>
requires std::is_arithmetic_v<Number> TextBuffer& TextBuffer::operator<<(Number number)
{
  appendFormatted(_text, [number](char* first, char* last) { return std::to_chars(first, last, number); });
  return *this;
}

template <class Number> TextBuffer& TextBuffer::addSixDigits(Number number)
{
  if constexpr (std::is_integral_v<Number>)
    return *this << number;
  else
    appendFormatted(_text, [number](char* first, char* last)
                    { return std::to_chars(first, last, number, std::chars_format::general, 6); });
  return *this;
}

void TextBuffer::flush()
{
  _stream.write(_text.data(), static_cast<std::streamsize>(_text.size()));
  _text.clear();
}

template TextBuffer& TextBuffer::operator<<(int);
template TextBuffer& TextBuffer::operator<<(float);
template TextBuffer& TextBuffer::operator<<(double);
template TextBuffer& TextBuffer::operator<<(long double);
template TextBuffer& TextBuffer::addSixDigits(int);
template TextBuffer& TextBuffer::addSixDigits(float);
template TextBuffer& TextBuffer::addSixDigits(double);
template TextBuffer& TextBuffer::addSixDigits(long double);
