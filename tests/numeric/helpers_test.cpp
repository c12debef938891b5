#include "numeric/colormap.h"
#include "numeric/lengthunit.h"
#include "numeric/maths.h"
#include "numeric/progresssubject.h"
#include "numeric/recommendedrandomengine.h"
#include "numeric/squarematrix.h"
#include "numeric/stringtools.h"
#include "tests/numeric/support.h"

#include <climits>
#include <cmath>
#include <map>

namespace
{
/// Writes down what it is told.
class Recorder : public ProgressObserver
{
public:
  void started(const std::string& message) override { events.push_back(message); }
  void progressed(double share) override { shares.push_back(share); }
  void finished() override { events.push_back("finished"); }

  std::vector<std::string> events;
  std::vector<double> shares;
};

/// Chi-squared statistic of draws that should be equally frequent.
double chiSquared(const std::vector<int>& counts)
{
  double total = 0, statistic = 0;
  for (int count : counts) total += count;
  const double expected = total / static_cast<double>(counts.size());
  for (int count : counts) statistic += (count - expected) * (count - expected) / expected;
  return statistic;
}
} // namespace

TEST(LengthUnits, HaveNamesAndSymbols)
{
  EXPECT_EQ(LengthUnit(-6).name(), "micrometer");
  EXPECT_EQ(LengthUnit(-6).symbol(), "\xc2\xb5m");
  EXPECT_EQ(LengthUnit().name() + LengthUnit().symbol(), "meterm");
  EXPECT_EQ(LengthUnit(-24).name(), "yoptometer");
  EXPECT_EQ(LengthUnit(1).name() + LengthUnit(1).symbol(), "???meter???m");
  const std::vector<int> scales = LengthUnit::availableScales();
  EXPECT_EQ(scales.size(), 18u);
  EXPECT_TRUE(std::is_sorted(scales.begin(), scales.end()));
  EXPECT_EQ(LengthUnit::availableNames()[8], "centimeter");
  EXPECT_EQ(LengthUnit::availableSymbols()[10], "km");
  EXPECT_TRUE(LengthUnit(-6) == LengthUnit(-6) && LengthUnit(-6) != LengthUnit(-3));
}

TEST(MathsRounding, TakesHalvesAwayFromZero)
{
  const std::pair<double, int> cases[] = {
      {0.5, 1},         {-0.5, -1},        {2.5, 3},           {0.49999999999999994, 0}, {-2.4, -2},
      {1e300, INT_MAX}, {-1e300, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MIN},       {std::nan(""), 0}};
  for (const auto& [x, rounded] : cases) EXPECT_EQ(Maths::fround(x), rounded) << x;
  EXPECT_EQ(Maths::fround(2147483648.0f), INT_MAX);
}

