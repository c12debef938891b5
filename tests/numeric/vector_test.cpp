#include "numeric/squarematrix.h"
#include "tests/numeric/support.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <functional>

namespace
{
const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

/// The definition of histogram bins.
template <class T> int bisectedBin(T value, T origin, T width, int count)
{
  using Edge = std::conditional_t<std::is_integral_v<T>, long, T>;
  int lower = 0, upper = count;
  while (upper > lower + 1)
  {
    const int middle = (lower + upper) / 2;
    (static_cast<Edge>(origin) + static_cast<Edge>(middle) * static_cast<Edge>(width) > value ? upper : lower) = middle;
  }
  return lower;
}

template <class T> void expectBisectedHistogram(const Vector<T>& values, T origin, T width, int count)
{
  SCOPED_TRACE(::testing::Message() << "origin " << origin << " width " << width << " count " << count);
  Vector<unsigned int> expected(count);
  expected.setZeros();
  for (const T& x : values) ++expected[bisectedBin(x, origin, width, count)];
  EXPECT_EQ(values.histogram(origin, width, count), expected);
}

template <class T> T sortedMedian(Vector<T> v)
{
  std::sort(v.begin(), v.end());
  const int n = v.getSize();
  return n % 2 == 1 ? v[n / 2] : v[n / 2 - 1] / 2 + v[n / 2] / 2;
}
} // namespace

TEST(VectorStorage, ShallowVectorsViewAnothersBuffer)
{
  double buffer[] = {1, 2, 3};
  Vector<double> view(3, buffer);
  EXPECT_TRUE(view.isShallow());
  view = Vector<double>{4, 5, 6};
  EXPECT_EQ(buffer[2], 6);
  Vector<double> moved(std::move(view));
  EXPECT_TRUE(moved.isShallow());
  Vector<double> owner;
  owner = std::move(moved); // values, not the view
  owner[0] = 9;
  EXPECT_EQ(buffer[0], 4);
  EXPECT_FALSE(Vector<double>(Vector<double>(3, buffer)).isEmpty());
  const Vector<double> sum = Vector<double>(3, buffer) + 1.0;
  EXPECT_EQ(buffer[0], 4);
  EXPECT_EQ(sum[0], 5);
}

TEST(VectorStorage, ShallowVectorsRefuseToBeResized)
{
  double buffer[] = {1, 2};
  Vector<double> view(2, buffer), other{1, 2, 3};
  const std::string what = "This is a shallow vector, cannot be resized without data";
  expectError<SizeError>(
      what, [&] { view = other; }, "Vector<T>& Vector<T>::operator=(const Vector<T>&)");
  expectError<SizeError>(what, [&] { view.setSize(3); });
  expectError<SizeError>(what, [&] { view.append(1.0); });
  expectError<SizeError>(what, [&] { view.append(other); });
  expectError<SizeError>(what, [&] { view.prepend(other); });
  expectError<SizeError>("Vector size differ and at least one of them is shallow", [&] { other.swap(view); });
  other.setSize(2);
  other.fill(7);
  other.swap(view);
  EXPECT_EQ(buffer[1], 7);
  EXPECT_EQ(other, (Vector<double>{1, 2}));
}

TEST(VectorStorage, HandlesEmptyLargeAndTextVectors)
{
  EXPECT_EQ(Vector<int>(-3).getSize(), 0);
  EXPECT_EQ(Vector<int>(0), Vector<int>());
  Vector<double> large(1 << 20);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(large.data()) % (2 << 20), 0u); // huge pages can serve it
  large.setSequence(0);
  EXPECT_EQ(Vector<double>(large).sum(), (1 << 19) * ((1 << 20) - 1.0));
  Vector<std::string> names(2);
  names[1] = "a text that is too long to be kept inside the string itself";
  names.append(std::string("b"));
  names.append(names);
  EXPECT_EQ(names.getSize(), 6);
  names.sort();
  EXPECT_EQ(names.find("b"), 4);
  EXPECT_EQ((Vector<long>{LONG_MAX, LONG_MIN}).min(), LONG_MIN);
}

TEST(VectorStorage, ConvertsLikeSingleNumbers)
{
  const Vector<double> v{1.9, -1.9, 200};
  EXPECT_EQ(v.toType<int>(), (Vector<int>{1, -1, 200}));
  EXPECT_EQ((Vector<int>{300, -1}).toType<unsigned char>(), (Vector<unsigned char>{44, 255}));
  EXPECT_EQ((Vector<unsigned int>{4000000000u}).toType<double>(), (Vector<double>{4e9}));
  EXPECT_EQ((Vector<unsigned int>{7}).toType<unsigned int>(), (Vector<unsigned int>{7}));
  EXPECT_EQ((Matrix<float>{{1.5f, 2}}).toType<long double>(), (Matrix<long double>{{1.5L, 2}}));
}

