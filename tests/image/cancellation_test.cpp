// Steps that are cancelled stop soon, and work when they are run again.

#include "image/filters/gaussianfilter.h"
#include "image/filters/meanfilter.h"
#include "image/segmentation/isodatathresholding.h"
#include "image/segmentation/marchingcubes.h"
#include "image/segmentation/otsuthresholding.h"
#include "tests/support/canceller.h"
#include "tests/support/randomvolumes.h"
#include "tests/support/threads.h"

#include <functional>
#include <gtest/gtest.h>

namespace
{
using Volume = VoxelMatrix<unsigned char>;

Volume noise()
{
  return randomVolume<unsigned char>(100, 100, 100, [](double u) { return 256 * u; });
}

/// Number of planes in which two volumes differ.
int numDifferentPlanes(const Volume& a, const Volume& b)
{
  int count = 0;
  for (int k = 0; k < a.getSize3(); ++k) count += a[k] == b[k] ? 0 : 1;
  return count;
}
} // namespace

TEST(Cancellation, StopsFiltersAndThresholds)
{
  const NumThreads oneThread(1);
  MeanFilter<unsigned char> mean;
  mean.setSize(3);
  GaussianFilter<unsigned char> gaussian;
  gaussian.setSigma(0.5);
  OtsuThresholding<unsigned char> otsu;
  IsodataThresholding<unsigned char> isodata;
  const struct
  {
    const char* name;
    VoxelMatrixProcessing<unsigned char>& step;
    double share; // at which it is cancelled
    int most;     // planes that may have changed
  } cases[] = {{"mean", mean, 0.3, 60},
               {"Gaussian", gaussian, 0.3, 60},
               {"Otsu, histogram", otsu, 0, 0},
               {"Isodata, histogram", isodata, 0, 0},
               {"Otsu, mask", otsu, 0.7, 70}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    Volume whole = noise(), part = noise();
    c.step.apply(whole);
    {
      const Canceller canceller(c.step, c.share);
      c.step.apply(part);
      EXPECT_TRUE(canceller.isFinished());
    }
    EXPECT_LE(numDifferentPlanes(part, noise()), c.most);
    Volume again = noise();
    c.step.apply(again);
    EXPECT_EQ(again, whole);
  }
}

TEST(Cancellation, StopsSurfacesInEveryPhase)
{
  const NumThreads oneThread(1);
  const VoxelMatrix<float> volume = randomVolume<float>(9, 9, 99, [](double u) { return u - 0.5; });
  MarchingCubes<float> step;
  for (const double share : {0.0, 0.2, 0.6})
  {
    SCOPED_TRACE(share);
    const Canceller canceller(step, share);
    EXPECT_THROW(step.buildMesh(volume, 0, true), Cancelled);
    EXPECT_TRUE(canceller.isFinished());
  }
  EXPECT_GT(step.buildMesh(volume, 0, true).getNumTriangles(), 0);
}
