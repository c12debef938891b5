#pragma once

#include "analysis/spatial/positionsampler.h"
#include "geometry/boxtree.h"
#include "geometry/predicates.h"
#include "numeric/vector.h"

#include <array>
#include <optional>
#include <vector>

class RandomGenerator;

/// Places objects at random, one after the other, so that they keep their hardcore distances.
template <class T> class HardcorePlacement
{
public:
  /// All are borrowed. There is one size per obstacle, and the obstacles have the domain's dimension.
  HardcorePlacement(const PositionSampler<T>& sampler, const Vector<T>& hardcoreDistances, const Vertices<T>& obstacles,
                    const Vector<T>& obstacleSizes);

  /// Whether the discs or balls around the objects, which may not overlap each other nor the border, are together
  /// larger than the domain: no attempt can succeed then.
  bool cannotFit() const;
  /// One attempt in a random order of the objects; nothing when all positions of one object fail.
  /// \throw UsageError, Cancelled  as PositionSampler<T>::draw()
  std::optional<Vertices<T>> attempt(RandomGenerator& generator, const ProgressSubject& subject);

private:
  static constexpr int maxNumPositions = 200; // of one object
  static constexpr int none = -1;

  using Cell = std::array<int, 3>;

  bool place(int object, RandomGenerator& generator, const ProgressSubject& subject);
  bool isClearOfObstacles(int object) const;
  bool isClearOfObjects(int object) const;
  bool isClearOfBorder(int object) const;
  TreeBox<T> boxAround(const T* point, T radius) const;
  void layOutCells();
  Cell cellOf(const T* point) const;
  std::size_t indexOf(const Cell& cell) const;

  const PositionSampler<T>& _sampler;
  const Vector<T>& _distances;
  const Vertices<T>& _obstacles;
  const Vector<T>& _obstacleSizes;
  BoxTree<T> _obstacleTree;
  Vertices<T> _pattern;
  int _space;
  // The objects that have been placed, in cells at least as wide as the largest distance that two of them keep.
  T _reach = 0;
  std::array<T, 3> _origin = {};
  std::array<T, 3> _cellsPerLength = {};
  std::array<int, 3> _numCells = {1, 1, 1};
  std::vector<int> _firstInCell;
  std::vector<int> _nextInCell;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(HardcorePlacement)
