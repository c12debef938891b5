#include "model/modeltransfer.h"

#include "model/modelproposal.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
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

TEST(ModelTransfer, CountsItemsWhosePixelsChangeTheirSize)
{
  Source source; // two items on slice 0, one on slice 1
  setPixelSize(*source.stack.getSlice(0), 0.5f, 0.5f);
  setPixelSize(*source.stack.getSlice(1), 2, 3);
  const struct
  {
    float width0, height0, width1, height1;
    int scale; // of the unit; that of the source is 0
    int numResized;
  } cases[] = {{0.5f, 0.5f, 2, 3, 0, 0},      {0.5f, 0.6f, 2, 3, 0, 2},  {0.5f, 0.5f, 3, 2, 0, 1},
               {500, 500, 2000, 3000, -3, 0}, {0.5f, 0.5f, 2, 3, -3, 3}, {0.5e6f, 0.5e6f, 2e6f, 3e6f, -6, 0},
               {0.500001f, 0.5f, 2, 3, 0, 0}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(&c - cases);
    Stack target;
    setPixelSize(addSlice(target, 100, 80), c.width0, c.height0);
    setPixelSize(addSlice(target, 100, 80), c.width1, c.height1);
    for (int i = 0; i < 2; ++i)
    {
      PixelCalibration calibration = target.getSlice(i)->getPixelCalibration();
      calibration.setLengthUnit(LengthUnit(c.scale));
      target.getSlice(i)->setPixelCalibration(calibration);
    }
    EXPECT_EQ(copyModels(source.models(), target, SliceMatching::ByIndex, false).numResized, c.numResized);
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

using LinearColor = std::array<double, 3>;

LinearColor linear(const ModelItemProperties::Color& color)
{
  LinearColor result;
  for (std::size_t i = 0; i < 3; ++i)
  {
    const double value = color[i] / 255.0;
    result[i] = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  }
  return result;
}

LinearColor operator*(const std::array<LinearColor, 3>& matrix, const LinearColor& color)
{
  LinearColor result;
  for (std::size_t i = 0; i < 3; ++i)
    result[i] = std::clamp(std::inner_product(color.begin(), color.end(), matrix[i].begin(), 0.0), 0.0, 1.0);
  return result;
}

/// CIE L*a*b* of a linear sRGB color, white point D65.
LinearColor lab(const LinearColor& rgb)
{
  const std::array<LinearColor, 3> toXyz = {
      {{0.4339, 0.3762, 0.1899}, {0.2126, 0.7152, 0.0722}, {0.0177, 0.1095, 0.8728}}};
  LinearColor f = toXyz * rgb;
  for (double& t : f) t = t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16 / 116.0;
  return {116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])};
}

/// Simulated eyes: Machado, Oliveira and Fernandes, "A physiologically-based model for simulation of color vision
/// deficiency", 2009, table for full severity.
TEST(ProposedModels, HaveColorsThatAllEyesTellApartAndSeeOnDarkTissue)
{
  const std::array<LinearColor, 3> eyes[] = {
      {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
      {{{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}},
      {{{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}},
      {{{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.303900}}}};
  Stack stack;
  for (int i = 0; i < 8; ++i)
    addModel(stack, freeModelName(stack, "Model"), MPrimitive::Polygon)
        .getItemProperties()
        .setColor(proposedModelColor(stack));
  for (const auto& eye : eyes)
    for (int i = 0; i < 8; ++i)
    {
      const LinearColor a = lab(eye * linear(stack.getModel(i)->getItemProperties().getColor()));
      EXPECT_GT(a[0], 40) << i;
      for (int j = 0; j < i; ++j)
      {
        const LinearColor b = lab(eye * linear(stack.getModel(j)->getItemProperties().getColor()));
        EXPECT_GT(std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]), 15) << i << " and " << j;
      }
    }
}
} // namespace
