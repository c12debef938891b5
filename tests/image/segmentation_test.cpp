#include "image/segmentation/connectedcomponents.h"
#include "image/segmentation/isodatathresholding.h"
#include "image/segmentation/otsuthresholding.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"
#include "tests/support/randomvolumes.h"
#include "tests/support/threads.h"

#include <gmock/gmock.h>
#include <limits>
#include <numeric>

namespace
{
template <class T> PixelMatrix<T> plane(std::initializer_list<std::initializer_list<T>> rows)
{
  return PixelMatrix<T>(Matrix<T>(rows));
}

template <class T> std::vector<T> elementsOf(const PixelMatrix<T>& matrix)
{
  return {matrix.data(), matrix.data() + matrix.getNumElements()};
}

/// Counts with these numbers of elements in these bins.
Vector<long> countsWith(int numBins, const std::vector<std::pair<int, long>>& filled)
{
  Vector<long> counts(numBins);
  counts.setZeros();
  for (const auto& [bin, count] : filled) counts[bin] = count;
  return counts;
}

Vector<long> randomCounts(int numBins, unsigned long seed)
{
  RandomGenerator generator(seed);
  Vector<long> counts(numBins);
  counts.apply([&](long) { return generator.uniformLF() < 0.5 ? 0 : static_cast<long>(generator.uniformL(1000)); });
  counts[static_cast<int>(generator.uniformL(static_cast<unsigned long>(numBins)))] = 1;
  return counts;
}

struct Class
{
  Class(const Vector<long>& counts, int first, int last)
  {
    for (int k = first; k < last; ++k)
    {
      count += static_cast<long double>(counts[k]);
      sum += static_cast<long double>(k) * static_cast<long double>(counts[k]);
    }
  }
  long double mean() const { return sum / count; }

  long double count = 0;
  long double sum = 0;
};

/// The criterion of Otsu's method from its definition.
long double varianceBetween(const Vector<long>& counts, int split)
{
  const Class lower(counts, 0, split), upper(counts, split, counts.getSize());
  if (lower.count == 0 || upper.count == 0) return 0;
  const long double all = lower.count + upper.count, distance = lower.mean() - upper.mean();
  return lower.count / all * (upper.count / all) * distance * distance;
}

/// A letter is a region; '.' belongs to none.
PixelMatrix<char> drawing(const std::vector<std::string>& rows)
{
  PixelMatrix<char> matrix(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()));
  for (int i = 0; i < matrix.getSize1(); ++i)
    for (int j = 0; j < matrix.getSize2(); ++j)
      matrix(i, j) = rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
  return matrix;
}
} // namespace

using testing::ElementsAre;

struct Reports : ProgressObserver
{
  void started(const std::string&) override {}
  void progressed(double share) override { shares.push_back(share); }
  void finished() override {}
  std::vector<double> shares;
};

TEST(Thresholding, ComparesWithTheThreshold)
{
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const PixelMatrix<double> image = plane<double>({{-1, 2.5}, {2.4, nan}});
  Thresholding<double> step;
  EXPECT_EQ(step.getThreshold(), 0);
  EXPECT_EQ(step.getForeground(), 255);
  EXPECT_EQ(step.getBackground(), 0);
  EXPECT_TRUE(step.foregroundIsAbove());

  step.setThreshold(2.5);
  PixelMatrix<double> result = image;
  step.apply(result);
  EXPECT_THAT(elementsOf(result), ElementsAre(0, 255, 0, 255));

  step.setForeground(7);
  step.setBackground(-7);
  step.setForegroundIsAbove(false);
  result = image;
  step.apply(result);
  EXPECT_THAT(elementsOf(result), ElementsAre(7, -7, 7, -7));
  EXPECT_THAT(elementsOf(Thresholding<double>::levelSetMask(image, 2.4)), ElementsAre(0, 255, 255, 255));
}

