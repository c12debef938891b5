#include "geometry/curve.h"
#include "image/imagesourcefile.h"
#include "model/stack.h"
#include "model/wmconverter.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{
Vertices<int> vertices(const std::vector<std::pair<int, int>>& points)
{
  Vertices<int> result;
  for (const auto& [x, y] : points) result.append(Vector<int>{x, y});
  return result;
}

/// A stack of two slices with models of each geometry.
class Drawing : public testing::Test
{
protected:
  Drawing()
  {
    for (int i = 0; i < 2; ++i) stack.addSlice(std::make_unique<StackSlice>()).setName("slice " + std::to_string(i));
    for (int i = 0; i < 4; ++i)
      stack.addModel(std::make_unique<Model>("model")).getProperties().setGeometry(static_cast<MPrimitive>(i));
  }

  ModelItem& draw(MPrimitive geometry, int slice, const std::vector<std::pair<int, int>>& points)
  {
    ModelItem& item = ModelItem::create(*stack.getModel(static_cast<int>(geometry)), *stack.getSlice(slice));
    item.setVertices(vertices(points));
    return item;
  }

  Stack stack;
};

const std::vector<std::pair<int, int>> counterClockwiseSquare = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
} // namespace

TEST(RegistrationSum, CorrectsTheAngleOnce)
{
  const struct
  {
    Registration result;
    float angle;
  } cases[] = {{Registration(0, 0, 350) + Registration(0, 0, 20), 10},
               {Registration(0, 0, 10) - Registration(0, 0, 20), 350},
               {Registration(0, 0, 180) + Registration(0, 0, 180), 0},
               {Registration(0, 0, 700) + Registration(0, 0, 100), 440}};
  for (const auto& c : cases) EXPECT_EQ(c.result.getAngle(), c.angle);
  EXPECT_EQ(Registration(1, 2, 3) - Registration(4, 6, 3), Registration(-3, -4, 0));
  constexpr int least = std::numeric_limits<int>::min(), greatest = std::numeric_limits<int>::max();
  EXPECT_EQ(Registration(greatest, 0, 0) + Registration(1, 0, 0), Registration(greatest, 0, 0));
  EXPECT_EQ(Registration(0, least, 0) - Registration(0, 1, 0), Registration(0, least, 0));
}

TEST(Slice, CorrectsItsSizeByTheAspectRatio)
{
  const struct
  {
    float aspectRatio;
    int width, height;
  } cases[] = {{2, 50, 80}, {0.5f, 100, 40}, {1, 100, 80}, {0.99f, 100, 79}, {1.5f, 67, 80}};
  for (const auto& c : cases)
  {
    Slice slice;
    ImageSourceFile source("missing.tif");
    source.setFallbackSize(80, 100);
    slice.setImageSource(source);
    PixelCalibration calibration;
    calibration.setAspectRatio(c.aspectRatio);
    slice.setPixelCalibration(calibration);
    EXPECT_EQ(slice.width(), c.width);
    EXPECT_EQ(slice.height(), c.height);
    unsigned int width = 1000, height = 10;
    slice.sizeForSize(width, height);
    EXPECT_EQ(width, static_cast<unsigned int>(10.0 * c.width / c.height + 0.5));
    EXPECT_EQ(height, 10u);
  }
  expectError<FileReadError>("No such file",
                             []
                             {
                               Slice slice;
                               slice.setImageSource(ImageSourceFile("missing.tif"));
                               slice.width();
                             });
}

TEST(WMConverter, MapsRectanglesOntoEachOther)
{
  WMConverter converter;
  converter.setWorld(10, 20, 101, 51);
  converter.setModel(5, 6, 201, 26);
  EXPECT_EQ(converter.xToModel(60), 105);
  EXPECT_EQ(converter.yToModel(70), 31);
  EXPECT_EQ(converter.xToModel(9), 3); // outside, on the other side
  EXPECT_EQ(converter.xToWorld(105), 60);
  EXPECT_EQ(converter.lengthToModel(-3), -5); // 201 * 3 / 101, toward zero
  converter.setWorld(10, 20, 1, 0);
  EXPECT_EQ(converter.xToModel(60), 5);
  EXPECT_EQ(converter.yToModel(60), 6);
  EXPECT_EQ(converter.lengthToWorld(7), 0);
}

