#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

/// Collects formatted text and hands it to a stream in large pieces, the last one on flush(). Numbers have a decimal
/// point in every locale.
class TextBuffer
{
public:
  explicit TextBuffer(std::ostream& stream) : _stream(stream) {}
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  TextBuffer& operator<<(std::string_view text);
  TextBuffer& operator<<(char character);
  /// The shortest text that reads back as the same number.
  template <class Number>
  requires std::is_arithmetic_v<Number> TextBuffer& operator<<(Number number);
  /// Six significant digits, integers whole, as the standard streams write by default.
  template <class Number> TextBuffer& addSixDigits(Number number);

  void flush();

private:
  std::ostream& _stream;
  std::string _text;
};

/// Numbers separated by single spaces.
template <class Number> void addNumbers(TextBuffer& text, const Number* numbers, int count)
{
  for (int i = 0; i < count; ++i)
  {
    if (i > 0) text << ' ';
    text << numbers[i];
  }
}

/// Numbers separated by single spaces, and the end of the line.
template <class Number> void writeLine(TextBuffer& text, const Number* numbers, int count)
{
  addNumbers(text, numbers, count);
  text << '\n';
}