TEST(Thresholding, TreatsAllVoxelsAndReportsEachRowOfAPlane)
{
  Thresholding<unsigned short> step;
  step.setThreshold(500);
  VoxelMatrix<unsigned short> volume = randomVolume<unsigned short>(300, 500, 3, [](double u) { return 1000 * u; });
  const VoxelMatrix<unsigned char> mask = Thresholding<unsigned short>::levelSetMask(volume, 500);
  const Vector<long> counts = volume.histogram(-0.5, 500, 2);
  step.apply(volume);
  EXPECT_EQ(volume.sum(), 255.0 * static_cast<double>(counts[1]));
  EXPECT_EQ(volume.toType<int>(), mask.toType<int>());

  Reports reports;
  step.addObserver(reports);
  PixelMatrix<unsigned short> image(4, 1);
  image.setZeros();
  const NumThreads oneThread(1);
  step.apply(image);
  EXPECT_THAT(reports.shares, ElementsAre(0.25, 0.5, 0.75, 1, 1)); // the end of the last row and of the step
}

TEST(Otsu, SeparatesTheClassesBest)
{
  const long many = 1L << 40;
  EXPECT_EQ(otsuBin(countsWith(256, {{10, 5}, {200, 5}})), 11);
  EXPECT_EQ(otsuBin(countsWith(256, {{77, 5}})), 0);
  EXPECT_EQ(otsuBin(countsWith(256, {})), 0);
  EXPECT_EQ(otsuBin(countsWith(1, {{0, 3}})), 0);
  EXPECT_EQ(otsuBin(countsWith(65536, {{100, many}, {30000, many}, {65000, many / 8}})), 101);
  for (unsigned long seed = 0; seed < 50; ++seed)
  {
    const Vector<long> counts = randomCounts(40, seed);
    const int bin = otsuBin(counts);
    for (int split = 1; split < counts.getSize(); ++split)
      EXPECT_GE(varianceBetween(counts, bin) * (1 + 1e-12L), varianceBetween(counts, split)) << "seed " << seed;
  }
}

TEST(Isodata, EndsInTheMiddleBetweenTheMeans)
{
  const long many = 1L << 40;
  const struct
  {
    const char* name;
    Vector<long> counts;
    int bin;
  } cases[] = {
      {"no element", countsWith(256, {}), 0},
      {"one bin", countsWith(256, {{77, 5}}), 77},
      {"neighbours", countsWith(256, {{4, 1}, {5, 1}}), 5},
      {"a lower class that becomes empty", countsWith(256, {{4, 1000}, {5, 1}, {6, 1}}), 5},
      {"two spikes", countsWith(256, {{10, many}, {201, 1}}), 105},
      {"a mean of 2/3 and one of 10/3, whose middle is 2", countsWith(5, {{0, 1}, {1, 2}, {3, 2}, {4, 1}}), 2},
  };
  for (const auto& c : cases) EXPECT_EQ(isodataBin(c.counts), c.bin) << c.name;
  for (unsigned long seed = 0; seed < 50; ++seed)
  {
    const Vector<long> counts = randomCounts(300, seed);
    const int bin = isodataBin(counts);
    const Class lower(counts, 0, bin), upper(counts, bin, counts.getSize());
    EXPECT_EQ(static_cast<int>((lower.mean() + upper.mean()) / 2), bin) << "seed " << seed;
  }
}

TEST(HistogramThresholding, TakesLowerEdgesOfBins)
{
  OtsuThresholding<unsigned char> otsu;
  PixelMatrix<unsigned char> image = plane<unsigned char>({{10, 200}, {200, 10}});
  EXPECT_EQ(otsu.computeThreshold(image), 10.5);
  otsu.apply(image);
  EXPECT_EQ(otsu.getThreshold(), 11);
  EXPECT_THAT(elementsOf(image), ElementsAre(0, 255, 255, 0));

  IsodataThresholding<float> isodata;
  isodata.setBins(-2.0F, 0.5F, 8); // the middle of bins 0 and 7 is 3, the first of the upper class
  PixelMatrix<float> values = plane<float>({{-100, 0.9F}, {-1.9F, 100}});
  EXPECT_EQ(isodata.computeThreshold(values), -0.5F);
  isodata.apply(values);
  EXPECT_THAT(elementsOf(values), ElementsAre(0, 255, 0, 255));
}

