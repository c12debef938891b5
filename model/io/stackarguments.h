#pragma once

#include "geometry/vertices.h"
#include "model/calibrationcurve.h"
#include "model/rleitemset.h"

#include <string>
#include <string_view>
#include <vector>

/// The arguments of a statement, checked as they are asked for: each question throws StackReader::ArgValueError when
/// the argument is not what it should be. Numbers are parsed whole; NaN and infinity are refused.
class StackArguments
{
public:
  /// All arguments as they stand, and the first of them as tokens.
  StackArguments(std::string_view text, std::vector<std::string_view> tokens);

  int getNumTokens() const { return static_cast<int>(_tokens.size()); }
  /// Argument i as it stands. Unchecked, as in all functions that take an index.
  std::string_view getToken(int i) const { return _tokens[static_cast<std::size_t>(i)]; }
  /// Free text with its escapes undone.
  std::string text(int i) const;
  /// A name or path: text that can be stored again.
  std::string name(int i) const;
  int integer(int i) const;
  /// An integer of at least `least`.
  int integerFrom(int i, int least) const;
  float real(int i) const;
  double longReal(int i) const;
  float positiveReal(int i) const;
  /// A real number within the range of int.
  float angle(int i) const;
  bool boolean(int i) const;

  /// All arguments as vertices "x,y".
  Vertices<int> vertices() const;
  /// All arguments as runs "x,y,length".
  RLEItemSet runs() const;
  /// All arguments as samples "grey level,value".
  std::vector<CalibrationCurve::Sample> calibrationSamples() const;

private:
  std::string_view _text;
  std::vector<std::string_view> _tokens;
};
