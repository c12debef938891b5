#include "image/segmentation/componentlabelling.h"
#include "image/segmentation/connectedcomponents.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"
#include "tests/support/randomvolumes.h"
#include "tests/support/threads.h"

#include <gtest/gtest.h>

namespace
{
/// Labels by a flood fill from voxel to voxel.
VoxelMatrix<int> floodFill(const VoxelMatrix<unsigned char>& mask)
{
  VoxelMatrix<int> labels(mask.getSize1(), mask.getSize2(), mask.getSize3());
  labels.setZeros();
  std::vector<Vector<int>> front;
  int numLabels = 0;
  const auto visit = [&](int i, int j, int k)
  {
    if (!mask.contains(i, j, k) || mask(i, j, k) == 0 || labels(i, j, k) != 0) return;
    labels(i, j, k) = numLabels;
    front.push_back({i, j, k});
  };
  for (int k = 0; k < mask.getSize3(); ++k)
    for (int i = 0; i < mask.getSize1(); ++i)
      for (int j = 0; j < mask.getSize2(); ++j)
      {
        numLabels += mask(i, j, k) != 0 && labels(i, j, k) == 0 ? 1 : 0;
        for (visit(i, j, k); !front.empty();)
        {
          const Vector<int> at = front.back();
          front.pop_back();
          for (const int step : {-1, 1})
          {
            visit(at[0] + step, at[1], at[2]);
            visit(at[0], at[1] + step, at[2]);
            visit(at[0], at[1], at[2] + step);
          }
        }
      }
  return labels;
}

/// A plane of digits: label of each element, '.' for the background.
VoxelMatrix<int> drawing(const std::vector<std::string>& rows)
{
  VoxelMatrix<int> volume(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()), 1);
  for (int i = 0; i < volume.getSize1(); ++i)
    for (int j = 0; j < volume.getSize2(); ++j)
    {
      const char c = rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
      volume(i, j, 0) = c == '.' ? 0 : c - '0';
    }
  return volume;
}

} // namespace

TEST(Labelling, NumbersShapesInRasterOrder)
{
  const struct
  {
    const char* name;
    std::vector<std::string> labels;
  } cases[] = {
      {"nothing", {"...", "..."}},
      {"corners do not connect", {"1.2", ".3.", "4.5"}},
      {"a U, then another object", {"1.1.2", "1.1..", "111.3"}},
      {"a comb upside down", {"1.1.1.1", "1.1.1.1", "1111111"}},
      {"arms that meet in a chain from right to left", {"....1", "..1.1", "1.111", "111.."}},
      {"a spiral", {"1111111", "......1", "11111.1", "1...1.1", "1.111.1", "1.....1", "1111111"}},
      {"a ring with an island", {"11111", "1...1", "1.2.1", "1...1", "11111"}},
  };
  for (const auto& c : cases)
  {
    VoxelMatrix<int> volume = drawing(c.labels);
    volume.apply([](int label) { return label == 0 ? 0 : -9; });
    ComponentLabelling<int> step;
    step.apply(volume[0]);
    EXPECT_EQ(volume, drawing(c.labels)) << c.name;
    EXPECT_EQ(step.getNumLabels(), volume.max()) << c.name;
  }
}

TEST(Labelling, FindsTheTrueComponents)
{
  const int sizes[][3] = {{1, 1, 1}, {5, 64, 4}, {40, 65, 7}, {7, 128, 40}, {150, 63, 1}, {3, 200, 30}, {30, 1, 50}};
  for (const auto& size : sizes)
    for (const double density : {0.0, 0.31, 0.5, 0.9, 1.0})
      for (const int numThreads : {1, 3, 64})
      {
        SCOPED_TRACE(testing::Message() << size[0] << " x " << size[1] << " x " << size[2] << ", " << density << ", "
                                        << numThreads << " threads");
        const NumThreads threads(numThreads);
        const VoxelMatrix<unsigned char> mask = randomMask(size[0], size[1], size[2], density);
        const VoxelMatrix<int> expected = floodFill(mask);
        VoxelMatrix<int> volume = mask.toType<int>();
        ComponentLabelling<int> step;
        step.apply(volume);
        EXPECT_EQ(volume, expected);
        EXPECT_EQ(step.getNumLabels(), expected.max());
      }
}

TEST(Labelling, LabelsAPlaneOfAnyType)
{
  const VoxelMatrix<unsigned char> mask = randomMask(200, 130, 1, 0.4);
  const VoxelMatrix<int> expected = floodFill(mask);
  VoxelMatrix<float> volume = mask.toType<float>();
  volume *= -0.5F;
  ComponentLabelling<float> step;
  step.apply(volume[0]);
  EXPECT_EQ(volume.toType<int>(), expected);

  ProgressSubject subject;
  ConnectedComponents components(mask[0], subject);
  PixelMatrix<unsigned short> labels(200, 130), other(130, 200);
  components.writeLabels(labels, subject);
  EXPECT_EQ(static_cast<int>(labels.max().max()), expected.max());
  expectError<SizeError>("the mask's size", [&] { components.writeLabels(other, subject); });
}

TEST(Labelling, RefusesMoreLabelsThanTheTypeHolds)
{
  const auto columns = [](int numObjects)
  {
    VoxelMatrix<unsigned char> mask(1, 2 * numObjects, 1);
    for (int j = 0; j < mask.getSize2(); ++j) mask(0, j, 0) = j % 2 == 0 ? 7 : 0;
    return mask;
  };
  ComponentLabelling<unsigned char> step;
  VoxelMatrix<unsigned char> volume = columns(255);
  step.apply(volume);
  EXPECT_EQ(step.getNumLabels(), 255);
  EXPECT_EQ(volume(0, 508, 0), 255);

  const VoxelMatrix<unsigned char> tooMany = columns(256);
  volume = tooMany;
  expectError<RangeError>("256 objects", [&] { step.apply(volume); });
  EXPECT_EQ(volume, tooMany);
  EXPECT_EQ(step.getNumLabels(), 0);
}

TEST(Labelling, StopsWhenCancelled)
{
  const NumThreads threads(1);
  const VoxelMatrix<unsigned char> mask = randomMask(10, 10, 10, 0.2);
  const VoxelMatrix<int> labels = floodFill(mask);
  ASSERT_LT(labels.max(), 256);
  const struct
  {
    double share;
    int numLabelled; // planes
  } cases[] = {{0.1, 0}, {0.5, 0}, {0.79, 4}};
  for (const auto& c : cases)
  {
    ComponentLabelling<unsigned char> step;
    const Canceller canceller(step, c.share);
    VoxelMatrix<unsigned char> volume = mask;
    step.apply(volume);
    for (int k = 0; k < 10; ++k)
      for (int i = 0; i < 10; ++i)
        for (int j = 0; j < 10; ++j)
          ASSERT_EQ(volume(i, j, k), k < c.numLabelled ? labels(i, j, k) : mask(i, j, k)) << "cancelled at " << c.share;
  }
}
