#include "model/modelfilter.h"

#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
TEST(Wildcards, StandForTextAndForCharacters)
{
  const struct
  {
    const char* name;
    const char* pattern;
    bool matches;
  } cases[] = {
      {"axon", "", true},
      {"", "", true},
      {"", "*", true},
      {"", "?", false},
      {"axon", "axon", true},
      {"axon", "Axon", false},
      {"axon", "axo", false},
      {"axon", "axons", false},
      {"axon", "a*", true},
      {"axon", "*n", true},
      {"axon", "*x*", true},
      {"axon", "a*x*n*", true},
      {"axon", "b*", false},
      {"axon", "????", true},
      {"axon", "???", false},
      {"axon", "?????", false},
      {"abab", "*ab", true},
      {"aab", "*ab", true},
      {"mississippi", "m*iss*pi", true},
      {"mississippi", "m*iss?pi", false},
      {"z\xc3\xbcge", "z?ge", true},
      {"z\xc3\xbcge", "z??ge", false},
      {"\xc3\xbc"
       "b",
       "*?b", true},
      {"a*b", "a*b", true},
      {"[a]", "[a]", true},
      {"a", "[a]", false},
  };
  for (const auto& c : cases) EXPECT_EQ(matchesWildcards(c.name, c.pattern), c.matches) << c.name << " " << c.pattern;
}

/// A model of each geometry on a slice with pixels of 0.5 by 2.
struct Measured
{
  Measured()
  {
    addSlice(stack, 0, 0);
    addSlice(stack, 0, 0);
    setPixelSize(*stack.getSlice(0), 0.5f, 2);
    for (const MPrimitive primitive : {MPrimitive::Polygon, MPrimitive::Polyline, MPrimitive::Polypoint})
      addItem(addModel(stack, "model", primitive), *stack.getSlice(0), {{0, 0}, {6, 0}, {6, 2}});
    RLEItemSet region;
    region.add(RLEItem(3, 1, 5));
    region.add(RLEItem(4, 1, 2));
    ModelItem::create(addModel(stack, "model", MPrimitive::Region), *stack.getSlice(0)).setRLEItemSet(region);
  }

  Stack stack;
};

TEST(ItemMeasures, AreInTheUnitOfTheSlice)
{
  const Measured measured;
  const double none = std::nan(""); // sides of 3 and 4, so a hypotenuse of 5
  const struct
  {
    int model;
    double vertices, length, area;
  } cases[] = {{0, 3, 12, 6}, {1, 3, 7, none}, {2, 3, none, none}, {3, 7, none, 7}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.model);
    const ModelItem& item = *measured.stack.getModel(c.model)->getItem(0);
    const auto expectMeasure = [&item](ItemMeasure measure, double expected)
    {
      if (std::isnan(expected))
        EXPECT_TRUE(std::isnan(measureOf(item, measure)));
      else
        EXPECT_DOUBLE_EQ(measureOf(item, measure), expected);
    };
    expectMeasure(ItemMeasure::NumVertices, c.vertices);
    expectMeasure(ItemMeasure::Length, c.length);
    expectMeasure(ItemMeasure::Area, c.area);
  }
}

TEST(ItemMeasures, OfItemsWithoutVertices)
{
  Measured measured;
  ModelItem& item = *measured.stack.getModel(0)->getItem(0);
  item.setVertices(Vertices<int>(2));
  EXPECT_EQ(measureOf(item, ItemMeasure::Length), 0);
  EXPECT_EQ(measureOf(item, ItemMeasure::Area), 0);
  EXPECT_EQ(measureOf(item, ItemMeasure::NumVertices), 0);
}

TEST(ModelFilter, KeepsWhatMeetsAllConditions)
{
  Stack stack;
  Model& model = addModel(stack, "axons", MPrimitive::Polygon);
  for (int i = 0; i < 4; ++i) // squares of sides 10, 20, 30, 40 on slices 0 to 3
  {
    const int side = 10 * (i + 1);
    addItem(model, addSlice(stack, 0, 0), {{0, 0}, {side, 0}, {side, side}, {0, side}});
  }
  const auto removedBy = [&](auto change)
  {
    ModelFilter filter;
    change(filter);
    std::vector<int> slices;
    for (const ModelItem* item : itemsToRemove({&model}, filter)) slices.push_back(item->getSlice()->getIndex());
    return slices;
  };
  using Slices = std::vector<int>;
  EXPECT_EQ(removedBy([](ModelFilter&) {}), Slices());
  EXPECT_EQ(removedBy(
                [](ModelFilter& f)
                {
                  f.measure = ItemMeasure::Area;
                  f.from = 400; // both bounds stay
                  f.to = 900;
                }),
            Slices({0, 3}));
  EXPECT_EQ(removedBy(
                [](ModelFilter& f)
                {
                  f.measure = ItemMeasure::Length;
                  f.to = 79;
                }),
            Slices({1, 2, 3}));
  EXPECT_EQ(removedBy([](ModelFilter& f) { f.from = 5; }), Slices({0, 1, 2, 3})); // vertices
  EXPECT_EQ(removedBy(
                [](ModelFilter& f)
                {
                  f.firstSlice = 1;
                  f.lastSlice = 2;
                }),
            Slices({0, 3}));
  EXPECT_EQ(removedBy([](ModelFilter& f) { f.slicePattern = "*2"; }), Slices({0, 1, 3}));
  EXPECT_EQ(removedBy(
                [](ModelFilter& f)
                {
                  f.firstSlice = 2;
                  f.slicePattern = "* 3";
                  f.from = 4;
                }),
            Slices({0, 1, 2}));
}

TEST(ModelFilter, ItemsWithoutTheMeasureStay)
{
  const Measured measured;
  ModelFilter filter;
  filter.measure = ItemMeasure::Area;
  filter.from = 1000;
  std::vector<const Model*> models;
  for (int i = 0; i < 4; ++i) models.push_back(measured.stack.getModel(i));
  const std::vector<ModelItem*> removed = itemsToRemove(models, filter);
  ASSERT_EQ(removed.size(), 2u); // the polygon and the region
  EXPECT_TRUE(removed[0]->isClosed());
  EXPECT_TRUE(removed[1]->isRegion());
}

TEST(Calibrated, IsAStackWithPixelsOfAnotherSizeThanOne)
{
  Stack stack;
  EXPECT_FALSE(isCalibrated(stack));
  addSlice(stack, 0, 0);
  EXPECT_FALSE(isCalibrated(stack));
  setPixelSize(*stack.getSlice(0), 1, 2);
  EXPECT_TRUE(isCalibrated(stack));
}
} // namespace
