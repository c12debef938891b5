#include "model/stacksliceselectioninfo.h"
#include "tests/model/countedallocations.h"
#include "tests/support/stacks.h"

#include <chrono>
#include <cmath>
#include <gtest/gtest.h>

namespace
{
using Tag = CurveStackTriangulationContourTag;

/// Two polygons and a polyline of one slice, with three vertices each, and a region.
class Selection : public testing::Test
{
protected:
  Selection()
  {
    StackSlice& slice = addSlice(stack, 100, 100);
    Model& polygons = addModel(stack, "polygons", MPrimitive::Polygon);
    Model& others = addModel(stack, "others", MPrimitive::Polygon);
    for (Model* model : {&polygons, &polygons, &others, &addModel(stack, "lines", MPrimitive::Polyline)})
      items.push_back(&addItem(*model, slice, {{0, 0}, {9, 0}, {9, 9}}));
    items.push_back(&ModelItem::create(addModel(stack, "regions", MPrimitive::Region), slice));
    items.back()->setRLEItemSet(RLEItemSet({RLEItem(1, 1, 5)}));
  }

  StackSliceSelectionInfo select(const std::vector<int>& whole, const std::vector<int>& partly = {})
  {
    for (ModelItem* item : items) item->removeSelection();
    for (const int i : whole) items[static_cast<std::size_t>(i)]->getSelection().set(true);
    for (const int i : partly) items[static_cast<std::size_t>(i)]->getSelection().set(true, 1, false);
    return StackSliceSelectionInfo(*stack.getSlice(0));
  }

  Stack stack;
  std::vector<ModelItem*> items;
};

template <class Action> double millisecondsOf(Action action)
{
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}
} // namespace

TEST_F(Selection, IsSummedUp)
{
  const StackSliceSelectionInfo none = select({});
  EXPECT_TRUE(none.isEmpty());
  EXPECT_FALSE(none.isMultiple() || none.isHomogeneous() || none.isPartial() || none.getTriangulationTag());
  EXPECT_EQ(none.getGeometry(), MPrimitive::Unknown);

  const struct
  {
    const char* name;
    std::vector<int> whole, partly;
    bool isMultiple, isHomogeneous, isPartial;
    MPrimitive geometry;
  } cases[] = {
      {"one item", {0}, {}, false, true, false, MPrimitive::Polygon},
      {"a vertex of one item", {}, {0}, false, true, true, MPrimitive::Polygon},
      {"two of one model, one in part", {0}, {1}, true, true, true, MPrimitive::Polygon},
      {"two models of one geometry", {1, 2}, {}, true, false, false, MPrimitive::Polygon},
      {"two geometries", {2, 3}, {}, true, false, false, MPrimitive::Unknown},
      {"a region", {4}, {}, false, true, false, MPrimitive::Region},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const StackSliceSelectionInfo info = select(c.whole, c.partly);
    EXPECT_EQ(info.isMultiple(), c.isMultiple);
    EXPECT_EQ(info.isHomogeneous(), c.isHomogeneous);
    EXPECT_EQ(info.isPartial(), c.isPartial);
    EXPECT_EQ(info.getGeometry(), c.geometry);
    EXPECT_EQ(info.getTriangulationTag(), Tag::None);
  }
  items[0]->setTriangulationTag(Tag::Begin);
  EXPECT_EQ(select({0}).getTriangulationTag(), Tag::Begin);
  EXPECT_FALSE(select({0, 1}).getTriangulationTag());
}

TEST_F(Selection, OfItemsOfAHundredThousandVerticesAnswersWithinAFrame)
{
  constexpr int numVertices = 100000;
#ifdef NDEBUG
  constexpr double frame = 1000.0 / 60;
#else
  constexpr double frame = 1000; // without optimisation, and with checks
#endif
  Vertices<int> ring(2, numVertices);
  for (int i = 0; i < numVertices; ++i)
  {
    ring.data(i)[0] = static_cast<int>(1e6 * std::cos(2 * M_PI * i / numVertices));
    ring.data(i)[1] = static_cast<int>(1e6 * std::sin(2 * M_PI * i / numVertices));
  }
  ModelItem& item = *items[0];
  item.setVertices(ring);
  const Vector<int> point{-1000000, 0};
  const long before = numAllocations();
  int nearest = 0, near = 0, insertion = 0;
  double time = millisecondsOf([&] { nearest = item.findNearestVertex(point, 5); });
  time = std::max(time, millisecondsOf([&] { near = item.findNearVertex(point, 5); }));
  time = std::max(time, millisecondsOf([&] { insertion = item.findInsertion(point, 5); }));
  EXPECT_EQ(numAllocations(), before);
  EXPECT_EQ(nearest, numVertices / 2);
  EXPECT_EQ(near, numVertices / 2);
  EXPECT_EQ(insertion, numVertices / 2);
  time = std::max(time, millisecondsOf([&] { item.insertVertex(1, point); }));
  time = std::max(time, millisecondsOf([&] { item.moveVertex(numVertices, point); }));
  time = std::max(time, millisecondsOf([&] { item.removeVertex(1); }));
  EXPECT_EQ(item.getSize(), numVertices);
  EXPECT_LT(time, frame);
}

TEST(Names, FindTheFirstOfMany)
{
  Stack stack;
  constexpr int count = 100000;
  for (int i = 0; i < count; ++i) addSlice(stack, 0, 0);
  const double time = millisecondsOf(
      [&]
      {
        for (int i = 0; i < count; ++i) ASSERT_EQ(stack.findSlice("slice " + std::to_string(i)), i);
      });
  EXPECT_LT(time, 5000); // a search through the slices for each of them takes minutes
  stack.getSlice(7)->setName("slice 9");
  EXPECT_EQ(stack.findSlice("slice 9"), 7);
  EXPECT_EQ(stack.findSlice("slice 7"), -1);
  const std::unique_ptr<StackSlice> taken = stack.removeSlice(7);
  EXPECT_EQ(stack.findSlice("slice 9"), 8);
  EXPECT_EQ(stack.findSlice(taken.get()), -1);
  taken->setName("slice 0"); // no longer the stack's business
  EXPECT_EQ(stack.findSlice("slice 0"), 0);
  stack.addSlice(std::make_unique<StackSlice>(), 0).setName("slice 9");
  EXPECT_EQ(stack.findSlice("slice 9"), 0);

  Model& first = addModel(stack, "a", MPrimitive::Polygon);
  addModel(stack, "a", MPrimitive::Polygon);
  EXPECT_EQ(stack.findModel("a"), 0);
  first.setName("b");
  EXPECT_EQ(stack.findModel("a"), 1);
  EXPECT_EQ(stack.findModel("b"), 0);
  stack.deleteModel(0);
  EXPECT_EQ(stack.findModel("a"), 0);
  EXPECT_EQ(stack.findModel("b"), -1);
}
