#include "model/stack.h"

#include <gtest/gtest.h>

namespace
{
enum Mode
{
  Default,
  Relative,
  Absolute
};

struct Depth
{
  Mode mode;
  float value;
};

void addSlices(Stack& stack, const std::vector<Depth>& depths)
{
  for (const Depth& depth : depths)
  {
    StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
    if (depth.mode == Relative) slice.setRelativePosition(depth.value);
    if (depth.mode == Absolute) slice.setAbsolutePosition(depth.value);
  }
}
} // namespace

TEST(SliceDepth, FollowsRelativeAndAbsolutePositions)
{
  const struct
  {
    const char* name;
    std::vector<Depth> depths;
    std::vector<float> relative, absolute;
  } cases[] = {
      {"default spacing", {{}, {}, {}}, {5, 5, 5}, {0, 5, 10}},
      {"absolute third slice", {{}, {}, {Absolute, 12}}, {5, 5, 7}, {0, 5, 12}},
      {"absolute first slice", {{Absolute, 100}, {}, {Relative, 2}}, {0, 5, 2}, {100, 105, 107}},
      {"relative first slice lies at 0", {{Relative, 3}, {Relative, 3}}, {3, 3}, {0, 3}},
      {"going back", {{}, {Absolute, -4}, {Relative, 1}, {Absolute, -4}}, {5, -4, 1, -1}, {0, -4, -3, -4}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    Stack stack;
    stack.setDefaultSliceSpacing(5);
    addSlices(stack, c.depths);
    EXPECT_EQ(stack.absolutePositions(), c.absolute);
    for (int i = 0; i < stack.getNumSlices(); ++i)
    {
      EXPECT_EQ(stack.getSlice(i)->getRelativePosition(), c.relative[static_cast<std::size_t>(i)]);
      EXPECT_EQ(stack.getSlice(i)->getAbsolutePosition(), c.absolute[static_cast<std::size_t>(i)]);
    }
  }
}

TEST(SliceDepth, OfAHundredThousandSlicesNeitherRecursesNorDrifts)
{
  constexpr int numSlices = 100000;
  Stack stack;
  stack.setDefaultRelativePosition(0.1f);
  addSlices(stack, std::vector<Depth>(numSlices));
  EXPECT_FLOAT_EQ(stack.getLastSlice()->getAbsolutePosition(), 0.1f * (numSlices - 1));
  EXPECT_EQ(stack.absolutePositions().back(), stack.getLastSlice()->getAbsolutePosition());
}

TEST(SliceDepth, SortsItemsByIt)
{
  Stack stack;
  addSlices(stack, {{Absolute, 3}, {Absolute, 1}, {Absolute, 2}});
  Model& model = stack.addModel(std::make_unique<Model>("m"));
  EXPECT_TRUE(model.isSorted());
  for (int i = 0; i < 3; ++i) ModelItem::create(model, *stack.getSlice(i));
  EXPECT_FALSE(model.isSorted());
  model.sort();
  EXPECT_TRUE(model.isSorted());
  EXPECT_EQ(model.getItem(0)->getSlice(), stack.getSlice(1));
  EXPECT_EQ(model.getItem(2)->getSlice(), stack.getSlice(0));
}

TEST(StackSlices, KeepTheirNeighboursThroughInsertionAndRemoval)
{
  Stack stack;
  addSlices(stack, {{}, {}, {}});
  StackSlice* const first = stack.getFirstSlice();
  StackSlice& inserted = stack.addSlice(std::make_unique<StackSlice>(), 1);
  EXPECT_EQ(inserted.prevSlice(), first);
  EXPECT_EQ(inserted.nextSlice(), stack.getSlice(2));
  const auto removed = stack.removeSlice(0);
  EXPECT_TRUE(inserted.isFirstSlice());
  EXPECT_EQ(inserted.prevSlice(), nullptr);
  EXPECT_EQ(removed->getStack(), nullptr);
  EXPECT_EQ(stack.findSlice(removed.get()), -1);
  EXPECT_TRUE(stack.getSlice(2)->isLastSlice());
  EXPECT_EQ(stack.getNextSlice(stack.getSlice(2)), nullptr);
}
