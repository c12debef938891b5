#pragma once

#include "image/filters/neighbourhoodfilter.h"

#include <memory>
#include <span>
#include <string>
#include <tuple>

/// What a user can set of a filter by its name; each kind of filter uses one of them.
struct FilterOptions
{
  int size = 3;     ///< of the neighbourhood along each axis, in elements
  double sigma = 1; ///< standard deviation along each axis, in elements
};

enum class FilterOption
{
  Size,
  Sigma
};

template <class T> using FilterMaker = std::unique_ptr<NeighbourhoodFilter<T>> (*)(const FilterOptions&);

/// A filter that is chosen by its name. To add one, write its class and, as NAMEFilterKind, a kind in
/// image/filters/NAMEfilter.cpp, and add NAME to the filters in image/CMakeLists.txt: it lists the kinds for
/// filterKinds(), so that the linker keeps them.
struct FilterKind
{
  std::string name;
  FilterOption option;
  std::tuple<FilterMaker<char>, FilterMaker<unsigned char>, FilterMaker<short>, FilterMaker<unsigned short>,
             FilterMaker<int>, FilterMaker<unsigned int>, FilterMaker<float>, FilterMaker<double>,
             FilterMaker<long double>>
      makers;

  /// \throw ValueError  a value of the option that the filter cannot have
  template <ImageElement T> std::unique_ptr<NeighbourhoodFilter<T>> make(const FilterOptions& options) const
  {
    return std::get<FilterMaker<T>>(makers)(options);
  }
};

/// The kind of a filter class, which has a constructor from FilterOptions.
template <template <class> class Filter> FilterKind filterKind(const char* name, FilterOption option)
{
  const auto makerFor = []<class T>(T)
  {
    return [](const FilterOptions& options) -> std::unique_ptr<NeighbourhoodFilter<T>>
    { return std::make_unique<Filter<T>>(options); };
  };
  return {name,
          option,
          {makerFor(char()), makerFor(static_cast<unsigned char>(0)), makerFor(short()),
           makerFor(static_cast<unsigned short>(0)), makerFor(0), makerFor(0U), makerFor(0.0F), makerFor(0.0),
           makerFor(0.0L)}};
}

/// All kinds, by name.
std::span<const FilterKind* const> filterKinds();
/// \throw NameError  there is no such kind; the message lists those there are
const FilterKind& findFilterKind(const std::string& name);
