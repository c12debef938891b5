#include "geometry/reconstruction/stackreconstruction.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

namespace
{

/// Where pixel (u, v) of a slice lies in space.
std::vector<double> placed(const Stack& stack, int slice, int u, int v)
{
  const StackReconstruction<double> reconstruction(stack);
  const Vector<double>& m = reconstruction.getMap(slice);
  return {m[0] * u + m[1] * v + m[2], m[3] * u + m[4] * v + m[5], reconstruction.getZMap()[slice]};
}

void expectNear(const std::vector<double>& actual, const std::vector<double>& expected)
{
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(actual[i], expected[i], 1e-12) << "coordinate " << i;
}

template <class T> std::unique_ptr<Shape<T>> reconstructed(const Stack& stack, const Model& model)
{
  return std::unique_ptr<Shape<T>>(StackReconstruction<T>(stack).apply(model));
}

} // namespace

TEST(StackReconstructionMaps, PutTheImageCenterAtTheOriginAndRowsUpwards)
{
  Stack stack;
  stack.setDefaultRelativePosition(2);
  addSlice(stack, 100, 60);
  setPixelSize(addSlice(stack, 7, 4), 0.5, 3);
  expectNear(placed(stack, 0, 50, 30), {0, 0, 0});
  expectNear(placed(stack, 0, 51, 30), {1, 0, 0});
  expectNear(placed(stack, 0, 50, 31), {0, -1, 0});
  expectNear(placed(stack, 1, 0, 0), {-1.75, 6, 2}); // the centre of an odd width lies between two pixels
  expectNear(placed(stack, 1, -1, 5), {-2.25, -9, 2});
}

TEST(StackReconstructionMaps, TurnShiftsByTheAnglesOfTheSlicesBefore)
{
  Stack stack;
  stack.setDefaultRelativePosition(1);
  addSlice(stack, 100, 100);
  addSlice(stack, 100, 100, Registration(10, 0, 90));
  addSlice(stack, 100, 100, Registration(20, 5, 0));
  addSlice(stack, 100, 100, Registration(0, 0, 270));
  expectNear(placed(stack, 0, 50, 50), {0, 0, 0});
  expectNear(placed(stack, 1, 50, 50), {10, 0, 1}); // its own angle does not turn its shift
  expectNear(placed(stack, 1, 51, 50), {10, -1, 1});
  expectNear(placed(stack, 1, 50, 51), {9, 0, 1});
  expectNear(placed(stack, 2, 50, 50), {5, -20, 2});
  expectNear(placed(stack, 2, 51, 50), {5, -21, 2});
  expectNear(placed(stack, 3, 50, 50), {5, -20, 3});
  expectNear(placed(stack, 3, 51, 50), {6, -20, 3}); // a full turn
}

TEST(StackReconstructionMaps, ScaleBeforeTheyTurn)
{
  Stack stack;
  setPixelSize(addSlice(stack, 10, 10, Registration(4, 1, 90)), 2, 3);
  expectNear(placed(stack, 0, 5, 5), {8, -3, 0});
  expectNear(placed(stack, 0, 6, 5), {8, -5, 0});
  expectNear(placed(stack, 0, 5, 6), {5, -3, 0});
}

TEST(StackReconstructionMaps, TakeHeightsFromTheSlicesDepths)
{
  Stack stack;
  stack.setDefaultRelativePosition(5);
  for (int i = 0; i < 4; ++i) addSlice(stack, 2, 2);
  stack.getSlice(2)->setAbsolutePosition(12);
  StackReconstruction<float> reconstruction(stack);
  EXPECT_EQ(reconstruction.getZMap(), (Vector<float>{0, 5, 12, 17}));
  stack.setInvertZAxis(true);
  reconstruction.computeMaps();
  EXPECT_EQ(reconstruction.getZMap(), (Vector<float>{-0.f, -5, -12, -17}));
}

TEST(StackReconstructionMaps, NeedTheSizesOfTheImages)
{
  Stack stack;
  stack.addSlice(std::make_unique<StackSlice>()).setImageSource(ImageSourceFile("/nonexistent/image.tif"));
  EXPECT_THROW(StackReconstruction<double> reconstruction(stack), FileError);
  expectError<UsageError>("no stack", [] { StackReconstruction<double>().computeMaps(); });
}

TEST(StackReconstruction, OrdersItemsBySliceAndThenAsListed)
{
  Stack stack;
  stack.setDefaultRelativePosition(1);
  for (int i = 0; i < 3; ++i) addSlice(stack, 0, 0);
  Model& model = addModel(stack, "cell", MPrimitive::Polygon);
  Model& other = addModel(stack, "other", MPrimitive::Polyline);
  addItem(model, *stack.getSlice(2), {{20, 0}}).setTriangulationTag(CurveStackTriangulationContourTag::End);
  addItem(model, *stack.getSlice(0), {{1, 0}});
  addItem(other, *stack.getSlice(0), {{5, 5}, {6, 6}});
  addItem(model, *stack.getSlice(0), {{2, 0}, {3, -1}}).setTriangulationTag(CurveStackTriangulationContourTag::Begin);

  const auto shape = reconstructed<double>(stack, model);
  const auto& curves = dynamic_cast<const CurveStack<double>&>(*shape);
  ASSERT_EQ(curves.getNumCurves(), 3);
  EXPECT_EQ(pointsOf(curves[0]), (std::vector<std::vector<double>>{{1, 0, 0}}));
  EXPECT_EQ(pointsOf(curves[1]), (std::vector<std::vector<double>>{{2, 0, 0}, {3, 1, 0}}));
  EXPECT_EQ(pointsOf(curves[2]), (std::vector<std::vector<double>>{{20, 0, 2}}));
  EXPECT_TRUE(curves.isClosed() && curves[2].isClosed());
  using Tag = CurveStackTriangulationContourTag;
  EXPECT_EQ(StackReconstruction<double>(stack).contourTags(model), (Vector<Tag>{Tag::None, Tag::Begin, Tag::End}));
  EXPECT_TRUE(dynamic_cast<const CurveStack<double>&>(*reconstructed<double>(stack, other)).isOpen());
}