TEST(StringToolsText, PadsTokenizesAndUnquotes)
{
  using namespace StringTools;
  EXPECT_EQ(toString(INT_MIN), "-2147483648");
  EXPECT_EQ(toString(7, 3), "007");
  EXPECT_EQ(toString(-7, 4), "-007");
  EXPECT_EQ(toString(-7, 4, ' '), "  -7");
  EXPECT_EQ(toString(12345, 3), "12345");
  EXPECT_EQ(tokenize("  a,b ,, c", " ,"), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_TRUE(tokenize(" ,", " ,").empty() && tokenize("", ",").empty());
  const std::pair<const char*, const char*> quoted[] = {{"\"a b\"", "a b"}, {"'a'", "a"}, {"\"\"", ""}, {"\"", "\""},
                                                        {"\"a'", "\"a'"},   {"a", "a"},   {"", ""}};
  for (const auto& [text, plain] : quoted) EXPECT_EQ(removeQuotes(text), plain);
}

TEST(Colormaps, RunFromColdToHot)
{
  const Colormap map = Colormap::cold2Hot(256);
  EXPECT_EQ(map.getColor(0), (Colormap::Color{0, 0, 255}));
  EXPECT_EQ(map.getColor(255), (Colormap::Color{255, 0, 0}));
  for (int i = 1; i < 256; ++i)
  {
    int step = 0;
    for (int k = 0; k < 3; ++k) step += std::abs(map.getColor(i)[k] - map.getColor(i - 1)[k]);
    EXPECT_LE(step, 5) << i; // 4 * 255 in 255 steps, rounded
  }
  EXPECT_EQ(Colormap::cold2Hot(0).getSize(), 0);
  expectError<SizeError>("Colormap dimension is not a multiple of 4", [] { Colormap::cold2Hot(6); });
  expectError<SizeError>("Colormap dimension is not a multiple of 4", [] { Colormap::cold2Hot(-4); });
  EXPECT_TRUE(Colormap(3).isGrayscale() && !map.isGrayscale());
}

TEST(RandomNumbers, AreThoseOfThePublishedGenerators)
{
  // Computed from the published definitions in another language: the second word that splitmix64 draws from seed 0 is
  // 0x6e789e6aa1b965f4, and the first output is rotl(word * 5, 7) * 9.
  RecommendedRandomEngine engine(0);
  EXPECT_EQ(engine.uniformLL(), 0x99ec5f36cb75f2b4u);
  engine.init(0);
  EXPECT_EQ(engine.uniformL(), 0x99ec5f36u);
  RandomGenerator a(42), b;
  b.init(42);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(a.uniformLF(), b.uniformLF());
}

TEST(RandomNumbers, AreUniform)
{
  RandomGenerator generator(2);
  std::vector<int> sevenths(7), tenths(10), signs(5);
  for (int i = 0; i < 100000; ++i)
  {
    ++sevenths[generator.uniformL(7)];
    ++tenths[static_cast<int>(generator.uniformLF(-5, 5) + 5)];
    ++signs[generator.uniformLL(-2, 2) + 2];
  }
  EXPECT_LT(chiSquared(sevenths), 22.5); // 0.1 % quantiles for 6, 9 and 4 degrees of freedom
  EXPECT_LT(chiSquared(tenths), 27.9);
  EXPECT_LT(chiSquared(signs), 18.5);
  EXPECT_NO_THROW(generator.uniformLL(LLONG_MIN, LLONG_MAX));
  EXPECT_EQ(generator.uniformLL(3, 3), 3);
  EXPECT_THROW(generator.uniformL(0), ValueError);
  EXPECT_THROW(generator.uniformLL(1, 0), ValueError);
}

TEST(RandomNumbers, ShuffleMakesEveryOrderEquallyLikely)
{
  RandomGenerator generator(8);
  std::map<std::string, int> orders;
  for (int i = 0; i < 24000; ++i)
  {
    Vector<char> v{'a', 'b', 'c', 'd'};
    v.shuffle(generator);
    ++orders[std::string(v.begin(), v.end())];
  }
  std::vector<int> counts;
  for (const auto& order : orders) counts.push_back(order.second);
  ASSERT_EQ(counts.size(), 24u);
  EXPECT_LT(chiSquared(counts), 49.7); // 0.1 % quantile for 23 degrees of freedom
  Vector<int> v{1, 2, 3};
  EXPECT_THROW(v.unshuffle({0, 1}), SizeError);
  EXPECT_THROW(v.unshuffle({0, 0, 1}), ValueError);
  EXPECT_THROW(v.unshuffle({0, 1, 3}), ValueError);
}

TEST(Quaternions, RotateLikeTheirMatrices)
{
  const double right = std::acos(0.0);
  const Quaternion<double> aboutZ(right, {0, 0, 2}), aboutX(right, {1, 0, 0});
  EXPECT_LT(aboutZ.rotate({1, 0, 0}).distance({0, 1, 0}), 1e-15);
  EXPECT_LT((aboutX * aboutZ).rotate({1, 0, 0}).distance({0, 0, 1}), 1e-15); // z first
  const Quaternion<double> q(0.7, {1, -2, 3});
  const Vector<double> v{0.3, 5, -1};
  const SquareMatrix<double> m(q);
  EXPECT_LT((m * v).distance(q.rotate(v)), 1e-14);
  EXPECT_LT((m * q.inverse().rotate(v)).distance(v), 1e-14);
  EXPECT_TRUE(m.isRHSystem());
  const SquareMatrix<double> homogeneous(q, true);
  EXPECT_EQ(homogeneous.copy(0, 0, 3, 3), Matrix<double>(m));
  EXPECT_EQ(homogeneous.getRow(3), (Vector<double>{0, 0, 0, 1}));
  Quaternion<double> zero(0, 0, 0, 0), two(0, 0, 2, 0);
  EXPECT_THROW(zero.normalize(), MathError);
  EXPECT_THROW(Quaternion<double>(1, {0, 0, 0}), MathError);
  two.normalize();
  EXPECT_EQ(two, Quaternion<double>(0, 0, 1, 0));
}

TEST(Progress, MapsStepsInsideSteps)
{
  ProgressSubject outer, inner;
  Recorder recorder;
  outer.addObserver(recorder);
  inner.setOuter(&outer);
  {
    const ProgressStep whole(outer, "whole", 4);
    outer.progress(1);
    outer.start("part", 2); // a quarter of the whole
    outer.progress(1);
    inner.start("deeper", 10); // an eighth
    inner.progress(5);
    inner.finish();
    outer.finish();
  }
  EXPECT_EQ(recorder.events, (std::vector<std::string>{"whole", "part", "deeper", "finished"}));
  EXPECT_EQ(recorder.shares, (std::vector<double>{0.25, 0.375, 0.4375, 0.5, 1}));
}

TEST(Progress, IsToldPerThousandthAndSurvivesOddCalls)
{
  ProgressSubject subject;
  Recorder recorder;
  subject.addObserver(recorder);
  subject.finish();
  subject.progress(3);
  const ProgressStep step(subject, "many", 1'000'000);
  for (int i = 0; i < 1'000'000; ++i) subject.progress(i);
  EXPECT_NEAR(static_cast<double>(recorder.shares.size()), 1000, 2);
  subject.start("none", 0);
  subject.progress(100);
  subject.finish();
  EXPECT_LE(recorder.shares.back(), 1);
  subject.removeObserver(recorder);
}

TEST(Progress, HonoursCancellation)
{
  ProgressSubject outer, inner;
  Recorder recorder;
  inner.addObserver(recorder);
  inner.setOuter(&outer);
  outer.cancel();
  EXPECT_TRUE(inner.isCancelled());
  try
  {
    const ProgressStep step(inner, "work", 2); // forgets the earlier cancellation
    EXPECT_NO_THROW(inner.throwIfCancelled("void f()"));
    outer.cancel();
    inner.throwIfCancelled("void f()");
    FAIL();
  }
  catch (const Cancelled& cancelled)
  {
    EXPECT_EQ(cancelled.getWhere(), "void f()");
  }
  EXPECT_TRUE(recorder.shares.empty()); // what was cancelled is not done
  EXPECT_EQ(recorder.events.back(), "finished");
}
