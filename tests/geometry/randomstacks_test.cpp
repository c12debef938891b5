// Random stacks of contours that split, join, begin and end: the surface is a manifold wherever contours are joined.

#include "geometry/curvestacktriangulation2.h"
#include "tests/support/curves.h"
#include "tests/support/manifold.h"

#include <gtest/gtest.h>
#include <random>

namespace
{
using Tag = CurveStackTriangulationContourTag;

int below(std::mt19937& random, int limit)
{
  return static_cast<int>(random() % static_cast<unsigned>(limit));
}

/// A star-shaped contour, clockwise, within a unit square around (x, y).
template <class T> Curve<T> star(std::mt19937& random, T x, T y, T z)
{
  const int size = 3 + below(random, 38);
  Curve<T> curve(3, size);
  for (int i = 0; i < size; ++i)
  {
    const T angle = -2 * std::numbers::pi_v<T> * (i + T(below(random, 80)) / 100) / size;
    const T radius = T(5 + below(random, 40)) / 100;
    curve[i] = Vector<T>{x + radius * std::cos(angle), y + radius * std::sin(angle), z};
  }
  curve.setClockwise(true, 0, 1); // three vertices of different radii may run the other way round
  return curve;
}

template <class T> struct RandomStack
{
  explicit RandomStack(std::mt19937& random)
  {
    const int numLevels = 2 + below(random, 5);
    const bool isTagged = below(random, 2) == 0, isDescending = below(random, 4) == 0;
    std::vector<Tag> tagList;
    T z = -2;
    for (int level = 0; level < numLevels; ++level)
    {
      const int width = 1 + below(random, 3);
      z += T(isDescending ? -1 : 1) * (1 + T(below(random, 5)) / 4);
      levels.emplace_back();
      for (int cell = 0; cell < width * width; ++cell)
      {
        if (below(random, 3) == 0 && cell + 1 < width * width) continue;
        curves.append(star<T>(random, T(cell % width) * 3 / width, T(cell / width) * 3 / width, z));
        const Tag tag = isTagged && below(random, 4) == 0 ? (below(random, 2) == 0 ? Tag::Begin : Tag::End) : Tag::None;
        levels.back().push_back(static_cast<int>(tagList.size()));
        tagList.push_back(tag);
      }
    }
    tags = Vector<Tag>(static_cast<int>(tagList.size()));
    std::copy(tagList.begin(), tagList.end(), tags.begin());
    caps = below(random, 2) == 0;
    firstCaps = below(random, 2) == 0;
    lastCaps = below(random, 2) == 0;
  }

  /// Number of edges of contours with one triangle, by the rules of tags and caps.
  int numBoundaryEdges() const
  {
    std::vector<int> numTriangles(static_cast<std::size_t>(tags.getSize()), 0); // at each edge of a contour
    std::vector<int> lower;
    for (std::size_t level = 0; level < levels.size(); ++level)
    {
      std::vector<int> upper, beginning;
      for (const int i : levels[level])
      {
        const bool begins = tags[i] == Tag::Begin, ends = tags[i] == Tag::End;
        if (level == 0 && !ends) upper.push_back(i);
        if (level > 0) (begins ? beginning : upper).push_back(i);
        if (level == 0 && !ends) numTriangles[i] += firstCaps || (caps && begins);
        if (level > 0 && begins && level + 1 < levels.size() + 1) numTriangles[i] += caps;
        if (level > 0 && ends) numTriangles[i] += caps;
        if (level + 1 == levels.size() && level > 0 && !begins && !(ends && caps)) numTriangles[i] += lastCaps;
      }
      if (level > 0 && !lower.empty() && !upper.empty())
      {
        for (const int i : lower) ++numTriangles[i];
        for (const int i : upper) ++numTriangles[i];
      }
      lower.clear();
      for (const int i : upper)
        if (tags[i] != Tag::End || level == 0) lower.push_back(i);
      lower.insert(lower.end(), beginning.begin(), beginning.end());
    }
    int count = 0;
    for (int i = 0; i < curves.getNumCurves(); ++i) count += numTriangles[i] == 1 ? curves[i].getSize() : 0;
    return count;
  }

  CurveStack<T> curves;
  std::vector<std::vector<int>> levels; // numbers of curves
  Vector<Tag> tags;
  bool caps, firstCaps, lastCaps;
};

template <class T> class RandomStacks : public testing::Test
{
};
using CoordinateTypes = testing::Types<float, double, long double>;
TYPED_TEST_SUITE(RandomStacks, CoordinateTypes);
} // namespace

TYPED_TEST(RandomStacks, BecomeManifolds)
{
  std::mt19937 random(static_cast<unsigned>(GTEST_FLAG_GET(random_seed))); // 0, or that of --gtest_random_seed
  for (int round = 0; round < 400; ++round)
  {
    SCOPED_TRACE(round);
    const RandomStack<TypeParam> stack(random);
    CurveStackTriangulation2<TypeParam> triangulation;
    triangulation.setMethod(round % 2);
    triangulation.setTriangulateCaps(stack.caps);
    triangulation.setTriangulateFirstCaps(stack.firstCaps);
    triangulation.setTriangulateLastCaps(stack.lastCaps);
    triangulation.setContourTags(stack.tags);
    triangulation.apply(stack.curves);
    const EdgeCounts counts = countEdges(triangulation.getTriMesh());
    ASSERT_EQ(counts.numNonManifold, 0);
    ASSERT_EQ(counts.numInconsistent, 0);
    ASSERT_EQ(counts.numBoundary, stack.numBoundaryEdges());
    ASSERT_EQ(numSplitVertices(triangulation.getTriMesh()), 0);
  }
}
