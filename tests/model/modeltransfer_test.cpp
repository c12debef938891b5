#include "model/modeltransfer.h"

#include "model/modelproposal.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <set>

namespace
{
/// Two slices "slice 0" and "slice 1" of 100 by 80; polygons up to (99, 79) and (50, 40) on the first, a region on the
/// second.
struct Source
{
  Source()
  {
    addSlice(stack, 100, 80);
    addSlice(stack, 100, 80);
    Model& cells = addModel(stack, "cells", MPrimitive::Polygon);
    cells.getItemProperties().setColor(1, 2, 3);
    cells.getProperties().setVertexSmoothing(4);
    cells.setSnakeConfig({.elasticity = 0.7});
    addItem(cells, *stack.getSlice(0), {{0, 0}, {99, 0}, {99, 79}}).getProperties().setLineWidth(5);
    addItem(cells, *stack.getSlice(0), {{0, 0}, {50, 0}, {50, 40}}).getSelection().set(true);
    RLEItemSet region;
    region.add(RLEItem(20, 10, 30));
    ModelItem::create(addModel(stack, "tissue", MPrimitive::Region), *stack.getSlice(1)).setRLEItemSet(region);
  }

  std::vector<const Model*> models() const { return {stack.getModel(0), stack.getModel(1)}; }

  Stack stack;
};

TEST(ModelTransfer, CopiesModelsAndItems)
{
  const Source source;
  Stack target;
  addSlice(target, 100, 80);
  addSlice(target, 100, 80);
  const ModelTransfer transfer = copyModels(source.models(), target, SliceMatching::ByIndex, false);
  ASSERT_EQ(transfer.copies.size(), 2u);
  EXPECT_EQ(transfer.numItems, 3);
  EXPECT_EQ(transfer.numOutside, 0);
  EXPECT_EQ(transfer.numWithoutSlice, 0);
  EXPECT_EQ(target.getNumModels(), 0);
  EXPECT_EQ(target.getSlice(0)->getNumItems(), 0);

  const Model &cells = *source.stack.getModel(0), &copy = *transfer.copies[0].model;
  EXPECT_EQ(copy.getName(), "cells");
  EXPECT_EQ(copy.getProperties(), cells.getProperties());
  EXPECT_EQ(copy.getItemProperties(), cells.getItemProperties());
  EXPECT_EQ(copy.getSnakeConfig(), cells.getSnakeConfig());
  ASSERT_EQ(transfer.copies[0].items.size(), 2u);
  const ModelItem& item = *transfer.copies[0].items[0];
  EXPECT_EQ(item.getModel(), &copy);
  EXPECT_EQ(item.getSlice(), target.getSlice(0));
  EXPECT_EQ(item.getVertices()[2][1], 79);
  EXPECT_EQ(item.getProperties(), cells.getItem(0)->getProperties());
  EXPECT_TRUE(transfer.copies[0].items[1]->getSelection().isEmpty());
  EXPECT_EQ(transfer.copies[1].items[0]->getRLEItemSet(), source.stack.getModel(1)->getItem(0)->getRLEItemSet());
  EXPECT_EQ(source.stack.getModel(0)->getNumItems(), 2);
}

TEST(ModelTransfer, MatchesSlicesByIndexOrName)
{
  const Source source;
  Stack target; // the slices the other way round, and one more in front
  for (const char* name : {"slice 1", "slice 0"}) addSlice(target, 0, 0).setName(name);
  const auto sliceOf = [&](SliceMatching matching)
  { return copyModels(source.models(), target, matching, false).copies[0].items[0]->getSlice()->getIndex(); };
  EXPECT_EQ(sliceOf(SliceMatching::ByIndex), 0);
  EXPECT_EQ(sliceOf(SliceMatching::ByName), 1);

  target.deleteSlice(1);
  const ModelTransfer byIndex = copyModels(source.models(), target, SliceMatching::ByIndex, false);
  EXPECT_EQ(byIndex.numItems, 2);
  EXPECT_EQ(byIndex.numWithoutSlice, 1);
  const ModelTransfer byName = copyModels(source.models(), target, SliceMatching::ByName, false);
  EXPECT_EQ(byName.numItems, 1);
  EXPECT_EQ(byName.numWithoutSlice, 2);
}

TEST(ModelTransfer, LeavesOutOrKeepsWhatReachesBeyondTheImage)
{
  const Source source;
  const struct
  {
    int width, height;
    int numOutside; // of items that reach to (99, 79), (50, 40) and (20, 39)
  } cases[] = {{100, 80, 0}, {99, 80, 1}, {100, 79, 1}, {51, 41, 1}, {50, 80, 2}, {100, 39, 3}, {20, 39, 3}, {0, 0, 0}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.width * 1000 + c.height);
    Stack target;
    addSlice(target, c.width, c.height); // a width of 0: of unknown size
    addSlice(target, c.width, c.height);
    const ModelTransfer strict = copyModels(source.models(), target, SliceMatching::ByIndex, false);
    EXPECT_EQ(strict.numOutside, c.numOutside);
    EXPECT_EQ(strict.numItems, 3 - c.numOutside);
    const ModelTransfer generous = copyModels(source.models(), target, SliceMatching::ByIndex, true);
    EXPECT_EQ(generous.numOutside, c.numOutside);
    EXPECT_EQ(generous.numItems, 3);
  }
}

TEST(ModelTransfer, GivesNumbersToNamesThatAreTaken)
{
  Source source;
  addModel(source.stack, "cells", MPrimitive::Polygon); // as a damaged file may have
  Stack target;
  for (const char* name : {"cells", "cells 2", "Tissue"}) addModel(target, name, MPrimitive::Polygon);
  std::vector<const Model*> models = source.models();
  models.push_back(source.stack.getModel(2));
  const ModelTransfer transfer = copyModels(models, target, SliceMatching::ByIndex, false);
  EXPECT_EQ(transfer.copies[0].model->getName(), "cells 3");
  EXPECT_EQ(transfer.copies[1].model->getName(), "tissue");
  EXPECT_EQ(transfer.copies[2].model->getName(), "cells 4");
}

TEST(ProposedModels, GoThroughEightColors)
{
  Stack stack;
  std::set<ModelItemProperties::Color> colors;
  for (int i = 0; i < 8; ++i)
  {
    const ModelItemProperties::Color color = proposedModelColor(stack);
    colors.insert(color);
    addModel(stack, freeModelName(stack, "Model"), MPrimitive::Polygon).getItemProperties().setColor(color);
  }
  EXPECT_EQ(colors.size(), 8u);
  EXPECT_EQ(stack.getModel(7)->getName(), "Model 8");
  EXPECT_EQ(proposedModelColor(stack), stack.getModel(0)->getItemProperties().getColor());
  const ModelItemProperties::Color third = stack.getModel(2)->getItemProperties().getColor();
  stack.deleteModel(2);
  EXPECT_EQ(proposedModelColor(stack), third);
  EXPECT_EQ(freeModelName(stack, "Model"), "Model 3");
}
} // namespace
