#include "geometry/curvestacktriangulation2.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>
#include <limits>

namespace
{
Curve<double> squareAt(double z, double x = 0, double side = 1)
{
  return closedCurve({{x, 0, z}, {x, side, z}, {x + side, side, z}, {x + side, 0, z}});
}

std::vector<std::string> textsOf(const std::vector<Curve<double>>& curves, int numTags = 0)
{
  CurveStack<double> stack;
  for (const Curve<double>& curve : curves) stack.append(curve);
  CurveStackTriangulation2<double> triangulation;
  if (numTags > 0) triangulation.setContourTags(Vector<CurveStackTriangulationContourTag>(numTags));
  std::vector<std::string> texts;
  for (const CurveStackFinding& finding : triangulation.check(stack)) texts.push_back(finding.text());
  return texts;
}
} // namespace

TEST(CurveStackCheck, NamesWhatMayNotBeMeant)
{
  using Texts = std::vector<std::string>;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Curve<double> point = closedCurve({{1, 1, 0}, {1, 1, 0}, {1, 1, 0}});
  const Curve<double> tilted = closedCurve({{0, 0, 1}, {0, 1, 1}, {1, 1, 1.5}});
  const Curve<double> eight = closedCurve({{0, 0, 1}, {1, 1, 1}, {1, 0, 1}, {0, 1, 1}});
  const Curve<double> undefined = closedCurve({{0, 0, 1}, {1, nan, 1}, {1, 0, 1}});
  const struct
  {
    const char* what;
    std::vector<Curve<double>> curves;
    Texts texts;
  } cases[] = {
      {"nothing", {}, {}},
      {"an ascending stack", {squareAt(0), squareAt(1), squareAt(1, 5), squareAt(2)}, {}},
      {"a descending stack", {squareAt(0), squareAt(-1), squareAt(-2)}, {}},
      {"no extent", {point, squareAt(0), undefined}, {"curve 0 has no extent", "curve 2 has no extent"}},
      {"tilted", {squareAt(0), tilted}, {"curve 1 does not lie at one height"}},
      {"turns back", {squareAt(0), squareAt(2), squareAt(1)}, {"curve 2 lies at a height that is out of order"}},
      {"comes again", {squareAt(0), squareAt(1), squareAt(0)}, {"curve 2 lies at a height that is out of order"}},
      {"a figure of eight", {squareAt(0), eight}, {"curve 1 crosses itself"}},
      {"nested, smaller first", {squareAt(0, 0.25, 0.5), squareAt(0, 0, 1)}, {"curve 0 lies inside curve 1"}},
      {"nested, and beside", {squareAt(0, 0, 9), squareAt(0, 1), squareAt(0, 20)}, {"curve 1 lies inside curve 0"}},
      {"nested at other heights", {squareAt(0, 0, 9), squareAt(1, 1)}, {}},
      {"crossing", {squareAt(0), squareAt(0, 0.5)}, {"curve 0 touches or crosses curve 1"}},
      {"touching", {squareAt(0, 1), squareAt(0)}, {"curve 0 touches or crosses curve 1"}},
  };
  for (const auto& [what, curves, texts] : cases) EXPECT_EQ(textsOf(curves), texts) << what;
}

TEST(CurveStackCheck, CountsTags)
{
  const std::string text = "the number of contour tags is not that of the curves";
  EXPECT_EQ(textsOf({squareAt(0), squareAt(1)}, 3), std::vector<std::string>{text});
  EXPECT_TRUE(textsOf({squareAt(0), squareAt(1)}, 2).empty());
  EXPECT_THROW(CurveStackTriangulation2<double>().check(CurveStack<double>(2)), SizeError);
}
