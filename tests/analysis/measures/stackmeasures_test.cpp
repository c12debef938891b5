#include "analysis/measures/stackmeasures.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace
{
using Pixels = std::vector<std::vector<int>>;

Pixels rectangle(int width, int height, int u = 0, int v = 0)
{
  return {{u, v}, {u + width, v}, {u + width, v + height}, {u, v + height}};
}

MeasureTable itemsOf(const Stack& stack, const Model& model)
{
  ProgressSubject progress;
  return itemTable(stack, model, progress);
}

MeasureTable modelsOf(const Stack& stack, MPrimitive geometry)
{
  std::vector<ModelMeasures> measures;
  for (int i = 0; i < stack.getNumModels(); ++i) measures.push_back(measureModel(*stack.getModel(i)));
  return modelTable(measures, geometry, stack.getLengthUnit().symbol());
}

double valueOf(const MeasureTable& table, int row, const std::string& column)
{
  for (int i = 0; i < table.getNumColumns(); ++i)
    if (table.getColumn(i).name == column) return table.getValue(row, i);
  ADD_FAILURE() << "no column " << column;
  return 0;
}

/// Slices 2 apart with pixels of 0.5 by 0.25, in whose numbers nothing is rounded.
class StackMeasures : public testing::Test
{
protected:
  StackMeasures()
  {
    _stack.setDefaultRelativePosition(2);
    for (int i = 0; i < 3; ++i) setPixelSize(addSlice(_stack, 40, 20), 0.5, 0.25);
  }

  Model& model(const std::string& name, MPrimitive geometry, const std::vector<std::pair<int, Pixels>>& items)
  {
    Model& model = addModel(_stack, name, geometry);
    for (const auto& [slice, pixels] : items) addItem(model, *_stack.getSlice(slice), pixels);
    return model;
  }

  Stack _stack;
};

/// Shapes with closed forms, on eleven slices 3 apart with pixels of 0.05 by 0.04, in a unit that is 1 / `scale` of
/// that.
class Shapes
{
public:
  static constexpr int numSlices = 11;
  static constexpr double spacing = 3, width = 0.05, height = 0.04;
  static constexpr double radiusX = 30, radiusY = 20; // of the ellipses, around (4, -6)

  Shapes(int unit, double scale, const Registration& whole, bool isInverted)
  {
    _stack.setLengthUnit(LengthUnit(unit));
    _stack.setInvertZAxis(isInverted);
    _stack.setDefaultRelativePosition(static_cast<float>(spacing * scale));
    for (int k = 0; k < numSlices; ++k)
    {
      StackSlice& slice = addSlice(_stack, 2000, 1000, k == 0 ? whole : Registration());
      setPixelSize(slice, static_cast<float>(width * scale), static_cast<float>(height * scale));
    }
    drawPyramid();
    drawEllipses();
    drawRibbon();
  }
  const Stack& getStack() const { return _stack; }

private:
  void drawPyramid() // frustum: from 80 by 64 to 40 by 32 around the centre of the image
  {
    Model& model = addModel(_stack, "frustum", MPrimitive::Polygon);
    for (int k = 0; k < numSlices; ++k)
      addItem(model, *_stack.getSlice(k),
              rectangle(1600 - 80 * k, 1600 - 80 * k, 1000 - 800 + 40 * k, 500 - 800 + 40 * k));
  }

  void drawEllipses()
  {
    Model& contours = addModel(_stack, "ellipses", MPrimitive::Polygon);
    Model& regions = addModel(_stack, "discs", MPrimitive::Region);
    Pixels contour;
    for (int i = 0; i < 240; ++i)
    {
      const double angle = std::numbers::pi * i / 120;
      contour.push_back({static_cast<int>(std::lround(1080 + radiusX / width * std::cos(angle))),
                         static_cast<int>(std::lround(650 + radiusY / height * std::sin(angle)))});
    }
    std::vector<RLEItem> runs;
    for (int u = -599; u < 600; ++u)
    {
      const int half = static_cast<int>(radiusY / height * std::sqrt(1 - u * width * u * width / radiusX / radiusX));
      runs.emplace_back(1080 + u, 650 - half, 2 * half + 1);
    }
    for (int k = 0; k < numSlices; ++k)
    {
      addItem(contours, *_stack.getSlice(k), contour);
      ModelItem::create(regions, *_stack.getSlice(k)).setRLEItemSet(RLEItemSet(runs));
    }
  }

  void drawRibbon() // a line of steps (3, 4) and (3, -4), parallel to itself from slice to slice
  {
    Model& model = addModel(_stack, "ribbon", MPrimitive::Polyline);
    for (int k = 0; k < numSlices; ++k)
      addItem(model, *_stack.getSlice(k), {{1000, 500}, {1060, 600}, {1120, 500}, {1180, 600}});
  }

  Stack _stack;
};
} // namespace