TEST(ModelProperties, IntersectAndUpdateFieldByField)
{
  ModelProperties a, b;
  a.setDefaults();
  b.setDefaults();
  b.setSurfaceOpacity(12);
  ModelProperties common = a;
  common.intersection(b);
  EXPECT_FALSE(common.definesSurfaceOpacity());
  common.update(a);
  EXPECT_EQ(common, a);
  EXPECT_TRUE(common.hasEndCapFlag());
  EXPECT_EQ(ModelProperties::toPrimitive("Region"), MPrimitive::Region);
  EXPECT_EQ(ModelProperties::toRenderingMode("Nonsense"), RenderingMode::Unknown);
  EXPECT_EQ(ModelProperties::toString(static_cast<RenderingMode>(-3)), "Unknown");
}

TEST(ModelItemProperties, AddAndSubtract)
{
  ModelItemProperties red, thick;
  red.setColor(255, 0, 0);
  red.setPointSize(2);
  thick.setLineWidth(3);
  thick.setPointSize(2);
  const ModelItemProperties sum = red + thick;
  EXPECT_TRUE(sum.definesColor() && sum.definesLineWidth() && !sum.definesVertexSymbol());
  const ModelItemProperties difference = red - thick;
  EXPECT_TRUE(difference.definesColor());
  EXPECT_FALSE(difference.definesPointSize());
  EXPECT_EQ(difference + thick, sum);
}

TEST(Names, ThatAStackFileWouldChangeAreRefused)
{
  for (const char* name : {"a;b", "\"quoted\"", "#1", "two  blanks", "__", "\xC3\xA9"})
  {
    StackSlice slice;
    slice.setName(name);
    EXPECT_EQ(slice.getName(), name);
  }
  const std::string longest(65535, '"');
  EXPECT_EQ(Model(longest).getName(), longest);
  for (const std::string& name : {std::string("a\nb"), std::string("tab\t"), std::string("x__SC__"),
                                  std::string("__SC;"), // would read as ";SC__"
                                  longest + "x"})
    expectError<ValueError>("must not hold", [&name] { Model model(name); });
}

TEST_F(Drawing, ItemsLeaveTheListsWithWhatOwnsThem)
{
  for (int i = 0; i < 6; ++i) draw(i % 3 == 0 ? MPrimitive::Polypoint : MPrimitive::Polygon, i % 2, {});
  Model& polygons = *stack.getModel(0);
  EXPECT_EQ(polygons.getNumItems(), 4);
  stack.deleteSlice(0);
  EXPECT_EQ(polygons.getNumItems(), 2);
  EXPECT_EQ(stack.getSlice(0)->getNumItems(), 3);
  stack.deleteModel(0);
  EXPECT_EQ(stack.getSlice(0)->getNumItems(), 1);
  ModelItem* const point = stack.getSlice(0)->getItem(0);
  const std::unique_ptr<Model> removed = stack.removeModel(point->getModel());
  point->detach();
  EXPECT_EQ(removed->getNumItems(), 0);
  delete point;
}

TEST_F(Drawing, AllModelsGoWithTheirItemsAtOnce)
{
  constexpr int count = 20000;
  for (int i = 0; i < count; ++i)
    ModelItem::create(stack.addModel(std::make_unique<Model>("model")), *stack.getSlice(0));
  stack.deleteAllModels();
  EXPECT_EQ(stack.getNumModels(), 0);
  EXPECT_EQ(stack.getSlice(0)->getNumItems(), 0);
}

TEST_F(Drawing, ResolvesImageNamesAgainstTheImagesPath)
{
  const auto nameOf = [this](int i)
  { return static_cast<const ImageSourceFile*>(stack.getSlice(i)->getImageSource())->getFilename(); };
  stack.getSlice(0)->setImageSource(ImageSourceFile("a.tif"));
  EXPECT_EQ(nameOf(0), "a.tif"); // there is no path
  stack.setImagesPath("/images");
  stack.getSlice(0)->setImageSource(ImageSourceFile("../a.tif"));
  stack.getSlice(1)->setImageSource(ImageSourceFile("/b.tif"));
  auto slice = std::make_unique<StackSlice>();
  slice->setImageSource(ImageSourceFile("c.tif"));
  stack.addSlice(std::move(slice), 1);
  EXPECT_EQ(nameOf(0), "/a.tif");
  EXPECT_EQ(nameOf(1), "/images/c.tif");
  EXPECT_EQ(nameOf(2), "/b.tif");
}

