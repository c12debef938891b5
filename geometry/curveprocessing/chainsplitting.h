#pragma once

#include "geometry/coordinates.h"
#include "geometry/curve.h"

#include <utility>
#include <vector>

/// The vertex of a closed curve that is farthest from vertex 0.
template <class T> int farthestFromFirst(const Curve<T>& curve)
{
  int farthest = 1;
  Real<T> longest = 0;
  for (int i = 1; i < curve.getSize(); ++i)
  {
    const Real<T> candidate = squaredDistance(curve.data(), curve.data(i), curve.getSpace());
    if (!(candidate > longest)) continue;
    longest = candidate;
    farthest = i;
  }
  return farthest;
}

/// The curve through those vertices at which its chains are divided, over and over. An open curve is one chain, a
/// closed one two, from vertex 0 to the vertex that is farthest from it and back. findSplit(first, last) tells the
/// vertex between two others at which the chain between them is to be divided, or -1 when it may become a straight
/// edge; it counts vertex 0 of a closed curve as vertex n when a chain ends there.
template <class T, class FindSplit> Curve<T> curveThroughSplits(const Curve<T>& curve, const FindSplit& findSplit)
{
  const int size = curve.getSize();
  if (size < 3) return curve;
  std::vector<std::pair<int, int>> chains;
  if (curve.isOpen())
    chains = {{0, size - 1}};
  else
    chains = {{0, farthestFromFirst(curve)}, {farthestFromFirst(curve), size}};
  std::vector<bool> isKept(static_cast<std::size_t>(size) + 1, false);
  while (!chains.empty())
  {
    const auto [first, last] = chains.back();
    chains.pop_back();
    isKept[static_cast<std::size_t>(first)] = isKept[static_cast<std::size_t>(last)] = true;
    const int split = last - first > 1 ? findSplit(first, last) : -1;
    if (split < 0) continue;
    chains.emplace_back(first, split);
    chains.emplace_back(split, last);
  }
  Curve<T> kept(curve.getSpace());
  kept.setOpen(curve.isOpen());
  kept.setName(curve.getName());
  for (int i = 0; i < size; ++i)
    if (isKept[static_cast<std::size_t>(i)]) kept.Vertices<T>::append(curve[i]);
  return kept;
}
