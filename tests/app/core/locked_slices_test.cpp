// Slices that computations have locked are not changed by steps.
#include "action_cases.h"

#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxexception.h"
#include "tests/support/errors.h"

#include <algorithm>

namespace
{
void lock(DrawnStack& d, int slice, bool isLocked = true)
{
  d.stack().notifyEvent(NYXSliceLockEvent(d.slice(slice), isLocked));
}

const ActionCase& caseOf(const std::string& name)
{
  return *std::ranges::find_if(actionCases(), [&](const ActionCase& c) { return c.name == name; });
}

void expectRefused(DrawnStack& d, const std::function<void()>& change)
{
  const std::string before = d.state();
  expectError<NYXException>("is locked: a computation works on it.", change);
  EXPECT_EQ(d.state(), before);
  EXPECT_FALSE(d.stack().history().isStepOpen());
}

TEST(LockedSlices, HinderTheStepsThatChangeThem)
{
  const struct
  {
    const char* action;
    std::string slices; // that the action changes
  } cases[] = {
      {"item creation", "2"},
      {"deletion of several items", "01"},
      {"vertex moved", "0"},
      {"conversion of a contour to a region", "1"},
      {"properties of some points", "0"},
      {"model creation", ""},
      {"model deletion", "012"},
      {"model order", ""},
      {"slice insertion", "012"},
      {"slice deletion", "012"},
      {"slice order", "012"},
      {"slice properties", "1"},
      {"registration of all slices", "12"},
      {"stack properties", "012"},
      {"length unit", "012"},
      {"pose deletion", ""},
  };
  for (const auto& c : cases)
    for (int slice = 0; slice < 3; ++slice)
    {
      SCOPED_TRACE(std::string(c.action) + " with slice " + std::to_string(slice));
      const bool isHindered = c.slices.find(std::to_string(slice)) != std::string::npos;
      DrawnStack d;
      lock(d, slice);
      const auto push = [&] { d.stack().history().pushStep(caseOf(c.action).action(d)); };
      if (isHindered)
        expectError<NYXException>("is locked: a computation works on it.", push);
      else
        push();
      EXPECT_EQ(d.stack().history().getUndoListSize(), isHindered ? 0 : 1);
    }
}

TEST(LockedSlices, HinderUndoAndRedoUntilTheyAreUnlocked)
{
  DrawnStack d;
  const std::string before = d.state();
  NYXStackHistories& histories = d.stack().histories();
  d.stack().history().pushStep(caseOf("slice properties").action(d));
  const std::string after = d.state();
  int numNews = 0;
  QObject::connect(&histories, &NYXStackHistories::changed, [&] { ++numNews; });

  lock(d, 0);
  EXPECT_TRUE(histories.isUndoable(nullptr)) << "of another slice";
  lock(d, 1);
  lock(d, 1); // once more
  EXPECT_EQ(numNews, 2);
  EXPECT_FALSE(histories.isUndoable(nullptr));
  EXPECT_EQ(histories.undoLock(nullptr), &d.slice(1));
  EXPECT_EQ(histories.undoObstacle(nullptr), nullptr);
  histories.undo(nullptr); // nothing happens
  expectRefused(d, [&] { d.stack().history().undo(); });

  lock(d, 1, false);
  EXPECT_EQ(histories.undoLock(nullptr), nullptr);
  histories.undo(nullptr);
  EXPECT_EQ(d.state(), before);
  lock(d, 1);
  EXPECT_FALSE(histories.isRedoable(nullptr));
  EXPECT_EQ(histories.redoLock(nullptr), &d.slice(1));
  expectRefused(d, [&] { d.stack().history().redo(); });
  lock(d, 1, false);
  histories.redo(nullptr);
  EXPECT_EQ(d.state(), after);
}

TEST(LockedSlices, EndAStepAsAWhole)
{
  DrawnStack d;
  lock(d, 1);
  expectRefused(d,
                [&]
                {
                  NYXActionStep step(d.stack().history());
                  step.push(caseOf("vertex moved").action(d));
                  step.push(caseOf("slice properties").action(d));
                });
}

TEST(LockedSlices, HinderNeitherNamesAndNotesNorOtherStacks)
{
  DrawnStack d, other;
  lock(d, 0);
  NYXStackProperties properties(d.stack());
  properties.name = "rat";
  properties.annotation = "two cuts are missing";
  d.stack().history().pushStep(make<NYXStackPropertiesAction>(d.stack(), properties));
  EXPECT_EQ(d.stack().getName(), "rat");
  EXPECT_TRUE(other.stack().getLockedSlices().empty());
}

TEST(LockedSlices, AreForgottenWhenTheyLeaveTheStack)
{
  DrawnStack d;
  lock(d, 1);
  StackSlice& slice = d.slice(1);
  ASSERT_TRUE(d.stack().isLocked(slice));
  NYXSliceInsertionDeletionAction deletion(slice);
  deletion.apply(); // without a history, which would refuse it
  EXPECT_TRUE(d.stack().getLockedSlices().empty());
  d.stack().notifyEvent(NYXSliceLockEvent(slice, true)); // of no stack now
  EXPECT_TRUE(d.stack().getLockedSlices().empty());
  deletion.revert();
  EXPECT_FALSE(d.stack().isLocked(slice));
}
} // namespace
