#pragma once

#include <string>
#include <vector>

/// A unit of length: a power of ten of the metre, with its SI name.
class LengthUnit
{
public:
  explicit LengthUnit(int scale = 0) : _scale(scale) {}

  int getScale() const { return _scale; }
  void setScale(int scale) { _scale = scale; }

  /// "micrometer" is written with the full prefix name; "???" stands for the prefix of an unknown scale.
  std::string name() const;
  /// Prefix symbol and "m", in UTF-8.
  std::string symbol() const;

  bool operator==(const LengthUnit& other) const = default;

  /// The known units in ascending order of their scales.
  static std::vector<int> availableScales();
  static std::vector<std::string> availableNames();
  static std::vector<std::string> availableSymbols();

private:
  int _scale;
};
