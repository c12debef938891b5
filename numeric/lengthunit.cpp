#include "numeric/lengthunit.h"

#include <map>

namespace
{
struct Prefix
{
  std::string name;
  std::string symbol;
};

const std::map<int, Prefix>& prefixes()
{
  static const std::map<int, Prefix> table = {
      {-24, {"yopto", "y"}}, {-21, {"zepto", "z"}}, {-18, {"atto", "a"}},        {-15, {"femto", "f"}},
      {-12, {"pico", "p"}},  {-9, {"nano", "n"}},   {-6, {"micro", "\xc2\xb5"}}, {-3, {"milli", "m"}},
      {-2, {"centi", "c"}},  {0, {"", ""}},         {3, {"kilo", "k"}},          {6, {"mega", "M"}},
      {9, {"giga", "G"}},    {12, {"tera", "T"}},   {15, {"peta", "P"}},         {18, {"exa", "E"}},
      {21, {"zetta", "Z"}},  {24, {"yotta", "Y"}}};
  return table;
}

Prefix prefixOf(int scale)
{
  const auto found = prefixes().find(scale);
  return found == prefixes().end() ? Prefix{"???", "???"} : found->second;
}

/// f(unit) for every known unit, in ascending order.
template <class Function> auto listUnits(Function f)
{
  std::vector<decltype(f(LengthUnit()))> list;
  for (const auto& entry : prefixes()) list.push_back(f(LengthUnit(entry.first)));
  return list;
}
} // namespace

std::string LengthUnit::name() const
{
  return prefixOf(_scale).name + "meter";
}

std::string LengthUnit::symbol() const
{
  return prefixOf(_scale).symbol + "m";
}

std::vector<int> LengthUnit::availableScales()
{
  return listUnits([](const LengthUnit& unit) { return unit.getScale(); });
}

std::vector<std::string> LengthUnit::availableNames()
{
  return listUnits([](const LengthUnit& unit) { return unit.name(); });
}

std::vector<std::string> LengthUnit::availableSymbols()
{
  return listUnits([](const LengthUnit& unit) { return unit.symbol(); });
}
