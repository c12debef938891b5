#include "geometry/reconstruction/modelmorphometry.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <cmath>
#include <gtest/gtest.h>

namespace
{

/// A rectangle of 20 by 10 pixels from (u, v) on.
std::vector<std::vector<int>> rectangle(int u = 0, int v = 0)
{
  return {{u, v}, {u + 20, v}, {u + 20, v + 10}, {u, v + 10}};
}

/// Three slices, 2 apart, with pixels of 0.5 by 0.25.
class ModelMorphometryTest : public testing::Test
{
protected:
  ModelMorphometryTest()
  {
    _stack.setDefaultRelativePosition(2);
    for (int i = 0; i < 3; ++i) setPixelSize(addSlice(_stack, 40, 20), 0.5, 0.25);
  }

  ModelMorphometry measured(const Model& model)
  {
    ModelMorphometry morphometry;
    morphometry.setModel(model);
    morphometry.run();
    return morphometry;
  }

  Model& model(MPrimitive geometry = MPrimitive::Polygon) { return addModel(_stack, "cell", geometry); }

  Stack _stack;
};

} // namespace

TEST_F(ModelMorphometryTest, MeasuresABox)
{
  Model& cell = model();
  for (int i = 0; i < 3; ++i) addItem(cell, *_stack.getSlice(i), rectangle());
  for (const bool invertZ : {false, true})
  {
    _stack.setInvertZAxis(invertZ);
    const ModelMorphometry box = measured(cell); // 10 x 2.5 x 4, the last slab reaches 2 further
    EXPECT_EQ(box.getNumContours(), 3);
    EXPECT_EQ(box.getNumVertices(), 12);
    EXPECT_DOUBLE_EQ(box.getArea(), 4 * 25);
    EXPECT_DOUBLE_EQ(box.getVolume(), 6 * 25);
    EXPECT_DOUBLE_EQ(box.getEquivRadius(), std::cbrt(3 * 150 / (4 * std::numbers::pi)));
    EXPECT_EQ(box.getIsobarycenter(), (Vector<double>{-5, 1.25, invertZ ? -2. : 2.}));
    EXPECT_NEAR(box.getMainAxesLengths()[0], 5, 1e-12);
    EXPECT_NEAR(box.getMainAxesLengths()[1], std::sqrt(8. / 3), 1e-12);
    EXPECT_NEAR(box.getMainAxesLengths()[2], 1.25, 1e-12);
    EXPECT_EQ(box.getMatchingCoordinateAxes(), (Vector<int>{0, 2, 1}));
    EXPECT_NEAR(box.getMainAxes()(0, 0), 1, 1e-12);
    EXPECT_NEAR(box.getMainAxes()(2, 1), 1, 1e-12);
  }
}

TEST_F(ModelMorphometryTest, SlabVolumesFollowTheSlicesWithContours)
{
  const double a = 25;
  const struct
  {
    const char* name;
    std::vector<int> slices;
    double volume;
  } cases[] = {
      {"one slice: its area times its relative position", {1}, a * 2},
      {"the first slice", {0}, a * 2},
      {"an empty slice between", {0, 2}, a * 4 + a * 2},
      {"two contours on a slice", {1, 1, 2}, 2 * a * 2 + a * 2},
      {"nothing", {}, 0},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    Model& cell = model();
    for (std::size_t i = 0; i < c.slices.size(); ++i)
      addItem(cell, *_stack.getSlice(c.slices[i]), rectangle(30 * static_cast<int>(i)));
    EXPECT_DOUBLE_EQ(measured(cell).getVolume(), c.volume);
  }
  Model& cell = model();
  addItem(cell, *_stack.getSlice(0), rectangle());
  addItem(cell, *_stack.getSlice(2), rectangle());
  _stack.getSlice(2)->setAbsolutePosition(-7); // 9 below the slice before
  EXPECT_DOUBLE_EQ(measured(cell).getVolume(), a * 7 + a * 9);
}

TEST_F(ModelMorphometryTest, AreaOfBranchingContoursIsMinusOne)
{
  Model& cell = model();
  addItem(cell, *_stack.getSlice(0), rectangle());
  addItem(cell, *_stack.getSlice(1), rectangle());
  EXPECT_DOUBLE_EQ(measured(cell).getArea(), 2 * 25);
  addItem(cell, *_stack.getSlice(1), {{100, 100}, {110, 110}}); // no contour at all
  EXPECT_DOUBLE_EQ(measured(cell).getArea(), 2 * 25);
  addItem(cell, *_stack.getSlice(1), rectangle(100));
  EXPECT_EQ(measured(cell).getArea(), -1);
}

