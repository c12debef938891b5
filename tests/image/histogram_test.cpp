#include "image/histogram.h"
#include "tests/support/errors.h"
#include "tests/support/randomvolumes.h"

#include <gtest/gtest.h>
#include <limits>

namespace
{
/// Counts by the definition of bins, for edges that are exact.
template <class T> Vector<long> countOneByOne(const VoxelMatrix<T>& volume, const VoxelMatrix<T>* mask, double origin,
                                              double width, int count)
{
  Vector<long> counts(count);
  counts.setZeros();
  for (std::size_t i = 0; i < volume.getNumVoxels(); ++i)
  {
    if (mask && mask->data()[i] == T(0)) continue;
    int bin = count - 1;
    while (bin > 0 && static_cast<double>(volume.data()[i]) < origin + bin * width) --bin;
    ++counts[bin];
  }
  return counts;
}
} // namespace

template <class T> class Histogram : public testing::Test
{
};
using ElementTypes = testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, float, double>;
TYPED_TEST_SUITE(Histogram, ElementTypes);

TYPED_TEST(Histogram, CountsElementsPerBin)
{
  using T = TypeParam;
  VoxelMatrix<T> volume = randomVolume<T>(104, 105, 100, [](double u) { return 120 * u; }); // more than one block
  volume(0, 0, 0) = std::numeric_limits<T>::max();
  volume(0, 1, 0) = std::numeric_limits<T>::lowest();
  const VoxelMatrix<T> mask = randomVolume<T>(
      104, 105, 100, [](double u) { return u < 0.3 ? 0 : 100; }, 2);
  const struct
  {
    double origin, width;
    int count;
  } cases[] = {{-0.5, 1, 64}, {10.5, 0.25, 100}, {50, 7, 1}, {-300, 100, 4}};
  for (const auto& c : cases)
  {
    const auto origin = static_cast<Real<T>>(c.origin), width = static_cast<Real<T>>(c.width);
    EXPECT_EQ(volume.histogram(origin, width, c.count), countOneByOne<T>(volume, nullptr, c.origin, c.width, c.count));
    EXPECT_EQ(volume.histogram(origin, width, c.count, mask),
              countOneByOne<T>(volume, &mask, c.origin, c.width, c.count));
  }
  expectError<ValueError>("at least one bin", [&] { volume.histogram(0, 1, 0); });
}
