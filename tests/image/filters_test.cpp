#include "image/filters/gaussianfilter.h"
#include "image/filters/meanfilter.h"
#include "tests/support/errors.h"
#include "tests/support/randomvolumes.h"
#include "tests/support/threads.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{
/// The sum of weight(di, dj, dk) times the voxel that far away, over all distances up to the radii.
template <class T, class Weight>
long double weightedSum(const VoxelMatrix<T>& volume, const int (&at)[3], const int (&radii)[3], const Weight& weight)
{
  const auto inside = [](int i, int size) { return std::clamp(i, 0, size - 1); };
  long double sum = 0;
  for (int di = -radii[0]; di <= radii[0]; ++di)
    for (int dj = -radii[1]; dj <= radii[1]; ++dj)
      for (int dk = -radii[2]; dk <= radii[2]; ++dk)
        sum += weight(di, dj, dk) * static_cast<long double>(volume(inside(at[0] + di, volume.getSize1()),
                                                                    inside(at[1] + dj, volume.getSize2()),
                                                                    inside(at[2] + dk, volume.getSize3())));
  return sum;
}

/// Expects the filter to replace every voxel by the weighted mean of its neighbours, up to the tolerance and, for
/// integers, rounding.
template <class T, class Weight> void expectWeightedMeans(NeighbourhoodFilter<T>& filter, const VoxelMatrix<T>& volume,
                                                          const int (&radii)[3], const Weight& weight,
                                                          long double tolerance)
{
  VoxelMatrix<T> filtered = volume;
  filter.apply(filtered);
  VoxelMatrix<T> ones(1, 1, 1);
  ones.setOnes();
  const long double total = weightedSum(ones, {0, 0, 0}, radii, weight);
  const long double rounding = std::is_integral_v<T> ? 0.5L : 0;
  for (int k = 0; k < volume.getSize3(); ++k)
    for (int i = 0; i < volume.getSize1(); ++i)
      for (int j = 0; j < volume.getSize2(); ++j)
        ASSERT_NEAR(filtered(i, j, k), weightedSum(volume, {i, j, k}, radii, weight) / total, rounding + tolerance)
            << "at " << i << ", " << j << ", " << k;
}

template <class T> void expectMeans(const VoxelMatrix<T>& volume, const int (&sizes)[3], long double tolerance)
{
  SCOPED_TRACE(testing::Message() << "mean of " << sizes[0] << " x " << sizes[1] << " x " << sizes[2] << " on "
                                  << volume.getSize1() << " x " << volume.getSize2() << " x " << volume.getSize3()
                                  << " " << typeName<T>());
  MeanFilter<T> filter;
  filter.setSize(sizes[0], sizes[1], sizes[2]);
  expectWeightedMeans(
      filter, volume, {sizes[0] / 2, sizes[1] / 2, sizes[2] / 2}, [](int, int, int) { return 1.0L; }, tolerance);
}

template <class T> void expectGaussians(const VoxelMatrix<T>& volume, const double (&sigmas)[3], long double tolerance)
{
  SCOPED_TRACE(testing::Message() << "sigma " << sigmas[0] << ", " << sigmas[1] << ", " << sigmas[2] << " on "
                                  << volume.getSize1() << " x " << volume.getSize2() << " x " << volume.getSize3()
                                  << " " << typeName<T>());
  GaussianFilter<T> filter;
  filter.setSigma(sigmas[0], sigmas[1], sigmas[2]);
  const auto radius = [&sigmas](int axis) { return static_cast<int>(std::lround(4 * sigmas[axis])); };
  const auto weight = [](int d, double sigma) {
    return d == 0 ? 1.0L : std::exp(-0.5L * static_cast<long double>(d / sigma) * static_cast<long double>(d / sigma));
  };
  expectWeightedMeans(
      filter, volume, {radius(0), radius(1), radius(2)},
      [&](int di, int dj, int dk) { return weight(di, sigmas[0]) * weight(dj, sigmas[1]) * weight(dk, sigmas[2]); },
      tolerance);
}