TEST_F(Drawing, OnlyPolygonsTurn)
{
  ModelItem& line = draw(MPrimitive::Polyline, 0, counterClockwiseSquare);
  line.setClockwise(true);
  EXPECT_EQ(line.getVertices()[1], (Vector<int>{4, 0}));
  ModelItem& square = draw(MPrimitive::Polygon, 0, counterClockwiseSquare);
  square.getSelection().set(true, 0, false);
  EXPECT_FALSE(square.isClockwise());
  for (int i = 0; i < 2; ++i) // the second time nothing is left to turn
  {
    square.setClockwise(true);
    EXPECT_TRUE(square.isClockwise());
    EXPECT_EQ(square.getVertices()[0], (Vector<int>{0, 4}));
    EXPECT_TRUE(square.getSelection().isSelected(3));
  }
}

TEST_F(Drawing, EditingKeepsTheSelectionWithItsVertices)
{
  ModelItem& item = draw(MPrimitive::Polygon, 0, counterClockwiseSquare);
  item.getSelection().set(true, 2, false);
  item.insertVertex(1, Vector<int>{2, 0});
  EXPECT_TRUE(item.getSelection().isSelected(3));
  item.removeVertices(0, 1);
  EXPECT_TRUE(item.getSelection().isSelected(1));
  EXPECT_EQ(item.getSelection().getSize(), 1);
  EXPECT_EQ(item.unselectedVertices().getSize(), 2);
  item.removeSelectedVertices();
  EXPECT_EQ(item.getVertices()[1], (Vector<int>{0, 4}));
  EXPECT_TRUE(item.getSelection().isEmpty());
  expectError<RangeError>("", [&] { item.removeVertex(2); });
}

TEST_F(Drawing, HitTestsFindTheNearestVertexAndSegment)
{
  ModelItem& item = draw(MPrimitive::Polygon, 0, counterClockwiseSquare);
  EXPECT_EQ(item.findNearestVertex(Vector<int>{3, 3}, 2), 2);
  EXPECT_EQ(item.findNearVertex(Vector<int>{3, 3}, 5), 0);
  EXPECT_EQ(item.findNearestVertex(Vector<int>{2, 2}, 1), -1);
  EXPECT_EQ(item.findInsertion(Vector<int>{-1, 2}, 1), 4); // on the closing segment
  ModelItem& line = draw(MPrimitive::Polyline, 0, counterClockwiseSquare);
  EXPECT_EQ(line.findInsertion(Vector<int>{-1, 2}, 1), -1);
  EXPECT_EQ(line.findInsertion(Vector<int>{4, 2}, 0), 2);
}

TEST_F(Drawing, ContainmentNeedsOneSliceAndAnAreaAroundAVertex)
{
  const ModelItem& square = draw(MPrimitive::Polygon, 0, counterClockwiseSquare);
  EXPECT_TRUE(square.partiallyContains(draw(MPrimitive::Polyline, 0, {{9, 9}, {2, 2}})));
  EXPECT_FALSE(square.partiallyContains(draw(MPrimitive::Polyline, 1, {{9, 9}, {2, 2}})));
  EXPECT_FALSE(draw(MPrimitive::Polyline, 0, counterClockwiseSquare).partiallyContains(square));
  EXPECT_TRUE(stack.getModel(0)->partiallyContains(*stack.getModel(1)));
}