TEST_F(ModelMorphometryTest, RegionsAreMeasuredAsTheirPositions)
{
  _stack.getSlice(0)->setRegistration(Registration(3, -2, 30));
  Model& region = model(MPrimitive::Region);
  Model& points = model(MPrimitive::Polypoint);
  const std::vector<RLEItem> runs = {RLEItem(4, 10, 5), RLEItem(5, -3, 1), RLEItem(9, 2, 8)};
  for (int i = 0; i < 2; ++i)
  {
    ModelItem::create(region, *_stack.getSlice(i)).setRLEItemSet(RLEItemSet(runs));
    for (const RLEItem& run : runs)
      for (int y = run.begin(); y <= run.end(); ++y) addItem(points, *_stack.getSlice(i), {{run.getOriginX(), y}});
  }
  const ModelMorphometry ofRegion = measured(region), ofPoints = measured(points);
  EXPECT_EQ(ofRegion.getNumVertices(), 28);
  for (int k = 0; k < 3; ++k)
  {
    EXPECT_NEAR(ofRegion.getIsobarycenter()[k], ofPoints.getIsobarycenter()[k], 1e-12);
    EXPECT_NEAR(ofRegion.getMainAxesLengths()[k], ofPoints.getMainAxesLengths()[k], 1e-12);
  }
}

TEST_F(ModelMorphometryTest, RegionsHaveTheAreaOfTheirBoundariesAndTheVolumeOfTheirPixels)
{
  Model& region = model(MPrimitive::Region);
  std::vector<RLEItem> runs;
  for (int x = 0; x < 20; ++x) runs.emplace_back(x, 5, 10);
  for (int i = 0; i < 3; ++i)
  {
    RLEItemSet rectangle(runs);
    for (int x = 4; x < 10; ++x) rectangle.remove(RLEItem(x, 7, 5)); // a hole of 30 of the 200 pixels
    ModelItem::create(region, *_stack.getSlice(i)).setRLEItemSet(rectangle);
  }
  EXPECT_DOUBLE_EQ(measured(region).getArea(), 2 * (20 * 0.5 + 10 * 0.25) * 4);
  EXPECT_DOUBLE_EQ(measured(region).getVolume(), 170 * 0.125 * 6);
  EXPECT_DOUBLE_EQ(measured(region).getEquivRadius(), std::cbrt(3 * 127.5 / (4 * std::numbers::pi)));
  ModelItem::create(region, *_stack.getSlice(1)).setRLEItemSet(RLEItemSet({RLEItem(30, 0, 4)}));
  EXPECT_EQ(measured(region).getArea(), -1);
  EXPECT_DOUBLE_EQ(measured(region).getVolume(), 170 * 0.125 * 6 + 4 * 0.125 * 2);
}

TEST_F(ModelMorphometryTest, MeasuresOnlyWhatAGeometryHas)
{
  Model& fibre = model(MPrimitive::Polyline);
  for (int i = 0; i < 2; ++i) addItem(fibre, *_stack.getSlice(i), {{0, 0}, {20, 0}});
  EXPECT_DOUBLE_EQ(measured(fibre).getArea(), 20);
  EXPECT_TRUE(std::isnan(measured(fibre).getVolume()));

  Model& points = model(MPrimitive::Polypoint);
  addItem(points, *_stack.getSlice(0), {{20, 10}, {22, 10}});
  EXPECT_TRUE(std::isnan(measured(points).getArea()));
  EXPECT_EQ(measured(points).getIsobarycenter(), (Vector<double>{0.5, 0, 0}));
  EXPECT_EQ(measured(points).getMatchingCoordinateAxes()[0], 0);

  Model& regions = model(MPrimitive::Region);
  ModelItem::create(regions, *_stack.getSlice(1)).setRLEItemSet(RLEItemSet({RLEItem(20, 10, 3)}));
  EXPECT_EQ(measured(regions).getNumContours(), 1);
  EXPECT_EQ(measured(regions).getNumVertices(), 3);
  EXPECT_EQ(measured(regions).getArea(), 0);
  EXPECT_DOUBLE_EQ(measured(regions).getVolume(), 3 * 0.125 * 2);

  const ModelMorphometry empty = measured(model(MPrimitive::Polypoint));
  EXPECT_EQ(empty.getNumVertices(), 0);
  EXPECT_TRUE(std::isnan(empty.getIsobarycenter()[0]) && std::isnan(empty.getMainAxesLengths()[2]));
  EXPECT_EQ(measured(model()).getArea(), 0);
  expectError<UsageError>("no model", [] { ModelMorphometry().run(); });
}