// The stack turned and shifted as a whole, upside down or in another unit: only positions follow.
TEST(StackMeasuresOfShapes, AreThoseOfClosedFormsHoweverTheStackLies)
{
  constexpr double pi = std::numbers::pi, a = Shapes::radiusX, b = Shapes::radiusY;
  const double depth = Shapes::spacing * (Shapes::numSlices - 1);
  // Four trapezoids with edges of 80 and 40, 64 and 32, whose slants go 16 and 20 inwards.
  const double frustum = (80 + 40) * std::hypot(depth, 16) + (64 + 32) * std::hypot(depth, 20);
  double frustumVolume = 0;
  for (int k = 0; k < Shapes::numSlices; ++k) frustumVolume += (80 - 4 * k) * (64 - 3.2 * k) * Shapes::spacing;
  const double perimeter = 4 * a * std::comp_ellint_2(std::sqrt(1 - b * b / (a * a)));
  const double cylinder = pi * a * b * Shapes::spacing * Shapes::numSlices;
  // Steps of 60 pixels of 0.05 and 100 pixels of 0.04.
  const struct
  {
    int model;
    const char* column;
    int power; // of the unit
    double ofItem, ofModel, tolerance;
    double x, y;
  } cases[] = {
      {0, "Area", 2, 80 * 64, frustum, 1e-6, 0, 0},
      {0, "Volume", 3, 0, frustumVolume, 1e-6, 0, 0},
      {0, "Length", 1, 2 * (80 + 64), 0, 1e-6, 0, 0},
      {1, "Length", 1, perimeter, 0, 1e-3, 4, -6}, // rounded to pixels it is longer
      {1, "Area", 2, pi * a * b, perimeter * depth, 1e-3, 4, -6},
      {1, "Volume", 3, 0, cylinder, 3e-4, 4, -6},
      {2, "Area", 2, pi * a * b, 0, 1e-3, 4, -6},
      {2, "Volume", 3, 0, cylinder, 1e-3, 4, -6},
      {3, "Length", 1, 15, 0, 1e-6, 4.5, -2},
      {3, "Area", 2, 0, 15 * depth, 1e-6, 4.5, -2},
  };
  const struct
  {
    const char* name;
    int unit;
    double scale;
    Registration whole;
    bool isInverted;
  } variants[] = {
      {"as drawn, in micrometres", -6, 1, {}, false},
      {"turned and shifted", -6, 1, Registration(300, -700, 37.5f), false},
      {"upside down", -6, 1, {}, true},
      {"in nanometres, turned, shifted and upside down", -9, 1000, Registration(-90, 40, 250.f), true},
      {"in metres", 0, 1e-6, Registration(0, 1, 90.f), false},
  };
  for (const auto& variant : variants)
  {
    const Shapes shapes(variant.unit, variant.scale, variant.whole, variant.isInverted);
    const Stack& stack = shapes.getStack();
    const double angle = -pi / 180 * static_cast<double>(variant.whole.getAngle());
    const double shiftX = Shapes::width * variant.whole.getHorizontalShift();
    const double shiftY = -Shapes::height * variant.whole.getVerticalShift();
    for (const auto& c : cases)
    {
      SCOPED_TRACE(std::string(variant.name) + ": " + stack.getModel(c.model)->getName() + ", " + c.column);
      const Model& model = *stack.getModel(c.model);
      const double unit = std::pow(variant.scale, c.power);
      const auto expectCloseTo = [&](const MeasureTable& table, double expected)
      {
        if (expected > 0) // the table has this column
        {
          EXPECT_NEAR(valueOf(table, 0, c.column) / expected, 1, c.tolerance);
        }
      };
      const MeasureTable items = itemsOf(stack, model);
      ASSERT_EQ(items.getNumRows(), Shapes::numSlices);
      expectCloseTo(items, c.ofItem * unit);
      const MeasureTable whole = modelTable({measureModel(model)}, stack.getLengthUnit().symbol());
      expectCloseTo(whole, c.ofModel * unit);

      const double x = std::cos(angle) * c.x - std::sin(angle) * c.y + shiftX;
      const double y = std::sin(angle) * c.x + std::cos(angle) * c.y + shiftY;
      const double z = (variant.isInverted ? -1 : 1) * depth;
      const double positionTolerance = 1e-4; // of pixels in single precision, 50 from the centre
      for (const auto& [table, expectedZ] : {std::pair(&whole, z / 2), std::pair(&items, z)})
      {
        const int last = table->getNumRows() - 1;
        EXPECT_NEAR(valueOf(*table, last, "AverageX") / variant.scale, x, positionTolerance);
        EXPECT_NEAR(valueOf(*table, last, "AverageY") / variant.scale, y, positionTolerance);
        const double foundZ = valueOf(*table, last, table == &whole ? "AverageZ" : "Z");
        EXPECT_NEAR(foundZ / variant.scale, expectedZ, positionTolerance);
      }
    }
  }
}

