#include "geometry/shapereader.h"

#include "numeric/exception.h"

#include <charconv>

namespace
{
bool isBlank(char character)
{
  return character == ' ' || character == '\t' || character == '\r';
}

/// Reads a number after any blanks and moves `first` behind it; false when there is none.
template <class Number> bool parseNumber(const char*& first, const char* last, Number& number)
{
  while (first != last && isBlank(*first)) ++first;
  const std::from_chars_result result = std::from_chars(first, last, number);
  first = result.ptr;
  return result.ec == std::errc();
}

bool isBlankUntil(const char* first, const char* last)
{
  while (first != last && isBlank(*first)) ++first;
  return first == last;
}
} // namespace

int ShapeReader::readHeader(const char* meaning)
{
  nextLine();
  const char* const last = _line.data() + _line.size();
  const char* first = _line.data() + 1;
  int number = 0;
  if (_line.empty() || _line[0] != '#' || !parseNumber(first, last, number) || !isBlankUntil(first, last) || number < 0)
    fail("expected \"# \" and the " + std::string(meaning));
  return number;
}

int ShapeReader::readSpace()
{
  const int space = readHeader("space dimension");
  if (space < 1 || space > 3) fail("the space dimension is not 1, 2 or 3");
  return space;
}

template <class Number> void ShapeReader::readLine(Number* numbers, int count)
{
  nextLine();
  const char* first = _line.data();
  const char* const last = first + _line.size();
  for (int i = 0; i < count; ++i)
    if (!parseNumber(first, last, numbers[i])) fail("expected " + std::to_string(count) + " numbers");
  if (!isBlankUntil(first, last)) fail("expected " + std::to_string(count) + " numbers and nothing else");
}

void ShapeReader::fail(const std::string& reason) const
{
  throw FileFormatError("void Shape<T>::read(std::istream&)", "Line " + std::to_string(_lineNumber) + ": " + reason);
}

void ShapeReader::nextLine()
{
  ++_lineNumber;
  if (!std::getline(_stream, _line)) fail("the text ends too early");
}

template void ShapeReader::readLine(int*, int);
template void ShapeReader::readLine(float*, int);
template void ShapeReader::readLine(double*, int);
template void ShapeReader::readLine(long double*, int);
