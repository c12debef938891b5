#include "analysis/spatial/cdftools.h"

#include "analysis/spatial/distancecounts.h"
#include "tests/analysis/spatial/patterns.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>
#include <limits>

namespace
{
using Tools = CDFTools<double>;

TEST(CDFTools, CountsWhatIsNotAbove)
{
  EXPECT_EQ(Tools::cdf({1, 2, 2, 5}), Vector<double>({0.25, 0.5, 0.75, 1}));
  EXPECT_EQ(Tools::cdf({1, 2, 2, 5}, {0, 1, 1.5, 2, 5, 9}), Vector<double>({0, 0.25, 0.25, 0.75, 1, 1}));
  EXPECT_EQ(Tools::cdf({}, {0, 3}), Vector<double>({1, 1})) << "an empty sample";
  EXPECT_EQ(Tools::cdf({}).getSize(), 0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const Vector<double>& sample : {Vector<double>{2, 1}, Vector<double>{1, nan}, Vector<double>{nan}})
  {
    expectError<UsageError>("not sorted", [&] { Tools::cdf(sample); });
    expectError<UsageError>("not sorted", [&] { Tools::cdf(sample, {1}); });
  }
}

TEST(CDFTools, WorksPointByPoint)
{
  const Matrix<double> cdfs = {{0, 0.2, 1}, {0.1, 0.3, 1}, {0.8, 0.9, 1}, {0.3, 0.6, 1}};
  const Vector<double> average = Tools::average(cdfs);
  EXPECT_DOUBLE_EQ(average[0], 0.3);
  EXPECT_DOUBLE_EQ(average[1], 0.5);
  EXPECT_EQ(average[2], 1);
  EXPECT_EQ(Tools::percentile(cdfs, 50), Vector<double>({0.3, 0.6, 1})) << "element round(1.5) of four";
  EXPECT_EQ(Tools::percentiles(cdfs, {0, 100}), Matrix<double>({{0, 0.2, 1}, {0.8, 0.9, 1}}));
  expectError<SizeError>("no CDF", [] { Tools::average(Matrix<double>()); });
  expectError<RangeError>("between 0 and 100", [&] { Tools::percentile(cdfs, 101); });
}

TEST(CDFTools, RanksTheSignedDeviation)
{
  const Vector<double> average = {0.25, 0.5, 1};
  EXPECT_EQ(Tools::deviation({0.5, 0, 1}, average), -0.5);
  EXPECT_EQ(Tools::deviation({0, 0.75, 1}, average), -0.25) << "the first of equal ones";
  const Matrix<double> cdfs = {{0.25, 0, 1}, {0.25, 0.5, 1}, {0.25, 0.75, 1}, {0.25, 0.75, 1}, {0.25, 1, 1}};
  EXPECT_EQ(Tools::rank({0.25, 0.75, 1}, average, cdfs), 3) << "two below, two equal";
  EXPECT_EQ(Tools::rank({0.25, 0, 1}, average, cdfs), 0.5);
  EXPECT_EQ(Tools::rank({1, 1, 1}, average, cdfs), 5) << "0.75 is above all";
}

/// The counts on the grid against the definition, with distances on, just below and just above its points.
template <class T> void expectCountsAsDefined(T precision)
{
  std::vector<T> sample;
  for (int j = 0; j < 300; ++j)
  {
    const T point = static_cast<T>(j) * precision;
    sample.insert(sample.end(), {point, std::nextafter(point, T(1e6)), std::nextafter(point, T(0))});
  }
  const T largest = static_cast<T>(299.5) * precision;
  sample.push_back(largest);
  DistanceCounts<T> counts(precision);
  counts.add(sample);
  std::sort(sample.begin(), sample.end());
  Vector<T> grid(counts.getGridSize());
  for (int j = 0; j < grid.getSize(); ++j) grid[j] = static_cast<T>(j) * precision;
  ASSERT_EQ(grid.getSize(), 300) << "the largest multiple not above the largest distance";
  const Vector<T> expected = CDFTools<T>::cdf(Vector<T>(sample), grid);
  const std::vector<T> cdf = counts.cdf();
  ASSERT_GE(cdf.size(), 300u);
  for (int j = 0; j < grid.getSize(); ++j) ASSERT_EQ(cdf[static_cast<std::size_t>(j)], expected[j]) << j;
  EXPECT_EQ(cdf.back(), 1);
}

TEST(DistanceCounts, AgreeWithTheDefinition)
{
  for (const double precision : {1.0, 0.1, 0.7, 1.0 / 3, 1e-3, 123.456})
  {
    SCOPED_TRACE(precision);
    expectCountsAsDefined<float>(static_cast<float>(precision));
    expectCountsAsDefined<double>(precision);
    expectCountsAsDefined<long double>(static_cast<long double>(precision));
  }
}

TEST(DistanceCounts, RefuseWhatHasNoPlace)
{
  DistanceCounts<double> counts(0.5);
  EXPECT_EQ(counts.getGridSize(), 1);
  EXPECT_EQ(counts.cdf(), std::vector<double>{1});
  for (const double bad : {-1.0, 1e6, std::nan(""), std::numeric_limits<double>::infinity()})
    expectError<ValueError>("distance", [&] { counts.add(std::vector<double>{1, bad}); });
  for (const double bad : {0.0, -1.0, std::nan("")})
    expectError<ValueError>("precision", [&] { DistanceCounts<double> c(bad); });
}
} // namespace