TEST_F(StackMeasures, TellsWhatIsMissing)
{
  model("box", MPrimitive::Polygon, {{0, rectangle(20, 12)}, {2, rectangle(20, 12)}}); // 10 by 3 by 4
  model("pair", MPrimitive::Polygon, {{1, rectangle(8, 8)}, {1, rectangle(8, 8, 20)}});
  model("empty", MPrimitive::Polygon, {});
  model("one", MPrimitive::Polygon, {{0, rectangle(8, 8)}});
  EXPECT_EQ(modelsOf(_stack, MPrimitive::Polygon).toCsv(),
            "Model,Vertices,AverageX [\u00b5m],AverageY [\u00b5m],AverageZ [\u00b5m],Contours,Area [\u00b5m^2],Volume "
            "[\u00b5m^3]\r\n"
            "box,8,-5,1,2,2,104,180\r\n"
            "pair,8,-3,1.5,2,2,NA,32\r\n"
            "empty,0,NA,NA,NA,0,0,0\r\n"
            "one,4,-8,1.5,0,1,0,16\r\n");
  model("line", MPrimitive::Polyline, {{0, {{0, 0}, {20, 0}}}, {1, {{0, 0}, {20, 0}}}});
  model("lines", MPrimitive::Polyline, {{0, {{0, 0}, {20, 0}}}, {0, {{0, 8}, {20, 8}}}});
  EXPECT_EQ(modelsOf(_stack, MPrimitive::Polyline).toCsv(),
            "Model,Vertices,AverageX [\u00b5m],AverageY [\u00b5m],AverageZ [\u00b5m],Contours,Area [\u00b5m^2]\r\n"
            "line,4,-5,2.5,1,2,20\r\n"
            "lines,4,-5,1.5,0,2,NA\r\n");
  const Model& dots = model("dots", MPrimitive::Polypoint, {{0, {{20, 10}, {22, 10}, {24, 10}}}, {2, {{18, 10}}}});
  _stack.setLengthUnit(LengthUnit(-9));
  EXPECT_EQ(modelsOf(_stack, MPrimitive::Polypoint).toCsv(),
            "Model,Vertices,AverageX [nm],AverageY [nm],AverageZ [nm]\r\n"
            "dots,4,0.5,0,1\r\n");
  EXPECT_EQ(itemsOf(_stack, dots).toCsv(), "Slice,X [nm],Y [nm],Z [nm]\r\n"
                                           "slice 0,0,0,0\r\nslice 0,1,0,0\r\nslice 0,2,0,0\r\nslice 2,-1,0,4\r\n");
  EXPECT_EQ(itemsOf(_stack, dots).getSource(3), 1) << "rows say to which item they belong";
}

