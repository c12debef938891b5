#include "image/filters/filterkind.h"

#include <algorithm>

#define FILTER_KIND(name) extern const FilterKind name##FilterKind;
#include "image/filters/filterkinds.inc" // FILTER_KIND(NAME) for each filter
#undef FILTER_KIND

std::span<const FilterKind* const> filterKinds()
{
#define FILTER_KIND(name) &name##FilterKind,
  static const FilterKind* const kinds[] = {
#include "image/filters/filterkinds.inc"
  };
#undef FILTER_KIND
  return kinds;
}

const FilterKind& findFilterKind(const std::string& name)
{
  std::string names;
  for (const FilterKind* kind : filterKinds())
  {
    if (kind->name == name) return *kind;
    names += (names.empty() ? "" : ", ") + kind->name;
  }
  throw NameError("const FilterKind& findFilterKind(const std::string&)",
                  "There is no filter \"" + name + "\", only: " + names);
}
