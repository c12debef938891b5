#pragma once

#include "model/io/stackkeyword.h"
#include "numeric/atomicfile.h"

#include <string>
#include <string_view>

/// Text of numbers as stack files hold them.
/// @{

/// Two decimals. \throw ValueError  the value is not finite
std::string decimalText(float value);
/// Two decimals or, when nothing would be left of the value, its shortest decimals. \throw ValueError  not finite
std::string lengthText(float value);
/// The shortest decimals that read back as the value, with a power of ten where that is shorter.
/// \throw ValueError  not finite
std::string exactText(double value);
/// @}

/// Builds statements and writes them to a file in large pieces. Every value is preceded by a blank.
class StatementBuffer
{
public:
  explicit StatementBuffer(AtomicFile& file) : _file(file) {}

  StatementBuffer& begin(StackKeyword keyword);
  /// In double quotes, with its escapes.
  StatementBuffer& quoted(std::string_view text);
  StatementBuffer& word(std::string_view text);
  StatementBuffer& integer(int value);
  StatementBuffer& decimal(float value) { return word(decimalText(value)); }
  StatementBuffer& length(float value) { return word(lengthText(value)); }
  StatementBuffer& exact(double value) { return word(exactText(value)); }
  StatementBuffer& boolean(bool value) { return word(value ? "true" : "false"); }
  /// Integers joined by commas.
  StatementBuffer& tuple(const int* values, int count);
  void end();
  /// A whole statement without its ";".
  void statement(std::string_view text);

  /// Writes what is left. \throw FileWriteError  the disk is full or fails
  void flush();

private:
  AtomicFile& _file;
  std::string _text;
};