TEST_F(Drawing, ContainmentOfRunsIsThatOfTheirPositions)
{
  std::mt19937 random(9);
  const auto coordinate = [&random] { return static_cast<int>(random() % 12); };
  int numContained = 0;
  for (int round = 0; round < 2000; ++round)
  {
    std::vector<std::pair<int, int>> corners(3 + random() % 5);
    for (auto& [x, y] : corners) x = coordinate(), y = coordinate();
    ModelItem& polygon = draw(MPrimitive::Polygon, 0, corners);
    ModelItem& area = draw(MPrimitive::Region, 0, {});
    area.setRLEItemSet(RLEItemSet({RLEItem(coordinate(), coordinate(), 4), RLEItem(coordinate(), coordinate(), 4)}));
    const RLEItem run(coordinate() - 1, coordinate() - 1, 1 + coordinate());
    ModelItem& region = draw(MPrimitive::Region, 0, {});
    region.setRLEItemSet(RLEItemSet({run}));
    std::vector<std::pair<int, int>> positions;
    for (int y = run.begin(); y <= run.end(); ++y) positions.emplace_back(run.getOriginX(), y);
    const ModelItem& points = draw(MPrimitive::Polypoint, 0, positions);
    ASSERT_EQ(polygon.partiallyContains(region), polygon.partiallyContains(points)) << "round " << round;
    ASSERT_EQ(area.partiallyContains(region), area.partiallyContains(points)) << "round " << round;
    numContained += polygon.partiallyContains(region);
  }
  EXPECT_GT(numContained, 200);
  EXPECT_LT(numContained, 1800);
}

TEST_F(Drawing, ContainmentTakesNoLongerForLongRuns)
{
  constexpr int far = 2000000000;
  const ModelItem& wide = draw(MPrimitive::Polygon, 0, {{-far, -far}, {far, -far}, {far, far}});
  ModelItem& region = draw(MPrimitive::Region, 0, {});
  std::vector<RLEItem> runs;
  for (int x = 0; x < 1000; ++x) runs.emplace_back(-1000 + x, -far / 2, far); // ends before the slanting side
  runs.emplace_back(5, 6, far);
  region.setRLEItemSet(RLEItemSet(runs));
  EXPECT_TRUE(wide.partiallyContains(region));
  region.setRLEItemSet(RLEItemSet({RLEItem(5, 6, far)})); // right of it, the run is outside
  EXPECT_FALSE(wide.partiallyContains(region));
  ModelItem& other = draw(MPrimitive::Region, 0, {});
  other.setRLEItemSet(RLEItemSet({RLEItem(4, 6, far), RLEItem(5, -far, far), RLEItem(6, 6, far)}));
  EXPECT_FALSE(other.partiallyContains(region));
}

TEST_F(Drawing, BuddiesHaveTheSameModelAndProperties)
{
  ModelItem& item = draw(MPrimitive::Polypoint, 0, {});
  draw(MPrimitive::Polygon, 0, {});
  EXPECT_EQ(stack.getSlice(0)->buddyItem(item), nullptr);
  ModelItem& buddy = draw(MPrimitive::Polypoint, 0, {});
  EXPECT_EQ(stack.getSlice(0)->buddyItem(item), &buddy);
  buddy.getProperties().setPointSize(3);
  EXPECT_EQ(stack.getSlice(0)->buddyItem(item), nullptr);
}

TEST_F(Drawing, BecomesShapesOfItsGeometry)
{
  const ShapeType types[] = {ClosedCurveShape, OpenCurveShape, VerticesShape};
  for (int i = 0; i < 3; ++i)
  {
    const auto geometry = static_cast<MPrimitive>(i);
    const std::unique_ptr<Shape<double>> shape(draw(geometry, 0, counterClockwiseSquare).toShape<double>());
    EXPECT_EQ(shape->getShapeType(), types[i]);
    EXPECT_EQ(shape->getNumVertices(), 4);
  }
  ModelItem& region = draw(MPrimitive::Region, 0, {});
  region.setRLEItemSet(RLEItemSet({RLEItem(7, 1, 3)}));
  const std::unique_ptr<Shape<float>> shape(region.toShape<float>());
  EXPECT_EQ((*shape)[Vector<int>{2}], (Vector<float>{7, 3}));
  EXPECT_EQ(region.getSize(), 3);
}