/// Values over the whole range of an integer type, of 0 to 1000 for others.
template <class T> VoxelMatrix<T> anyVolume(const int (&sizes)[3])
{
  using Limits = std::numeric_limits<T>;
  return randomVolume<T>(sizes[0], sizes[1], sizes[2],
                         [](double u)
                         {
                           const double lowest = std::is_integral_v<T> ? static_cast<double>(Limits::lowest()) : 0;
                           const double highest = std::is_integral_v<T> ? static_cast<double>(Limits::max()) : 1000;
                           return lowest + u * (highest - lowest);
                         });
}

constexpr int someSizes[][3] = {{1, 1, 1}, {6, 7, 5}, {3, 37, 9}, {20, 4, 3}, {4, 530, 2}, {9, 8, 1}};
} // namespace

template <class T> class Filters : public testing::Test
{
};
using ElementTypes =
    testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, float, double, long double>;
TYPED_TEST_SUITE(Filters, ElementTypes);

TYPED_TEST(Filters, FollowTheirDefinitions)
{
  using T = TypeParam;
  constexpr bool isInteger = std::is_integral_v<T>;
  for (const auto& sizes : someSizes)
  {
    const VoxelMatrix<T> volume = anyVolume<T>(sizes);
    expectMeans(volume, {1, 3, 5}, isInteger ? 1e-6 : 1e-4);
    expectMeans(volume, {7, 1, 13}, isInteger ? 1e-6 : 1e-4);
    expectGaussians(volume, {0.8, 0, 0.4}, 1e-2);
    expectGaussians(volume, {0, 1.6, 0.9}, 1e-2);
  }
  expectMeans(anyVolume<T>({1, 3, 2}), {9, 63, 201}, isInteger ? 1e-6 : 1e-4);
  constexpr int small[][3] = {{6, 7, 5}, {3, 7, 9}, {20, 4, 3}};
  for (const auto& sizes : small) // windows that reach beyond one or both ends
  {
    expectMeans(anyVolume<T>(sizes), {5, 21, 15}, isInteger ? 1e-6 : 1e-4);
    expectMeans(anyVolume<T>(sizes), {31, 7, 9}, isInteger ? 1e-6 : 1e-4);
  }
}

TEST(Filters, KeepDigits)
{
  expectMeans(anyVolume<double>({8, 20, 9}), {5, 5, 5}, 1e-11);
  expectGaussians(anyVolume<double>({8, 20, 9}), {1, 1, 1}, 1e-11);
  expectGaussians(anyVolume<float>({8, 20, 9}), {1, 1, 1}, 1e-3);
  expectGaussians(anyVolume<unsigned char>({8, 20, 9}), {1, 1, 1}, 1e-4);

  VoxelMatrix<float> constant(6, 70, 9);
  constant.fill(0.1F);
  const VoxelMatrix<float> before = constant;
  MeanFilter<float>().apply(constant);
  EXPECT_EQ(constant, before);
}

TEST(Filters, KeepStrangeValuesWithinTheirNeighbourhood)
{
  VoxelMatrix<float> volume(7, 40, 7);
  volume.setOnes();
  volume(3, 5, 3) = std::numeric_limits<float>::quiet_NaN();
  volume(3, 30, 3) = 1e30F;
  const auto isTouched = [](int i, int j, int k)
  { return std::abs(i - 3) <= 1 && std::abs(k - 3) <= 1 && (std::abs(j - 5) <= 1 || std::abs(j - 30) <= 1); };
  MeanFilter<float>().apply(volume);
  for (int k = 0; k < 7; ++k)
    for (int i = 0; i < 7; ++i)
      for (int j = 0; j < 40; ++j) EXPECT_EQ(volume(i, j, k) == 1, !isTouched(i, j, k)) << i << ", " << j << ", " << k;
}

