// Moments and principal axes of images with known ones, and the transforms that superpose them.

#include "image/registration/matrixprincipalaxesanalysis.h"
#include "image/registration/principalaxesimageregistration.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace
{
constexpr double pi = std::numbers::pi;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

PixelMatrix<double> zeros(int rows, int columns, float height = 1, float width = 1)
{
  PixelMatrix<double> matrix(rows, columns);
  matrix.setZeros();
  PixelCalibration calibration;
  calibration.setPixelHeight(height);
  calibration.setPixelWidth(width);
  matrix.setPixelCalibration(calibration);
  return matrix;
}

/// Ones in the rectangle of rows and columns [first, last].
PixelMatrix<double> rectangle(PixelMatrix<double> matrix, int firstRow, int lastRow, int firstCol, int lastCol)
{
  for (int i = firstRow; i <= lastRow; ++i)
    for (int j = firstCol; j <= lastCol; ++j) matrix(i, j) = 1;
  return matrix;
}

/// Ones in an ellipse whose long half-axis lies at an angle from the rows' direction (down) towards the columns'.
PixelMatrix<double> ellipse(PixelMatrix<double> matrix, double row, double column, double a, double b, double angle)
{
  const PixelCalibration& calibration = matrix.getPixelCalibration();
  for (int i = 0; i < matrix.getSize1(); ++i)
    for (int j = 0; j < matrix.getSize2(); ++j)
    {
      const double y = i * double(calibration.getPixelHeight()) - row;
      const double x = j * double(calibration.getPixelWidth()) - column;
      const double along = std::cos(angle) * y + std::sin(angle) * x,
                   across = std::cos(angle) * x - std::sin(angle) * y;
      if (std::hypot(along / a, across / b) <= 1) matrix(i, j) = 1;
    }
  return matrix;
}

MatrixPrincipalAxesAnalysis<double> analysisOf(const PixelMatrix<double>& matrix)
{
  MatrixPrincipalAxesAnalysis<double> analysis;
  analysis.apply(matrix);
  return analysis;
}

SquareMatrix<double> symmetric(double a, double b, double d)
{
  SquareMatrix<double> matrix(2);
  matrix(0, 0) = a;
  matrix(0, 1) = matrix(1, 0) = b;
  matrix(1, 1) = d;
  return matrix;
}
} // namespace

TEST(PrincipalAxes, OfARectangleAreItsMiddleAndSides)
{
  const auto analysis = analysisOf(rectangle(zeros(40, 30, 2, 0.5), 10, 29, 4, 9)); // 20 rows, 6 columns
  EXPECT_DOUBLE_EQ(analysis.getMass(), 120);
  EXPECT_NEAR(analysis.getInertiaCenter()[0], 19.5 * 2, 1e-12);
  EXPECT_NEAR(analysis.getInertiaCenter()[1], 6.5 * 0.5, 1e-12);
  EXPECT_NEAR(analysis.getInertiaMatrix()(0, 0), (20 * 20 - 1) / 12.0 * 4, 1e-10); // of n places at distance 1
  EXPECT_NEAR(analysis.getInertiaMatrix()(1, 1), (6 * 6 - 1) / 12.0 * 0.25, 1e-12);
  EXPECT_NEAR(analysis.getInertiaMatrix()(0, 1), 0, 1e-12);
  EXPECT_NEAR(analysis.getMajorAngle(), 0, 1e-12);
  EXPECT_FALSE(analysis.isRound());
}

TEST(PrincipalAxes, OfEllipsesHaveTheirMomentsAndAngles)
{
  for (const double unit : {1.0, 1e-7}) // lengths in the unit of the calibration: a small one is as good
    for (const double angle : {0.0, 0.4, 1.2, -0.7, -1.5})
    {
      SCOPED_TRACE(angle);
      const auto matrix = zeros(300, 200, static_cast<float>(unit), static_cast<float>(1.5 * unit));
      const auto analysis = analysisOf(ellipse(matrix, 140 * unit, 160 * unit, 100 * unit, 60 * unit, angle));
      const SquareMatrix<double>& inertia = analysis.getInertiaMatrix();
      const double major = 2500 * unit * unit, minor = 900 * unit * unit, c = std::cos(angle), s = std::sin(angle);
      EXPECT_NEAR(inertia(0, 0), major * c * c + minor * s * s, 0.004 * major);
      EXPECT_NEAR(inertia(0, 1), (major - minor) * c * s, 0.004 * major);
      EXPECT_NEAR(inertia(1, 1), major * s * s + minor * c * c, 0.004 * major);
      EXPECT_NEAR(std::sin(analysis.getMajorAngle() - angle), 0, 0.003);
      EXPECT_NEAR(analysis.getInertiaCenter()[0], 140 * unit, 0.1 * unit);
      EXPECT_NEAR(analysis.getInertiaCenter()[1], 160 * unit, 0.1 * unit);
    }
}