TEST(HistogramThresholding, ReportsTheHistogramAndTheRows)
{
  OtsuThresholding<unsigned char> step;
  Reports reports;
  step.addObserver(reports);
  PixelMatrix<unsigned char> image = plane<unsigned char>({{10}, {200}, {200}, {10}});
  const NumThreads oneThread(1);
  step.apply(image);
  EXPECT_THAT(reports.shares, ElementsAre(0.5, 0.625, 0.75, 0.875, 1, 1, 1)); // rows end, and both steps
}

TEST(HistogramThresholding, WorksBeyondTheRangeOfTheType)
{
  OtsuThresholding<unsigned char> step;
  VoxelMatrix<unsigned char> volume = randomVolume<unsigned char>(3, 4, 5, [](double u) { return 256 * u; });
  step.setBins(1000, 10, 5); // all voxels are below the first bin, whose lower edge is the threshold
  step.apply(volume);
  EXPECT_EQ(volume.max(), 0);
  step.setBins(-1000, 10, 5);
  step.apply(volume);
  EXPECT_EQ(volume.min(), 255);

  VoxelMatrix<unsigned char> empty;
  step.apply(empty);
  expectError<ValueError>("width", [&] { step.setBins(0, 0, 5); });
  expectError<ValueError>("at least one bin", [&] { step.setBins(0, 1, 0); });
  expectError<ValueError>("finite", [&] { step.setBins(std::numeric_limits<double>::infinity(), 1, 5); });
}

TEST(Contours, EnclosesARegion)
{
  const PixelMatrix<char> image = drawing({
      ".a..bbb",
      "aa..b.b",
      "..a.bbb",
      "c......",
  });
  const struct
  {
    const char* name;
    int row, column;
    std::vector<std::vector<int>> points;
  } cases[] = {
      {"one pixel at the border", 3, 0, {{0, 3}, {1, 3}, {1, 4}, {0, 4}}},
      {"three pixels, a fourth at a corner", 0, 1, {{1, 1}, {1, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 1}}},
      {"from the right of a hole", 1, 6, {{4, 0}, {7, 0}, {7, 3}, {4, 3}}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    Curve<int> curve;
    Thresholding<char>::extractCurve(curve, c.row, c.column, image, image(c.row, c.column));
    EXPECT_THAT(pointsOf(curve), testing::UnorderedElementsAreArray(c.points));
    EXPECT_TRUE(curve.isClosed());
    EXPECT_GT(curve.twiceArea(0, 1), 0);
  }
  Curve<int> curve;
  expectError<RangeError>("outside the matrix", [&] { Thresholding<char>::extractCurve(curve, 4, 0, image, 'c'); });
  expectError<ValueError>("outside the region", [&] { Thresholding<char>::extractCurve(curve, 0, 0, image, 'c'); });
}

TEST(Contours, EncloseAllRegionsAndHoles)
{
  Thresholding<unsigned char> step;
  step.setThreshold(1);
  ProgressSubject subject;
  for (unsigned long seed = 0; seed < 20; ++seed)
  {
    const VoxelMatrix<unsigned char> mask = randomMask(17, 23, 1, 0.6, seed);
    double area = 0;
    long numOuter = 0;
    for (const Curve<int>& curve : step.contours(mask[0]))
    {
      area += curve.twiceArea(0, 1) / 2;
      numOuter += curve.isClockwise(0, 1) ? 0 : 1;
    }
    EXPECT_EQ(area, mask.sum()) << "seed " << seed;
    EXPECT_EQ(numOuter, ConnectedComponents(mask[0], subject).getNumLabels()) << "seed " << seed;
  }
}