TEST(Filters, DoTheSameToAPlaneAsToAVolumeOfOne)
{
  VoxelMatrix<float> volume = anyVolume<float>({50, 700, 1});
  PixelMatrix<float> plane = volume[0];
  const auto apply = [](auto& image)
  {
    MeanFilter<float> mean;
    mean.setSize(7, 5, 3);
    mean.apply(image);
    GaussianFilter<float>().apply(image);
  };
  apply(volume);
  apply(plane);
  for (int i = 0; i < 50; ++i)
    for (int j = 0; j < 700; ++j) ASSERT_NEAR(plane(i, j), volume(i, j, 0), 1e-3);
  PixelMatrix<float> empty;
  apply(empty);
}

namespace
{
template <class T> VoxelMatrix<T> filtered(const VoxelMatrix<T>& volume, int size, int numThreads)
{
  const NumThreads threads(numThreads);
  VoxelMatrix<T> result = volume;
  MeanFilter<T> mean;
  mean.setSize(size);
  mean.apply(result);
  GaussianFilter<T>().apply(result);
  return result;
}
} // namespace

TEST(Filters, DoNotDependOnTheNumberOfThreads)
{
  const VoxelMatrix<float> floats = anyVolume<float>({30, 600, 40});
  const VoxelMatrix<unsigned short> integers = anyVolume<unsigned short>({30, 600, 40});
  for (const int size : {3, 31, 20'001})
  {
    const VoxelMatrix<float> expected = filtered(floats, size, 1);
    const VoxelMatrix<unsigned short> expectedIntegers = filtered(integers, size, 1);
    for (const int numThreads : {2, 7})
    {
      EXPECT_EQ(filtered(floats, size, numThreads), expected) << size;
      EXPECT_EQ(filtered(integers, size, numThreads), expectedIntegers) << size;
    }
  }
}

TEST(Filters, TellTheMemoryTheyTake)
{
  VoxelMatrix<unsigned char> volume(10, 20, 30); // slices are planes
  MeanFilter<unsigned char> mean;
  mean.setSize(7);
  EXPECT_EQ(mean.workingMemory(volume), 4 * 200); // the slices that leave later, and the one that leaves
  mean.setSize(20'001);
  EXPECT_EQ(mean.workingMemory(volume), 30 * 200);
  GaussianFilter<unsigned char> gaussian;
  gaussian.setSigma(2);
  EXPECT_EQ(gaussian.workingMemory(volume), 17 * 200 * 4); // of float sums
}

TEST(Filters, RefuseOtherSizes)
{
  MeanFilter<float> mean;
  for (const int size : {0, -1, 4, 2 * largestRadius + 3})
    expectError<ValueError>("must be odd", [&] { mean.setSize(3, 3, size); });
  GaussianFilter<float> gaussian;
  for (const double sigma : {-0.1, 25'000.5, std::numeric_limits<double>::quiet_NaN()})
    expectError<ValueError>("from 0 to 25000", [&] { gaussian.setSigma(sigma); });
}

TEST(Filters, AreFoundByName)
{
  FilterOptions options;
  options.size = 5;
  options.sigma = 2.5;
  for (const FilterKind* kind : filterKinds())
  {
    EXPECT_EQ(&findFilterKind(kind->name), kind);
    EXPECT_TRUE(kind->make<unsigned char>(options));
  }
  const auto mean = findFilterKind("mean").make<float>(options);
  EXPECT_EQ(dynamic_cast<MeanFilter<float>&>(*mean).getSize()[0], 5);
  const auto gaussian = findFilterKind("gaussian").make<short>(options);
  EXPECT_EQ(dynamic_cast<GaussianFilter<short>&>(*gaussian).getSigma()[1], 2.5);
  expectError<NameError>("gaussian, mean", [] { findFilterKind("median"); });
}