TEST(PrincipalAxes, WithoutMassAreZero)
{
  PixelMatrix<double> matrix = zeros(3, 3);
  matrix(0, 1) = -5;
  matrix(2, 2) = notANumber;
  for (const auto& analysis : {analysisOf(matrix), analysisOf(PixelMatrix<double>())})
  {
    EXPECT_EQ(analysis.getMass(), 0);
    EXPECT_EQ(analysis.getInertiaCenter()[0], 0);
    EXPECT_EQ(analysis.getAngle(), 0);
    EXPECT_TRUE(analysis.isRound());
  }
  matrix(1, 0) = 2; // the only mass
  EXPECT_EQ(analysisOf(matrix).getInertiaCenter()[0], 1);
  EXPECT_EQ(analysisOf(matrix).getInertiaMatrix()(1, 1), 0);
}

TEST(PrincipalAxes, AngleFollowsItsFormula)
{
  const struct
  {
    double a, b, d, angle;
  } cases[] = {
      {3, 0, 3, 0},          {4, 0, 3, 0},           {3, 0, 4, pi / 2},  {3, 1e-15, 4, pi / 2}, // not above epsilon
      {4, -1e-15, 3, 0},     {3, 1, 3, pi / 4},      {3, -1, 3, pi / 4}, {2, 1, 0, pi / 8},     // the major axis
      {0, 1, 2, 3 * pi / 8}, {2, -1, 0, 3 * pi / 8},                                            // the minor axis
  };
  for (const auto& c : cases)
    EXPECT_NEAR(MatrixPrincipalAxesAnalysis<double>::computeAngle(symmetric(c.a, c.b, c.d)), c.angle, 1e-14)
        << c.a << " " << c.b << " " << c.d;
}

TEST(MassAboveBackground, IsWhatExceedsTheMedianOfTheBorderAndItsNoise)
{
  const auto massOf = [](std::vector<double> border, double inside)
  {
    PixelMatrix<double> matrix = zeros(3, 3); // eight elements around the one inside
    const int places[8][2] = {{0, 0}, {0, 1}, {0, 2}, {1, 2}, {2, 2}, {2, 1}, {2, 0}, {1, 0}};
    for (std::size_t k = 0; k < border.size(); ++k) matrix(places[k][0], places[k][1]) = border[k];
    matrix(1, 1) = inside;
    return massAboveBackground(matrix);
  };
  EXPECT_EQ(massOf({7, 7, 7, 7, 7, 7, 7, 7}, 8)(1, 1), 1);
  EXPECT_EQ(massOf({7, 7, 7, 7, 7, 7, 7, 7}, 6)(1, 1), 0);
  const std::vector<double> noisy = {6, 8, 6, 8,
                                     7, 7, 6, 8}; // median 7, deviations of 1: and steps of 1: up to 11.1 is noise
  EXPECT_EQ(massOf(noisy, 19)(1, 1), 12);
  EXPECT_EQ(massOf(noisy, 19)(0, 1), 0);
  EXPECT_EQ(massOf(noisy, 18)(1, 1), 11); // or nothing would be left
  EXPECT_EQ(massOf(noisy, 18)(0, 1), 1);
  EXPECT_EQ(massOf({7, 7, 7, 8, 7, 8, 7, notANumber}, 30)(2, 1), 0); // steps of 1 are noise
  EXPECT_EQ(massOf({7, 7, 7, 8, 7, 8, 7, notANumber}, 30)(1, 1), 23);
  EXPECT_EQ(massOf({0, 0, 0, 0, 0, 20, 21, 21}, 200)(2, 1), 20); // a faint part of the specimen at the border, no noise
  EXPECT_EQ(massOf({0, 0, 0, 0, 0, 20, 20, 20}, 200)(2, 1), 20); // and of a single grey level
  EXPECT_EQ(massOf({20, 0, 0, 0, 0, 0, 0, 20}, 200)(0, 0), 20);  // around the corner where the walk begins
  EXPECT_EQ(massAboveBackground(PixelMatrix<double>()).getNumElements(), 0);
}