TEST(VectorPieces, RefusesWhatIsOutside)
{
  Vector<int> v{1, 2, 3};
  EXPECT_NO_THROW(v.copy(3, 0));
  EXPECT_EQ(v.copyUntil(-1).getSize(), 0);
  for (const std::function<void()>& call :
       std::initializer_list<std::function<void()>>{
           [&] { v.copy(2, 2); }, [&] { v.copy(-1, 1); }, [&] { v.copy(1, INT_MAX); }, [&] { v.copyFrom(4); },
           [&] { v.copyUntil(3); }, [&] { v.paste(2, v); }, [&] { v.setCanonical(3); }})
    EXPECT_THROW(call(), RangeError);
}

TEST(VectorStatistics, RefuseEmptyVectors)
{
  const Vector<double> v;
  const struct
  {
    const char* where;
    std::function<void()> call;
  } cases[] = {{"T Vector<T>::min() const", [&] { v.min(); }},
               {"T Vector<T>::max() const", [&] { v.max(); }},
               {"Vector<T> Vector<T>::range() const", [&] { v.range(); }},
               {"int Vector<T>::minPos() const", [&] { v.minPos(); }},
               {"int Vector<T>::maxPos() const", [&] { v.maxPos(); }},
               {"T Vector<T>::sum() const", [&] { v.sum(); }},
               {"T Vector<T>::mean() const", [&] { v.mean(); }},
               {"T Vector<T>::median() const", [&] { v.median(); }},
               {"T Vector<T>::sse() const", [&] { v.sse(); }},
               {"T Vector<T>::var() const", [&] { v.var(); }},
               {"T Vector<T>::sem(bool) const", [&] { v.sem(false); }},
               {"T Vector<T>::prod() const", [&] { v.prod(); }}};
  for (const auto& c : cases) expectError<SizeError>("This vector is empty.", c.call, c.where);
}

TEST(VectorStatistics, RefuseWhatTheyCannotAnswer)
{
  const Vector<double> one{1}, unsorted{2, 1};
  expectError<SizeError>("This vector contains a single value.", [&] { one.sem(true); });
  EXPECT_EQ(one.sem(false), 0);
  expectError<SizeError>("This vector does not contain enough elements", [&] { one.diff(1); });
  expectError<UsageError>("This vector is not sorted in increasing order", [&] { unsorted.percentile(50); });
  EXPECT_THROW((Vector<double>{1, notANumber}.percentile(50)), UsageError);
  EXPECT_THROW(one.percentile(101), RangeError);
  EXPECT_THROW(one.percentile(notANumber), RangeError);
  EXPECT_THROW(one.histogram(0, 1, 0), ValueError);
  EXPECT_THROW(one.histogram(0, 1, 2, unsorted), SizeError);
}

TEST(VectorStatistics, GiveHandComputedValues)
{
  const Vector<double> v{1, 2, 3, 4};
  EXPECT_EQ(v.var(), 1.25);
  EXPECT_EQ(v.median(), 2.5);
  EXPECT_EQ(v.percentile(50), 3);
  EXPECT_EQ(v.mad(), 1);
  EXPECT_EQ(v.diff(3), (Vector<double>{3, 0, 0, 0}));
  EXPECT_DOUBLE_EQ(v.sem(true), std::sqrt(5.0 / 12));
  EXPECT_DOUBLE_EQ(v.sem(false), std::sqrt(5.0) / 4);
  EXPECT_EQ((Vector<double>{-5, 0.5, 3.9, 99}.histogram(0, 1, 4)), (Vector<unsigned int>{2, 0, 0, 2}));
  EXPECT_EQ((Vector<double>{-5, 0.5, 3.9, 99}.histogram(0, 1, 4, v)), (Vector<double>{3, 0, 0, 7}));
  EXPECT_EQ((Vector<double>{0.5, -0.9, 0.9}.closestAxis()), 1);
  EXPECT_EQ((Vector<int>{3, 1, INT_MIN}.closestAxis()), 2);
}

TEST(VectorStatistics, MedianEqualsThatOfSortedElements)
{
  RandomGenerator generator(11);
  for (int n : {1, 2, 3, 4, 5, 100, 1001})
  {
    const Vector<double> v = randomVector<double>(n, generator);
    EXPECT_DOUBLE_EQ(v.median(), sortedMedian(v)) << n;
  }
  EXPECT_EQ((Vector<int>{INT_MAX, INT_MAX - 2}).median(), INT_MAX - 1);
  EXPECT_EQ((Vector<int>{-3, -2}).median(), -2); // truncated towards zero
  EXPECT_EQ((Vector<unsigned char>{255, 253}).median(), 254);
  EXPECT_EQ((Vector<double>{DBL_MAX, DBL_MAX}).median(), DBL_MAX);
  EXPECT_TRUE(std::isnan((Vector<double>{1, notANumber, 2, 3}).median()));
}