TEST_F(Drawing, IsRegularOnlyWithEqualSlices)
{
  const auto reset = [this]
  {
    for (int i = 0; i < stack.getNumSlices(); ++i)
    {
      stack.getSlice(i)->setRelativePosition(0.1f);
      stack.getSlice(i)->setRegistration(Registration());
    }
  };
  stack.addSlice(std::make_unique<StackSlice>());
  reset();
  stack.getFirstSlice()->setRegistration(Registration(1, 0, 0)); // never examined
  stack.getFirstSlice()->setRelativePosition(7);
  EXPECT_TRUE(stack.isRegular());
  stack.getSlice(2)->setRelativePosition(0.1000005f);
  EXPECT_TRUE(stack.isRegular());
  stack.getSlice(2)->setRelativePosition(0.1001f);
  EXPECT_FALSE(stack.isRegular());
  reset();
  stack.getSlice(1)->setRegistration(Registration(0, 0, 0.5f));
  EXPECT_FALSE(stack.isRegular());
  stack.clear();
  EXPECT_FALSE(stack.isRegular());
  stack.addSlice(std::make_unique<StackSlice>());
  EXPECT_TRUE(stack.isRegular());
}

TEST_F(Drawing, ChangesItsUnitWithAllLengths)
{
  PixelCalibration calibration = stack.getDefaultPixelCalibration();
  calibration.setPixelWidth(0.0645f);
  stack.setDefaultPixelCalibration(calibration);
  stack.getSlice(0)->setAbsolutePosition(1.5f);
  stack.setDefaultSliceSpacing(2);
  stack.convertLengthUnit(-9);
  EXPECT_FLOAT_EQ(stack.getDefaultPixelCalibration().getPixelWidth(), 64.5f);
  EXPECT_EQ(stack.getLengthUnit().name(), "nanometer");
  EXPECT_EQ(stack.absolutePositions(), (std::vector<float>{1500, 3500}));
}

TEST(ModelItemOwner, ItemsComeBackBetweenTheSameNeighbours)
{
  Stack stack;
  Model& model = addModel(stack, "cells", MPrimitive::Polygon);
  StackSlice& slice = addSlice(stack, 10, 10);
  for (int i = 0; i < 20; ++i) ModelItem::create(model, slice);
  const std::vector<ModelItem*> all = model.getItems();
  std::mt19937 random(1);
  for (int round = 0; round < 20; ++round)
  {
    std::vector<ModelItemOwner::Place> singles;
    for (int i = 0; i < 5; ++i)
    {
      ModelItem* const item = model.getItem(static_cast<int>(random() % model.getItems().size()));
      singles.push_back({model.takeItem(item), item});
    }
    const auto places = model.takeItemsIf([&](const ModelItem&) { return random() % 3 == 0; });
    EXPECT_EQ(model.getItems().size() + places.size() + singles.size(), all.size());
    std::shuffle(singles.begin(), singles.end(), random);
    for (std::size_t i = 0; i < 2; ++i) model.restoreItem(singles[i].item, singles[i].number);
    model.restoreItems(places);
    for (std::size_t i = 2; i < 5; ++i) model.restoreItem(singles[i].item, singles[i].number);
    EXPECT_EQ(model.getItems(), all);
  }
  EXPECT_EQ(slice.getItems(), all);
  ModelItem stranger;
  EXPECT_EQ(model.takeItem(&stranger), 0);
}

TEST(Stack, SlicesAndModelsMoveToOtherPlaces)
{
  const struct
  {
    int from, to;
    const char* order;
  } cases[] = {{0, 0, "abcd"}, {0, 3, "bcda"}, {3, 0, "dabc"}, {1, 2, "acbd"}, {2, 1, "acbd"}};
  for (const auto& c : cases)
  {
    Stack stack;
    for (const char* name : {"a", "b", "c", "d"})
    {
      addModel(stack, name, MPrimitive::Polygon);
      addSlice(stack, 10, 10).setName(name);
    }
    stack.moveModel(c.from, c.to);
    stack.moveSlice(c.from, c.to);
    std::string models, slices;
    for (int i = 0; i < 4; ++i)
    {
      models += stack.getModel(i)->getName();
      slices += stack.getSlice(i)->getName();
      EXPECT_EQ(stack.findModel(stack.getModel(i)), i);
      EXPECT_EQ(stack.findSlice(stack.getSlice(i)->getName()), i);
    }
    EXPECT_EQ(models, c.order);
    EXPECT_EQ(slices, c.order);
  }
}
