#include "geometry/coordinates.h"
#include "geometry/kdtree.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{

template <class T> Vertices<T> randomVertices(int space, int size, T range, unsigned seed)
{
  std::mt19937 generator(seed);
  std::uniform_real_distribution<double> coordinate(-static_cast<double>(range), static_cast<double>(range));
  Vertices<T> vertices(space, size);
  for (int i = 0; i < size * space; ++i)
    vertices.data()[i] = toCoordinate<T>(static_cast<Real<T>>(coordinate(generator)));
  return vertices;
}

/// The first of the vertices nearest to a point, other than an excluded one, by looking at all of them.
template <class T> Neighbour<Real<T>> nearestOfAll(const Vertices<T>& vertices, const T* point, int excluded = -1)
{
  Neighbour<Real<T>> best;
  for (int i = 0; i < vertices.getSize(); ++i)
  {
    const Real<T> distance = squaredDistance(vertices.data(i), point, vertices.getSpace());
    if (i != excluded && distance < best.squaredDistance) best = {i, distance};
  }
  return best;
}

template <class T> class NearestNeighbours : public testing::Test
{
};
using CoordinateTypes = testing::Types<int, float, double, long double>;
TYPED_TEST_SUITE(NearestNeighbours, CoordinateTypes);

/// The rotation by an angle about an axis, by Rodrigues' formula.
SquareMatrix<double> rotationAbout(Vector<double> axis, double angle)
{
  axis /= std::sqrt(axis.scalarProduct(axis));
  const double c = std::cos(angle), s = std::sin(angle), x = axis[0], y = axis[1], z = axis[2];
  return {{c + x * x * (1 - c), x * y * (1 - c) - z * s, x * z * (1 - c) + y * s},
          {y * x * (1 - c) + z * s, c + y * y * (1 - c), y * z * (1 - c) - x * s},
          {z * x * (1 - c) - y * s, z * y * (1 - c) + x * s, c + z * z * (1 - c)}};
}

double sumOfSquares(const Shape<double>& a, const Shape<double>& b)
{
  return a.rmsDistance(b) * a.rmsDistance(b) * a.getSize();
}

} // namespace

// Coordinates up to 20 make many pairs of pixels equally distant, and equal.
TYPED_TEST(NearestNeighbours, AreTheFirstNearestOnes)
{
  using T = TypeParam;
  for (const int space : {1, 2, 3})
  {
    const Vertices<T> vertices = randomVertices<T>(space, 500, T(20), 1),
                      others = randomVertices<T>(space, 200, T(30), 2);
    const Vector<int> neighbours = vertices.nearestNeighbors();
    const auto distances = vertices.squareNearestNeighborDistances();
    const auto distancesToOthers = others.squareNearestNeighborDistances(vertices);
    Neighbour<Real<T>> closest;
    int closestVertex = -1;
    for (int i = 0; i < 500; ++i)
    {
      const auto expected = nearestOfAll(vertices, vertices.data(i), i);
      EXPECT_EQ(neighbours[i], expected.index);
      EXPECT_EQ(distances[i], expected.squaredDistance);
    }
    for (int i = 0; i < 200; ++i)
    {
      const auto expected = nearestOfAll(vertices, others.data(i));
      EXPECT_EQ(distancesToOthers[i], expected.squaredDistance);
      EXPECT_EQ(vertices.nearestVertex(others[i]), expected.index);
      if (!(expected.squaredDistance < closest.squaredDistance)) continue;
      closest = expected;
      closestVertex = i;
    }
    int a = -1, b = -1;
    others.closestPoints(vertices, a, b);
    EXPECT_EQ(std::make_pair(a, b), std::make_pair(closestVertex, closest.index));
  }
}

TEST(NearestNeighbours, OfHostileVertices)
{
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  const Vertices<double> hostile(2, {nan, 0, 1, 1, infinity, 2, 1, 1, 9, 9});
  const Vector<int> neighbours = hostile.nearestNeighbors();
  EXPECT_EQ(std::vector<int>(neighbours.begin(), neighbours.end()), (std::vector<int>{-1, 3, -1, 1, 1}));
  EXPECT_EQ(hostile.nearestVertex(Vector<double>{nan, 1}), -1);
  EXPECT_EQ(Vertices<double>(2).nearestNeighbors().getSize(), 0);
  EXPECT_EQ(Vertices<double>(2, {3, 3}).squareNearestNeighborDistances()[0], infinity);
  EXPECT_EQ(Vertices<double>(2, 1000).squareNearestNeighborDistances().max(), 0); // a thousand times the origin
  EXPECT_EQ(hostile.nearestNeighborDistances(Vertices<double>(2))[1], infinity);
  expectError<SizeError>("dimensions", [&] { hostile.nearestNeighborDistances(Vertices<double>(3)); });
}