TEST(VectorStatistics, TakeCareOfNaN)
{
  Vector<double> v{notANumber, 2, notANumber, 1};
  EXPECT_EQ(v.min(), 1);
  EXPECT_EQ(v.maxPos(), 1);
  EXPECT_EQ(v.closestAxis(), 1);
  EXPECT_EQ(v.numbers(), (Vector<double>{2, 1}));
  v.sort();
  EXPECT_EQ(v.copy(0, 2), (Vector<double>{1, 2}));
  EXPECT_TRUE(std::isnan(v[2]) && std::isnan(v[3]) && std::isnan(v.sum()));
}

TEST(VectorStatistics, KeepTheDigitsOfLongSums)
{
  const int n = 10'000'000;
  Vector<float> tenths(n);
  tenths.fill(0.1f);
  EXPECT_EQ(tenths.sum(), static_cast<float>(static_cast<double>(0.1f) * n));
  EXPECT_EQ(tenths.mean(), 0.1f);
  EXPECT_EQ(tenths.var(), 0);
  Vector<double> shifted{1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16};
  EXPECT_EQ(shifted.sse(), 90);
  EXPECT_EQ((Vector<unsigned char>{200, 100}).sum(), 44); // modulo 256
  EXPECT_EQ((Vector<int>{INT_MAX, 1, -1}).sum(), INT_MAX);
}

TEST(VectorHistogram, EqualsTheBisection)
{
  RandomGenerator generator(17);
  for (int round = 0; round < 200; ++round)
  {
    Vector<float> v = randomVector<float>(500, generator, -3, 3);
    const float origin = static_cast<float>(generator.uniformLF(-2, 2));
    const float width = static_cast<float>(generator.uniformLF(-0.01, 0.2));
    const int count = 1 + static_cast<int>(generator.uniformL(100));
    for (int k = 0; k < 100; ++k) // edges and their neighbours
      v[k] = std::nextafter(origin + static_cast<float>(k % count) * width, static_cast<float>(k % 3 - 1) * 9);
    v.paste(100, Vector<float>{float(notANumber), float(infinity), -float(infinity), 0, -0.0f, 1e30f, -1e30f});
    expectBisectedHistogram(v, origin, width, count);
  }
  const Vector<double> borders{notANumber, infinity, -infinity, 0, -1, 1, 1e308, -1e308, 5e-324, 0.3};
  for (double origin : {0.0, 1.0, -1e308, infinity, notANumber})
    for (double width : {0.0, 0.1, -1.0, 1e308, 1e-310, infinity, notANumber})
      for (int count : {1, 2, 7}) expectBisectedHistogram(borders, origin, width, count);
}

TEST(VectorHistogram, EqualsTheBisectionForIntegers)
{
  const Vector<int> v{INT_MIN, INT_MAX, -1, 0, 1, 2, 9, 10, 99};
  for (int origin : {INT_MIN, -1, 0, INT_MAX})
    for (int width : {INT_MIN, -1, 0, 1, 3, INT_MAX})
      for (int count : {1, 2, 10}) expectBisectedHistogram(v, origin, width, count);
  Vector<unsigned char> all(256);
  all.setSequence(0);
  expectBisectedHistogram<unsigned char>(all, 0, 1, 256);
  expectBisectedHistogram<unsigned char>(all, 10, 7, 30);
  expectBisectedHistogram<long>({LONG_MAX / 4, -5, 3}, 0, 1, 4);
}

TEST(VectorAlgebra, RefusesSizesThatDoNotFit)
{
  Vector<double> x{1, 2, 3}, y{1, 2};
  const std::string what = "The two vectors have different sizes";
  expectError<SizeError>(
      what, [&] { x += y; }, "Vector<T>& Vector<T>::operator+=(const Vector<T>&)");
  expectError<SizeError>(what, [&] { x - y; });
  expectError<SizeError>(what, [&] { x.scalarProduct(y); });
  expectError<SizeError>(what, [&] { x.distance(y); });
  expectError<SizeError>(
      "At least one vector have a size different from 3", [&] { y.vectorProduct(x); },
      "Vector<T> Vector<T>::vectorProduct(const Vector<T>&) const");
  expectError<SizeError>("The mask is not the same length as this vector", [&] { x.corr(y, y); });
  expectError<SizeError>("The mask is not the same length as this vector", [&] { x.conv(y, y); });
}