TEST(Correlation, IsThatOfTheElementsThatLieOnEachOther)
{
  PixelMatrix<double> image = zeros(2, 3, 2, 0.5);
  for (int k = 0; k < 6; ++k) image.data()[k] = k * k;
  PixelMatrix<double> negative = image;
  std::for_each(negative.data(), negative.data() + 6, [](double& x) { x = 5 - 2 * x; });
  EXPECT_NEAR(correlation(image, image, 0, 0, 0), 1, 1e-12);
  EXPECT_NEAR(correlation(negative, image, 0, 0, 0), -1, 1e-12);
  // Moved right by a column, (0, 1) and (9, 16) of the source lie on (1, 4) and (16, 25).
  const double s[] = {0, 1, 9, 16}, t[] = {1, 4, 16, 25};
  double meanS = 6.5, meanT = 11.5, ss = 0, st = 0, tt = 0;
  for (int k = 0; k < 4; ++k)
  {
    ss += (s[k] - meanS) * (s[k] - meanS);
    st += (s[k] - meanS) * (t[k] - meanT);
    tt += (t[k] - meanT) * (t[k] - meanT);
  }
  EXPECT_NEAR(correlation(image, image, 0, 0, 0.5), st / std::sqrt(ss * tt), 1e-12);
  EXPECT_EQ(correlation(image, image, 0, 0, 2), 0); // beyond each other
  EXPECT_EQ(correlation(image, image, 0, notANumber, 0), 0);
  EXPECT_EQ(correlation(zeros(2, 3), image, 0, 0, 0), 0);
  EXPECT_EQ(correlation(image, PixelMatrix<double>(), 0, 0, 0), 0);
}

TEST(PrincipalAxesRegistration, SuperposesCentresAndMajorAxes)
{
  const double sourceAngle = 0.3, targetAngle = 1.1;
  const auto source = ellipse(zeros(200, 260), 90, 120, 60, 30, sourceAngle);
  const auto target = ellipse(zeros(220, 200), 120, 100, 60, 30, targetAngle);
  for (const bool isCentered : {false, true})
  {
    PrincipalAxesImageRegistration<double> registration;
    registration.setImageCenteredRotation(isCentered);
    registration.setSource(source);
    registration.setTarget(target);
    registration.run();
    const SquareMatrix<double>& r = registration.rotation();
    // Both senses fit an ellipse alike: the smaller rotation is taken, here -0.8.
    EXPECT_NEAR(std::atan2(r(0, 1), r(0, 0)), sourceAngle - targetAngle, 0.01);
    const double row = 90 - (isCentered ? 100 : 0), column = 120 - (isCentered ? 130 : 0);
    const Vector<double>& t = registration.translation();
    EXPECT_NEAR(r(0, 0) * row + r(0, 1) * column + t[0], 120 - (isCentered ? 110 : 0), 0.1);
    EXPECT_NEAR(r(1, 0) * row + r(1, 1) * column + t[1], 100 - (isCentered ? 100 : 0), 0.1);
    // The source's long axis, (cos, sin) in (row, column), comes to lie on the target's.
    const double y = std::cos(sourceAngle), x = std::sin(sourceAngle);
    EXPECT_NEAR(r(0, 0) * y + r(0, 1) * x, std::cos(targetAngle), 0.01);
    EXPECT_NEAR(r(1, 0) * y + r(1, 1) * x, std::sin(targetAngle), 0.01);
  }
}

TEST(PrincipalAxesRegistration, DoesNotTurnRoundSpecimensAndIsNullWithoutMass)
{
  const auto disc = ellipse(zeros(101, 101), 50, 50, 20, 20, 0), moved = ellipse(zeros(101, 101), 60, 45, 20, 20, 0);
  PrincipalAxesImageRegistration<double> registration;
  expectError<UsageError>("no source", [&] { registration.run(); });
  registration.setSource(moved);
  expectError<UsageError>("no target", [&] { registration.run(); });
  registration.setTarget(disc);
  registration.run();
  EXPECT_TRUE(registration.hasMass());
  EXPECT_EQ(registration.rotation()(0, 1), 0);
  EXPECT_NEAR(registration.translation()[0], -10, 1e-9);
  EXPECT_NEAR(registration.translation()[1], 5, 1e-9);

  const auto flat = zeros(50, 50);
  registration.setTarget(flat);
  registration.run();
  EXPECT_FALSE(registration.hasMass());
  EXPECT_EQ(registration.rotation()(0, 0), 1);
  EXPECT_EQ(registration.translation()[0], 0);
}