TEST(NearestNeighbours, OfManyEqualVerticesAreFoundAtOnce)
{
  const int size = 100000;
  Vertices<double> vertices(3, size);
  vertices[0] = {1, 0, 0};
  vertices[1][0] = -0.; // equal to 0
  const auto start = std::chrono::steady_clock::now();
  const Vector<int> neighbours = vertices.nearestNeighbors();
  const auto distances = Vertices<double>(3, size).squareNearestNeighborDistances(vertices);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_EQ(neighbours[0], 1);
  EXPECT_EQ(neighbours[1], 2);
  for (int i = 2; i < size; ++i) ASSERT_EQ(neighbours[i], 1);
  EXPECT_EQ(distances.max(), 0);
}

TEST(ShapeArithmetic, IsVertexByVertexAndDetaches)
{
  const Vertices<double> a(2, {1, 2, 3, 4}), b(2, {10, 20, 30, 40});
  Vertices<double> sum = a;
  sum += b;
  EXPECT_EQ(sum.toVector(), (Vector<double>{11, 22, 33, 44}));
  sum -= a;
  EXPECT_EQ(sum.toVector(), b.toVector());
  sum += sum;
  EXPECT_EQ(sum.toVector(), (Vector<double>{20, 40, 60, 80}));
  sum = a;
  sum.fromVector(Vector<double>{5, 6, 7, 8});
  EXPECT_EQ(a.toVector(), (Vector<double>{1, 2, 3, 4}));
  EXPECT_EQ(sum[1], (Vector<double>{7, 8}));
  EXPECT_EQ(a.deformations(sum), (Matrix<double>{{4, 4}, {4, 4}}));
  EXPECT_EQ(a.squareDistances(sum), (Vector<double>{32, 32}));
  EXPECT_EQ(Vertices<double>(2).rmsDistance(Vertices<double>(2)), 0);
  for (const auto& wrong : {Vertices<double>(2, 3), Vertices<double>(3, 2)})
  {
    expectError<SizeError>("", [&] { sum += wrong; });
    expectError<SizeError>("", [&] { sum.rmsDistance(wrong); });
  }
  expectError<SizeError>("coordinates", [&] { sum.fromVector(Vector<double>{1, 2, 3}); });
}

TEST(ShapeArithmetic, RunsThroughAllLevelsOfAStack)
{
  CurveStack<double> stack;
  stack.append(curveThrough<double>({{0, 0, 0}, {4, 0, 0}}));
  stack.append(curveThrough<double>({{0, 3, 4}}));
  const CurveStack<double> copy = stack;
  stack += Vertices<double>(3, {1, 1, 1, 1, 1, 1, 0, 0, 0});
  EXPECT_EQ(stack.toVector(), (Vector<double>{1, 1, 1, 5, 1, 1, 0, 3, 4}));
  EXPECT_EQ(copy.squareDistances(stack), (Vector<double>{3, 3, 0}));
  EXPECT_EQ(copy.nearestVertex(Vector<double>{0, 4, 4}), 2);
}

TEST(PrincipalAxes, AreThoseOfATurnedBox)
{
  std::mt19937 generator(7);
  const SquareMatrix<double> turn = rotationAbout({1, 2, -1}, 0.8);
  Vertices<double> box = randomVertices<double>(3, 5000, 1, 8);
  box.scale(Vector<double>{5, 1, 2});
  const Vertices<double> upright = box;
  box.multiply(turn);
  box.translate(Vector<double>{100, -50, 7});
  Vertices<double> shared = box;
  shared.applyPAT();
  EXPECT_NEAR(box.cog()[0], 100, 1); // the copy moved alone
  const SquareMatrix<double> spread = shared.inertia();
  for (int i = 0; i < 3; ++i)
  {
    EXPECT_NEAR(shared.cog()[i], 0, 1e-12);
    for (int j = 0; j < i; ++j) EXPECT_NEAR(spread(i, j), 0, 1e-10);
  }
  EXPECT_GT(spread(0, 0), spread(1, 1));
  EXPECT_GT(spread(1, 1), spread(2, 2));
  const SquareMatrix<double> axes = box.principalAxes();
  EXPECT_TRUE(axes.isRHSystem());
  EXPECT_NEAR(std::abs(axes.getColumn(0).scalarProduct(turn.getColumn(0))), 1, 1e-3); // the box's longest side
  EXPECT_NEAR(std::abs(axes.getColumn(2).scalarProduct(turn.getColumn(1))), 1, 1e-3);
  Vector<double> mean, deviation;
  upright.stats(mean, deviation);
  EXPECT_NEAR(deviation[0], 5 / std::sqrt(3.), 0.05); // of a uniform distribution
}