TEST(StackReconstruction, SkipsSlicesThatWereRemovedSinceTheMapsWereMade)
{
  Stack stack;
  for (int i = 0; i < 3; ++i) addSlice(stack, 0, 0);
  Model& model = addModel(stack, "cell", MPrimitive::Polygon);
  for (int i = 0; i < 3; ++i) addItem(model, *stack.getSlice(i), {{i, 0}});
  const StackReconstruction<double> reconstruction(stack);
  const auto removed = stack.removeSlice(2);
  const std::unique_ptr<Shape<double>> shape(reconstruction.apply(model));
  EXPECT_EQ(dynamic_cast<const CurveStack<double>&>(*shape).getNumCurves(), 2);
}

TEST(StackReconstruction, MapsEveryGeometry)
{
  Stack stack;
  StackSlice& slice = addSlice(stack, 0, 0);
  Model& points = addModel(stack, "points", MPrimitive::Polypoint);
  Model& regions = addModel(stack, "regions", MPrimitive::Region);
  addItem(points, slice, {{3, 4}, {3, 4}});
  ModelItem& region = ModelItem::create(regions, slice);
  region.setRLEItemSet(RLEItemSet({RLEItem(2, 7, 2), RLEItem(-1, 0, 1)}));

  const auto shape = reconstructed<float>(stack, points);
  EXPECT_EQ(shape->getShapeType(), VertexStackShape);
  EXPECT_EQ(shape->getName(), "points");
  EXPECT_EQ(shape->getSize(), 2);
  const StackReconstruction<float> reconstruction(stack);
  const std::unique_ptr<Shape<float>> positions(reconstruction.apply(region));
  EXPECT_EQ(pointsOf(dynamic_cast<const Vertices<float>&>(*positions)),
            (std::vector<std::vector<float>>{{-1, 0, 0}, {2, -7, 0}, {2, -8, 0}}));
}

TEST(StackReconstruction, RegionsBecomeTheirOuterBoundaries)
{
  Stack stack;
  StackSlice& slice = addSlice(stack, 0, 0);
  Model& regions = addModel(stack, "regions", MPrimitive::Region);
  ModelItem::create(regions, slice);
  ModelItem& two = ModelItem::create(regions, slice); // pixels that meet at a corner only
  two.setRLEItemSet(RLEItemSet({RLEItem(2, 7, 2), RLEItem(3, 9, 1)}));
  two.setTriangulationTag(CurveStackTriangulationContourTag::End);
  ModelItem::create(regions, slice).setRLEItemSet(RLEItemSet({RLEItem(0, 0, 1)}));

  const auto shape = reconstructed<double>(stack, regions);
  const auto& curves = dynamic_cast<const CurveStack<double>&>(*shape);
  ASSERT_EQ(curves.getNumCurves(), 3);
  EXPECT_TRUE(curves.isClosed());
  EXPECT_EQ(pointsOf(curves[0]),
            (std::vector<std::vector<double>>{{2.5, -6.5, 0}, {2.5, -8.5, 0}, {1.5, -8.5, 0}, {1.5, -6.5, 0}}));
  EXPECT_EQ(curves[0].twiceArea(0, 1), -4);
  EXPECT_EQ(curves[1].twiceArea(0, 1), -2);
  using Tag = CurveStackTriangulationContourTag;
  EXPECT_EQ(StackReconstruction<double>(stack).contourTags(regions), (Vector<Tag>{Tag::End, Tag::End, Tag::None}));
}

TEST(StackReconstruction, IgnoresItemsOfOtherStacks)
{
  Stack stack, otherStack;
  addSlice(stack, 0, 0);
  Model& model = addModel(stack, "cell", MPrimitive::Polygon);
  ModelItem& stranger = addItem(model, addSlice(otherStack, 0, 0), {{1, 1}});
  Vertices<double> output = closedCurve({{9, 9, 9}});
  testing::internal::CaptureStderr();
  StackReconstruction<double>(stack).map(output, stranger);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "invalid stack/item pair in StackReconstruction (ignored)\n");
  EXPECT_EQ(pointsOf(output), (std::vector<std::vector<double>>{{9, 9, 9}}));
  testing::internal::CaptureStderr();
  EXPECT_EQ(reconstructed<double>(stack, model)->getSize(), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "invalid stack/item pair in StackReconstruction (ignored)\n");
}