TEST_F(StackMeasures, GiveEachItemARowInTheOrderOfTheSlices)
{
  const Model& line = model("line", MPrimitive::Polyline, {{1, rectangle(20, 12)}, {0, {}}, {0, {{20, 10}}}});
  EXPECT_EQ(itemsOf(_stack, line).toCsv(), "Slice,Vertices,Length [\u00b5m],AverageX [\u00b5m],AverageY [\u00b5m],Z "
                                           "[\u00b5m]\r\nslice 0,0,0,NA,NA,0\r\nslice 0,1,0,0,0,0\r\nslice "
                                           "1,4,23,-5,1,2\r\n");
  _stack.setInvertZAxis(true);
  const Model& box = model("box", MPrimitive::Polygon, {{2, rectangle(20, 12)}, {0, rectangle(20, 12)}});
  Model& stain = model("stain", MPrimitive::Region, {});
  ModelItem::create(stain, *_stack.getSlice(1)).setRLEItemSet(RLEItemSet({RLEItem(20, 10, 3), RLEItem(21, 0, 1)}));
  const std::string headers =
      "Slice,Vertices,Length [\u00b5m],Area [\u00b5m^2],AverageX [\u00b5m],AverageY [\u00b5m],Z "
      "[\u00b5m]\r\n";
  EXPECT_EQ(itemsOf(_stack, box).toCsv(), headers + "slice 0,4,26,30,-5,1,0\r\nslice 2,4,26,30,-5,1,-4\r\n");
  EXPECT_EQ(itemsOf(_stack, stain).toCsv(), headers + "slice 1,4,NA,0.5,0.125,0.4375,-2\r\n");
  EXPECT_EQ(emptyItemTable(MPrimitive::Region, "\u00b5m").toCsv(), headers);

  ProgressSubject progress;
  const Canceller canceller(progress, 0.5);
  expectError<Cancelled>("", [&] { itemTable(_stack, box, progress); });
}

TEST_F(StackMeasures, CountTheItemsOrPointsOfEachSlice)
{
  EXPECT_EQ(sliceTable(_stack, {}).toCsv(), "Slice\r\nslice 0\r\nslice 1\r\nslice 2\r\n");
  const Model& dots = model("dots", MPrimitive::Polypoint, {{0, {{1, 1}, {2, 2}}}, {0, {{3, 3}}}, {2, {}}});
  const Model& pair = model("a,b", MPrimitive::Polygon, {{1, rectangle(8, 8)}, {1, rectangle(8, 8)}});
  const Model& other = model("other", MPrimitive::Polyline, {{1, {{0, 0}}}});
  EXPECT_EQ(sliceTable(_stack, {&dots, &pair}).toCsv(), "Slice,dots,\"a,b\"\r\nslice 0,3,0\r\nslice 1,0,2\r\n"
                                                        "slice 2,0,0\r\n");
  EXPECT_EQ(sliceTable(_stack, {&other}).getValue(1, 1), 1);
  EXPECT_EQ(sliceTable(Stack(), {}).toCsv(), "Slice\r\n");
}
