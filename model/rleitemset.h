#pragma once

#include "geometry/boundingbox.h"
#include "geometry/vertices.h"
#include "image/pixelmatrix.h"
#include "model/rleitem.h"
#include "numeric/vector.h"

#include <cstdint>
#include <optional>
#include <vector>

/// Set of pixel positions (x, y), kept as runs along y in ascending order that neither overlap nor touch.
class RLEItemSet
{
public:
  RLEItemSet() = default;
  /// The union of runs in any order.
  explicit RLEItemSet(std::vector<RLEItem> runs);

  /// Number of runs.
  int numItems() const { return static_cast<int>(_runs.size()); }
  /// Run i. Unchecked.
  const RLEItem& getItem(int i) const { return _runs[static_cast<std::size_t>(i)]; }
  const std::vector<RLEItem>& getItems() const { return _runs; }
  /// Number of positions.
  std::int64_t numVertices() const;
  bool isEmpty() const { return _runs.empty(); }
  void clear() { _runs.clear(); }

  void add(const RLEItem& run);
  void add(int x, int y) { add(RLEItem(x, y, 1)); }
  void add(const RLEItemSet& set);
  void remove(const RLEItem& run);
  void remove(int x, int y) { remove(RLEItem(x, y, 1)); }
  void remove(const RLEItemSet& set);
  /// Replaces the set by the positions of the coordinate range at most `radius` away from the centre; none for a
  /// negative radius.
  void setBall(const Vector<int>& center, int radius);
  /// Replaces the set by the positions of the window inside a closed contour, as ContourScan defines it.
  void setContour(const Vertices<int>& contour, const BoundingBox<int>& window);
  /// Replaces the set by the positions (column, row) that have the label.
  template <class T> void fromMask(const PixelMatrix<T>& mask, T label);
  /// Gives the positions inside the mask the label.
  template <class T> void toMask(PixelMatrix<T>& mask, T label) const;
  /// \throw ProgramError  a run would end beyond int
  void translate(int dx, int dy);

  bool contains(int x, int y) const;
  /// Whether the set has a position of the run.
  bool overlaps(const RLEItem& run) const;
  /// Empty for an empty set.
  BoundingBox<int> boundingBox() const;
  /// The position closest to (x, y), the first one in order on a tie; none in an empty set.
  std::optional<Vector<int>> nearestPosition(int x, int y) const;

  bool operator==(const RLEItemSet& other) const = default;

private:
  using Runs = std::vector<RLEItem>;

  /// The first run that ends at or behind (x, y - 1): the first that a run from (x, y) could touch.
  Runs::const_iterator firstTouching(const RLEItem& run) const;

  Runs _runs;
};
