#include "geometry/predicates.h"

#include <gtest/gtest.h>
#include <random>

namespace
{

template <class R> class Predicates : public testing::Test
{
};
using PredicateTypes = testing::Types<double, long double>;
TYPED_TEST_SUITE(Predicates, PredicateTypes);

template <class R> int signOf(R x)
{
  return x > 0 ? 1 : x < 0 ? -1 : 0;
}

} // namespace

// Source of the grid of points: Kettner et al., "Classroom examples of robustness problems in geometric computations",
// 2008. The differences of the coordinates are rounded, their products cancel.
TYPED_TEST(Predicates, AreExactNextToALineAndAPlane)
{
  using R = TypeParam;
  const R step = std::numeric_limits<R>::epsilon() / 2;
  const PlanePoint<R> a = {12, 12}, b = {24, 24};
  const Vector3d<R> p = {12, 12, R(0.1)}, q = {24, 24, R(1.7)}, r = {R(17.3), R(17.3), -31};
  for (int i = 0; i < 64; ++i)
    for (int j = 0; j < 64; ++j)
    {
      const R x = R(0.5) + static_cast<R>(i) * step, y = R(0.5) + static_cast<R>(j) * step;
      ASSERT_EQ(orientation(a, b, {x, y}), signOf(y - x));
      ASSERT_EQ(orientation(b, a, {x, y}), signOf(x - y));
      ASSERT_EQ(orientation({x, y}, a, b), signOf(y - x));
      const int side = orientation(p, q, r, {x, y, R(0.3)});
      ASSERT_EQ(side, signOf(x - y) * orientation(p, q, r, Vector3d<R>{1, 0, 0}));
      ASSERT_EQ(orientation(q, p, r, {x, y, R(0.3)}), -side);
    }
}

TYPED_TEST(Predicates, SeeThatAnyThreePointsOfALineAreOnIt)
{
  using R = TypeParam;
  std::mt19937 generator(1);
  std::uniform_real_distribution<double> uniform(-1, 1);
  for (int i = 0; i < 1000; ++i)
  {
    // Multiples of few bits of a direction of few bits are exact.
    const R dx = std::round(R(uniform(generator)) * 1e6), dy = std::round(R(uniform(generator)) * 1e6);
    const auto at = [&](R k) { return PlanePoint<R>{k * dx, k * dy}; };
    const R k = std::round(R(uniform(generator)) * 100), l = std::ldexp(R(1), i % 30);
    ASSERT_EQ(orientation(at(k), at(l), at(R(0.5))), 0);
    ASSERT_EQ(orientation(at(k), at(l), {std::nextafter(l * dx + dx, R(1e30)), l * dy + dy}),
              signOf(k - l) * signOf(dy));
  }
}

TEST(Predicates, OfPointsThatAreNotFiniteAreZero)
{
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  for (const double x : {nan, infinity})
  {
    EXPECT_EQ(orientation<double>({x, 0}, {1, 1}, {0, 1}), 0);
    EXPECT_EQ(orientation(Vector3d<double>{x, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}), 0);
  }
}
