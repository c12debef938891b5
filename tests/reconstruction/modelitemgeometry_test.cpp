#include "geometry/reconstruction/modelitemgeometry.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(ModelItemGeometry, MeasuresItemsInTheStacksUnit)
{
  Stack stack;
  stack.setDefaultRelativePosition(2);
  // The second slice is turned and shifted as a whole: lengths and areas stay.
  for (const Registration& registration : {Registration(), Registration(7, -3, 30.0f)})
    setPixelSize(addSlice(stack, 41, 21, registration), 0.5, 0.25);
  Model& polygons = addModel(stack, "p", MPrimitive::Polygon);
  Model& lines = addModel(stack, "l", MPrimitive::Polyline);
  Model& points = addModel(stack, "d", MPrimitive::Polypoint);
  Model& regions = addModel(stack, "r", MPrimitive::Region);
  const std::vector<std::vector<int>> rectangle = {{0, 0}, {20, 0}, {20, 12}, {0, 12}}; // 10 by 3
  const double none = std::nan("");
  const struct
  {
    Model& model;
    double length, area;
  } cases[] = {{polygons, 26, 30}, {lines, 23, none}, {points, none, none}};
  const StackReconstruction<double> reconstruction(stack);
  ModelItemGeometry geometry(reconstruction);
  const auto expectValue = [](double value, double expected)
  {
    constexpr double tolerance = 1e-6; // pixel sizes and angles are floats
    const bool isRight = std::isnan(expected) ? std::isnan(value) : std::abs(value - expected) < tolerance;
    EXPECT_TRUE(isRight) << value << " instead of " << expected;
  };
  for (const auto& c : cases)
  {
    for (int k = 0; k < 2; ++k)
    {
      SCOPED_TRACE(c.model.getName() + std::to_string(k));
      geometry.setModelItem(addItem(c.model, *stack.getSlice(k), rectangle));
      geometry.run();
      EXPECT_EQ(geometry.getNumVertices(), 4);
      EXPECT_EQ(geometry.getVertices().getSize(), 4);
      expectValue(geometry.getLength(), c.length);
      expectValue(geometry.getArea(), c.area);
      EXPECT_EQ(geometry.getIsobarycenter()[2], 2 * k);
    }
  }

  geometry.setModelItem(*polygons.getItem(0));
  geometry.run(); // from the image's centre, rows upwards
  EXPECT_EQ(geometry.getIsobarycenter(), (Vector<double>{(10 - 20.5) / 2, (10.5 - 6) / 4, 0.}));

  // A region has the mean of its positions, and the area of its pixels.
  ModelItem& region = ModelItem::create(regions, *stack.getSlice(1));
  region.setRLEItemSet(RLEItemSet({RLEItem(3, 2, 4), RLEItem(5, 10, 1)}));
  ModelItem& samePoints = addItem(points, *stack.getSlice(1), {{3, 2}, {3, 3}, {3, 4}, {3, 5}, {5, 10}});
  geometry.setModelItem(samePoints);
  geometry.run();
  const Vector<double> center = geometry.getIsobarycenter();
  geometry.setModelItem(region);
  geometry.run();
  EXPECT_EQ(geometry.getNumVertices(), 5);
  expectValue(geometry.getArea(), 5 * 0.125);
  expectValue(geometry.getLength(), none);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(geometry.getIsobarycenter()[i], center[i], 1e-12);

  const ModelItem empty(&polygons, stack.getSlice(0)), homeless(&polygons);
  geometry.setModelItem(empty);
  geometry.run();
  EXPECT_EQ(geometry.getNumVertices(), 0);
  expectValue(geometry.getIsobarycenter()[0], none);
  geometry.setModelItem(homeless);
  expectError<UsageError>("no slice of the stack", [&] { geometry.run(); });
}
