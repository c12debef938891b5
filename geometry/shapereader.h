#pragma once

#include <istream>
#include <string>

/// Reads the lines of shape files and reports what is wrong with them, with the line's number.
class ShapeReader
{
public:
  explicit ShapeReader(std::istream& stream) : _stream(stream) {}

  /// The number on a line "# n". \throw FileFormatError  the line is missing or another one, or n is negative
  int readHeader(const char* meaning);
  /// The space dimension: 1, 2 or 3. \throw FileFormatError  as readHeader()
  int readSpace();
  /// Reads exactly `count` numbers, separated by blanks, from one line. \throw FileFormatError  it holds anything else
  template <class Number> void readLine(Number* numbers, int count);
  [[noreturn]] void fail(const std::string& reason) const;

private:
  void nextLine();

  std::istream& _stream;
  std::string _line;
  int _lineNumber = 0;
};