// A nanometre in metres: areas far below any fixed tolerance still say in which sense a contour was drawn.
TEST_F(ModelMorphometryTest, ContoursOfEitherSenseCountAlikeInAnyUnit)
{
  Stack stack;
  stack.setDefaultRelativePosition(1e-8f);
  Model& model = addModel(stack, "tiny", MPrimitive::Polygon);
  for (int i = 0; i < 3; ++i)
  {
    StackSlice& slice = addSlice(stack, 20, 20);
    setPixelSize(slice, 2e-9f, 2e-9f);
    if (i == 1)
      addItem(model, slice, {{0, 8}, {8, 8}, {8, 0}, {0, 0}});
    else
      addItem(model, slice, {{0, 0}, {8, 0}, {8, 8}, {0, 8}});
  }
  EXPECT_NEAR(measured(model).getArea() / (4 * 16e-9 * 2e-8), 1, 1e-6);
}

TEST_F(ModelMorphometryTest, TellsOfContoursWithoutExtent)
{
  Model& model = addModel(_stack, "line", MPrimitive::Polygon);
  addItem(model, *_stack.getSlice(0), {{0, 0}, {8, 8}});
  EXPECT_NE(measured(model).getWarning().find("slice 0"), std::string::npos);
}

TEST_F(ModelMorphometryTest, AreaAndVolumeDoNotDependOnHowTheStackLies)
{
  Model& boxes = model();
  addItem(boxes, *_stack.getSlice(0), rectangle());
  addItem(boxes, *_stack.getSlice(1), {{11, 3}, {18, 7}, {25, 11}}); // on a line: no area to end the slab before
  addItem(boxes, *_stack.getSlice(2), rectangle());
  // Steps of equal length on either contour, which the surface may take in any order.
  Model& tied = model();
  addItem(tied, *_stack.getSlice(0), {{10, 0}, {30, 0}, {30, 20}, {10, 20}});
  addItem(tied, *_stack.getSlice(1), {{20, -5}, {35, 10}, {20, 25}, {5, 10}});
  const double area = measured(tied).getArea(), areaOfBoxes = measured(boxes).getArea();
  for (const float angle : {0.F, 10.F, 20.F, 37.F, 45.F, 201.3F})
  {
    _stack.getSlice(0)->setRegistration(Registration(3, -7, angle));
    EXPECT_DOUBLE_EQ(measured(boxes).getVolume(), 6 * 25) << angle;
    EXPECT_EQ(measured(boxes).getArea(), areaOfBoxes) << angle;
    EXPECT_EQ(measured(tied).getArea(), area) << angle;
  }
}

TEST_F(ModelMorphometryTest, VolumeOfAnEllipsoidConverges)
{
  // Half axes 30, 20 and 25 in space, drawn in pixels of 0.05.
  const auto relativeErrors = [](int numSlices, int numVertices)
  {
    Stack stack;
    stack.setDefaultRelativePosition(50.f / static_cast<float>(numSlices));
    Model& model = addModel(stack, "ellipsoid", MPrimitive::Polygon);
    for (int i = 0; i < numSlices; ++i)
    {
      StackSlice& slice = addSlice(stack, 2000, 2000);
      setPixelSize(slice, 0.05f, 0.04f);
      const double z = (i + 0.5) / numSlices * 2 - 1, radius = std::sqrt(1 - z * z);
      std::vector<std::vector<int>> pixels;
      for (int k = 0; k < numVertices; ++k)
      {
        const double angle = 2 * std::numbers::pi * k / numVertices;
        pixels.push_back({static_cast<int>(std::lround(30 * radius * std::cos(angle) / 0.05)),
                          static_cast<int>(std::lround(20 * radius * std::sin(angle) / 0.04))});
      }
      addItem(model, slice, pixels);
    }
    ModelMorphometry morphometry;
    morphometry.setModel(model);
    morphometry.run();
    const double volume = 4 * std::numbers::pi / 3 * 30 * 20 * 25;
    return std::abs(morphometry.getVolume() / volume - 1);
  };
  EXPECT_LT(relativeErrors(20, 40), 6e-3);
  EXPECT_LT(relativeErrors(80, 160), 4e-4);
}
