#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

/// Names of an enumeration whose values count from 0; the value behind the last name is the unknown one.
template <class Enum, std::size_t count> std::string nameOf(Enum value, const char* const (&names)[count])
{
  const auto index = static_cast<std::size_t>(value);
  return index < count ? names[index] : "Unknown";
}

template <class Enum, std::size_t count> Enum valueOf(std::string_view name, const char* const (&names)[count])
{
  return static_cast<Enum>(std::find(names, names + count, name) - names);
}
