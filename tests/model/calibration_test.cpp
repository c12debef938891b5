#include "image/image.h"
#include "image/imagesourcefile.h"
#include "image/imagewriter.h"
#include "image/pixelmatrix.h"
#include "model/stack.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

TEST(CalibrationCurve, FitsPolynomialsByLeastSquares)
{
  using Fit = CalibrationFit;
  const struct
  {
    const char* name;
    Fit fit;
    std::vector<CalibrationCurve::Sample> samples;
    double greyLevel, value;
  } cases[] = {
      {"a line through two samples", Fit::Linear, {{10, 1}, {30, 5}}, 20, 3},
      // slope 1/2 and intercept 5/6 by the normal equations
      {"a line among three samples", Fit::Linear, {{0, 1}, {1, 1}, {2, 2}}, 4, 17.0 / 6},
      {"a parabola through three samples", Fit::Polynomial2, {{0, 1}, {1, 2}, {3, 10}}, 2, 5},
      {"a cubic far from the origin", Fit::Polynomial3, {{65000, 0}, {65001, 1}, {65002, 8}, {65003, 27}}, 65004, 64},
      {"twice the same sample", Fit::Linear, {{0, 1}, {0, 3}, {2, 4}}, 1, 3},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const CalibrationCurve curve(c.samples, c.fit);
    EXPECT_NEAR(curve.eval(c.greyLevel), c.value, 1e-9 * std::max(1.0, c.value));
  }
}

TEST(CalibrationCurve, NeedsSamplesOfDifferentGreyLevels)
{
  CalibrationCurve curve({{1, 1}, {2, 2}, {2, 3}});
  EXPECT_TRUE(curve.isDefined());
  curve.setFit(CalibrationFit::Polynomial2);
  EXPECT_FALSE(curve.isDefined());
  expectError<UsageError>("Polynomial2 needs samples of 3 grey levels; it has 2", [&] { curve.eval(1); });
  expectError<UsageError>("Linear needs samples of 2 grey levels; it has 0", [] { CalibrationCurve().eval(1); });
  EXPECT_EQ(CalibrationCurve::toFit("Polynomial3"), CalibrationFit::Polynomial3);
  EXPECT_EQ(CalibrationCurve::toFit("polynomial3"), CalibrationFit::Unknown);
}

TEST(StandardImage, GivesTheCurveOfItsSamples)
{
  const TemporaryFolder folder;
  PixelMatrix<unsigned char> levels(6, 8);
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 8; ++j) levels(i, j) = static_cast<unsigned char>(j < 4 ? 50 + i : 150);
  levels.saveAsImage(folder.file("wedge.tif"), false);

  Stack stack;
  StandardImage& image = stack.addStandardImage(std::make_unique<StandardImage>());
  stack.addStandardImage(std::make_unique<StandardImage>()).setName("without a curve");
  image.setName("wedge");
  image.setImageSource(ImageSourceFile(folder.file("wedge.tif")));
  image.addSample({"dark", 0, 1, 4, 3, 2.0}); // rows 1 to 3: mean 52
  expectError<UsageError>("fewer samples", [&] { image.calibrate(CalibrationFit::Linear); });
  image.addSample({"light", 5, 0, 3, 6, 100.0});
  image.calibrate(CalibrationFit::Linear);
  ASSERT_EQ(stack.getNumCalibration(), 1);
  EXPECT_NEAR(stack.getCalibration(0)->eval(101), 51, 1e-9);
  EXPECT_EQ(stack.getCalibration("wedge"), stack.getCalibration(0));
  EXPECT_EQ(stack.getCalibration("without a curve"), nullptr);
  EXPECT_EQ(stack.getCalibration(1), nullptr);
  image.addSample({"beside", 6, 0, 3, 1, 0});
  expectError<RangeError>("\"beside\" does not lie in the image", [&] { image.calibrate(CalibrationFit::Linear); });
  stack.clear();
  EXPECT_EQ(stack.getNumStandardImages(), 0);
}