TEST(VectorAlgebra, SurvivesExtremeNumbers)
{
  EXPECT_DOUBLE_EQ((Vector<double>{3e200, 4e200}).norm(), 5e200);
  EXPECT_DOUBLE_EQ((Vector<double>{3e-200, 4e-200}).norm(), 5e-200);
  EXPECT_EQ((Vector<float>{3e30f, 4e30f}).norm(), 5e30f);
  EXPECT_EQ((Vector<int>{INT_MIN, 6} / -1), (Vector<int>{INT_MIN, -6}));
  EXPECT_EQ((Vector<unsigned char>{3}.manhattanDistance({5})), 2);
  Vector<double> zero{0, 0};
  zero.normalize();
  EXPECT_EQ(zero, (Vector<double>{0, 0}));
  EXPECT_EQ(zero.angle({1, 0}), 0);
}

template <class T> class SignedIntegers : public ::testing::Test
{
};
using SignedTypes = ::testing::Types<short, int, long>;
TYPED_TEST_SUITE(SignedIntegers, SignedTypes);

TYPED_TEST(SignedIntegers, WrapAround)
{
  using T = TypeParam;
  using V = Vector<T>;
  const T low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
  const std::pair<V, V> cases[] = {{V{low, high}.diff(), {-1, 0}},
                                   {V{high, low}.diff(), {1, 0}},
                                   {V{high, 1, 1}.csum(), {high, low, static_cast<T>(low + 1)}},
                                   {V{low, -1, high}.cprod(), {low, low, low}},
                                   {V{0, 0, 5}.histogram(0, 1, 2, V{high, 1, low}), {low, low}},
                                   {V{low, high} + V{-1, 1}, {high, low}},
                                   {V{low, 0} - V{1, low}, {high, low}},
                                   {V{low, high} * V{-1, 2}, {low, -2}},
                                   {-V{low, high}, {low, static_cast<T>(-high)}},
                                   {V{low} / V{-1}, {low}}};
  for (const auto& [actual, expected] : cases) EXPECT_EQ(actual, expected) << &expected - &cases[0].second;
  EXPECT_TRUE((V{low, 0, low}.isAntiSymmetrical())); // the lowest integer is its own opposite
  EXPECT_FALSE((V{low, 0, high}.isAntiSymmetrical()));
  EXPECT_EQ((V{low, low}.median()), low);
  EXPECT_EQ((V{low, low, high}.histogram(low, high, 3)), (Vector<unsigned int>{2, 0, 1}));
  if constexpr (MatrixElement<T>)
  {
    EXPECT_TRUE((SquareMatrix<T>{{0, low}, {low, 0}}.isAntiSymmetrical()));
    EXPECT_EQ((SquareMatrix<T>{{high, 0}, {0, 1}}.trace()), low);
  }
}

TEST(VectorAlgebra, MeasuresSmallAnglesExactly)
{
  for (double angle : {1e-12, 1e-6, 0.5, M_PI / 2, 3.0, M_PI})
    EXPECT_NEAR((Vector<double>{2, 0}.angle({3 * std::cos(angle), 3 * std::sin(angle)})), angle, 1e-15 * 4);
}

TEST(VectorAlgebra, CorrelatesAndConvolvesWithZerosBeyondTheEnds)
{
  const Vector<int> x{1, 2, 3, 4};
  EXPECT_EQ(x.corr({1, 10, 100}), (Vector<int>{210, 321, 432, 43}));
  EXPECT_EQ(x.conv({1, 10, 100}), (Vector<int>{12, 123, 234, 340}));
  EXPECT_EQ(x.conv({1, 10}), (Vector<int>{12, 23, 34, 40}));
  EXPECT_EQ(x.corr({1, 10, 100}, {1, 0, 1, 1}), (Vector<int>{10, 301, 430, 43}));
  EXPECT_EQ((Vector<int>{1}.corr({1, 10, 100, 1000, 10000})), (Vector<int>{100}));
}

TEST(VectorAlgebra, HouseholderVectorMapsToTheFirstAxis)
{
  RandomGenerator generator(3);
  for (int n : {1, 2, 5, 20})
  {
    const Vector<double> x = randomVector<double>(n, generator);
    Matrix<double> column(x, false);
    column.leftHouseholderTransform(x.householderVector());
    EXPECT_NEAR(std::abs(column(0, 0)), x.norm(), 1e-14);
    for (int i = 1; i < n; ++i) EXPECT_NEAR(column(i, 0), 0, 1e-14);
  }
}
