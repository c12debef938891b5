#include "analysis/measures/stackmeasures.h"
#include "model/stackcopy.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

namespace
{
/// Five slices: the first, relative or absolute; at the default distance; relative; absolute; at the default again.
void fill(Stack& stack, bool isFirstAbsolute)
{
  stack.setLengthUnit(LengthUnit(-9));
  stack.setInvertZAxis(isFirstAbsolute);
  stack.setDefaultRelativePosition(1.5);
  for (int k = 0; k < 5; ++k)
    setPixelSize(addSlice(stack, 40 + k, 20, Registration(k, -2 * k, 10.f * static_cast<float>(k))), 0.5, 0.25);
  if (isFirstAbsolute) stack.getSlice(0)->setAbsolutePosition(-3);
  stack.getSlice(2)->setRelativePosition(2.25);
  stack.getSlice(3)->setAbsolutePosition(11);
  for (const MPrimitive geometry : {MPrimitive::Polygon, MPrimitive::Polyline, MPrimitive::Polypoint})
  {
    Model& model = addModel(stack, ModelProperties::toString(geometry), geometry);
    for (int k = 0; k < 4; ++k) addItem(model, *stack.getSlice(k), {{0, k}, {20, 0}, {25, 12}, {-3 * k, 9}});
  }
  Model& regions = addModel(stack, "Region", MPrimitive::Region);
  for (int k = 1; k < 5; ++k)
    ModelItem::create(regions, *stack.getSlice(k)).setRLEItemSet(RLEItemSet({RLEItem(3, k, 4), RLEItem(4, 0, 9)}));
}

std::vector<const Model*> modelsOf(const Stack& stack)
{
  std::vector<const Model*> models;
  for (int i = 0; i < stack.getNumModels(); ++i) models.push_back(stack.getModel(i));
  return models;
}

/// All tables of a stack.
std::string measuresOf(const Stack& stack)
{
  const std::vector<const Model*> models = modelsOf(stack);
  std::vector<ModelMeasures> measures;
  std::string text = sliceTable(stack, models).toCsv();
  ProgressSubject progress;
  for (const Model* model : models)
  {
    measures.push_back(measureModel(*model));
    text += itemTable(stack, *model, progress).toCsv();
  }
  return text + modelTable(measures, stack.getLengthUnit().symbol()).toCsv();
}
} // namespace

TEST(StackCopy, HasTheMeasuresOfTheStackByPiecesOfAnySize)
{
  for (const bool isFirstAbsolute : {false, true})
  {
    Stack stack;
    fill(stack, isFirstAbsolute);
    const std::string measures = measuresOf(stack);
    for (const long piece : {1, 7, 1000000})
    {
      SCOPED_TRACE(piece);
      StackCopy copy(stack, modelsOf(stack));
      int numPieces = 1;
      while (copy.advance(piece)) ++numPieces;
      EXPECT_EQ(numPieces, piece == 1 ? 16 : piece == 7 ? 8 : 1) << "12 items of 5, 4 of 3";
      EXPECT_EQ(measuresOf(copy.getStack()), measures);
      EXPECT_EQ(copy.getOriginals(), modelsOf(stack));
      for (int i = 0; i < stack.getNumModels(); ++i)
        EXPECT_EQ(copy.getOriginalItems(i)[2], stack.getModel(i)->getItem(2));
    }
  }
}

TEST(StackCopy, KeepsNothingOfTheStack)
{
  auto stack = std::make_unique<Stack>();
  fill(*stack, false);
  const std::string measures = measuresOf(*stack);
  StackCopy copy(*stack, modelsOf(*stack));
  EXPECT_FALSE(copy.advance(1000));
  for (int k = 0; k < stack->getNumSlices(); ++k)
    for (ModelItem* item : stack->getSlice(k)->getItems()) item->translate(3, 4);
  stack->getSlice(1)->setRegistration(Registration(9, 9, 9.f));
  EXPECT_NE(measuresOf(*stack), measures);
  stack.reset();
  EXPECT_EQ(measuresOf(*copy.releaseStack()), measures);
}

TEST(StackCopy, TakesOnlyTheModelsAndItemsThatAreAskedFor)
{
  Stack stack;
  fill(stack, false);
  const Model& lines = *stack.getModel(1);
  const auto isOnFirstSlice = [](const ModelItem& item) { return item.getSlice()->isFirstSlice(); };
  StackCopy copy(stack, {&lines}, isOnFirstSlice);
  EXPECT_FALSE(copy.advance(1000));
  ASSERT_EQ(copy.getStack().getNumModels(), 1);
  EXPECT_EQ(copy.getStack().getNumSlices(), 5);
  EXPECT_EQ(copy.getOriginalItems(0), std::vector<const ModelItem*>{lines.getItem(0)});
}