TEST(LeastSquaresRegistration, FindsTheMotionBetweenCopies)
{
  for (const int space : {2, 3})
    for (const double angle : {0., 0.1, 1.5, 3.1, std::numbers::pi})
    {
      const Vertices<double> here = randomVertices<double>(space, 30, 10, 9);
      Vertices<double> there = here;
      const double c = std::cos(angle), s = std::sin(angle);
      const SquareMatrix<double> turn =
          space == 3 ? rotationAbout({3, -1, 2}, angle) : SquareMatrix<double>{{c, -s}, {s, c}};
      there.multiply(turn);
      Vector<double> shift(space);
      shift.fill(-3);
      there.translate(shift);
      Vertices<double> moved = here;
      moved.transform(here.computeLSRegistration(there));
      EXPECT_LT(moved.rmsDistance(there), 1e-13) << space << " " << angle;
      std::vector<std::pair<int, int>> pairs;
      for (int i = 0; i < 10; ++i) pairs.emplace_back(29 - i, 29 - i);
      moved = here;
      moved.transform(here.computeLSRegistration(there, pairs));
      EXPECT_LT(moved.rmsDistance(there), 1e-13);
    }
}

TEST(LeastSquaresRegistration, IsTheBestRotationAndNeverAReflection)
{
  std::mt19937 generator(10);
  std::uniform_real_distribution<double> uniform(-1, 1);
  const Vertices<double> here = randomVertices<double>(3, 12, 10, 11);
  Vertices<double> mirrored = here;
  mirrored.scale(Vector<double>{-1, 1, 1});
  for (const Vertices<double>& there : {mirrored, randomVertices<double>(3, 12, 10, 12)})
  {
    const RigidTransform<double> best = here.computeLSRegistration(there);
    EXPECT_NEAR(best.rotation.det(), 1, 1e-12);
    Vertices<double> moved = here;
    moved.transform(best);
    const double smallest = sumOfSquares(moved, there);
    for (int i = 0; i < 500; ++i) // no motion close by is better
    {
      Vertices<double> other = moved;
      const Vector<double> center = other.cog();
      Vector<double> back = center;
      back *= -1;
      other.translate(back);
      other.multiply(rotationAbout({uniform(generator), uniform(generator), uniform(generator)}, uniform(generator)));
      other.translate(center);
      EXPECT_GE(sumOfSquares(other, there), smallest - 1e-9);
    }
  }
}

TEST(LeastSquaresRegistration, OfDegenerateInput)
{
  const double nan = std::nan("");
  Vertices<float> point(3, {1, 2, 3});
  point.transform(point.computeLSRegistration(Vertices<float>(3, {4, 5, 6})));
  EXPECT_EQ(point.toVector(), (Vector<float>{4, 5, 6}));
  const Vertices<double> line(2, {0, 0, 2, 0});
  Vertices<double> moved = line;
  moved.transform(line.computeLSRegistration(Vertices<double>(2, {5, 5, 5, 7})));
  EXPECT_NEAR(moved[1][1], 7, 1e-15);
  expectError<SizeError>("no pairs", [&] { line.computeLSRegistration(line, {}); });
  expectError<RangeError>("vertex 2", [&] { line.computeLSRegistration(line, {{0, 2}}); });
  expectError<SizeError>("no vertices", [] { Vertices<double>(3).principalAxes(); });
  const Vertices<double> undefinedInPlane(2, {nan, 0, 1, 2});
  expectError<MathError>("finite", [&] { undefinedInPlane.computeLSRegistration(undefinedInPlane); });
  const Vertices<double> undefined(3, {nan, 0, 0, 1, 2, 3});
  expectError<MathError>("", [&] { undefined.principalAxes(); });
  expectError<MathError>("", [&] { undefined.computeLSRegistration(undefined); });
}
