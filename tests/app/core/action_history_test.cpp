#include "app/core/nyxactionhistory.h"
#include "app/core/nyxactionstep.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{
/// Writes what it does into a log: "+a" applied, "-a" reverted. May be told to throw at one of the two.
class LoggedAction : public NYXAction
{
public:
  LoggedAction(std::string& log, char name) : _log(log), _name(name) {}

  void apply() override
  {
    if (throwsAtApply) throw ProgramError();
    _log += std::string("+") + _name;
    NYXAction::apply();
  }

  void revert() override
  {
    if (throwsAtRevert) throw ProgramError();
    _log += std::string("-") + _name;
    NYXAction::revert();
  }

  bool throwsAtApply = false;
  bool throwsAtRevert = false;

private:
  std::string& _log;
  char _name;
};

/// "Deletion", of a number of objects.
class CountedAction : public NYXAction
{
public:
  explicit CountedAction(int numObjects) : _numObjects(numObjects) {}
  void apply() override { NYXAction::apply(); }
  void revert() override { NYXAction::revert(); }
  QString description(bool isDetailed) const override { return isDetailed ? "Deletion: a" : "Deletion"; }
  int getNumObjects() const override { return _numObjects; }

private:
  int _numObjects;
};

struct ActionHistory : testing::Test
{
  ActionHistory()
  {
    QObject::connect(&history, &NYXActionHistory::changed, [this] { signalLog += "c"; });
    QObject::connect(&history, &NYXActionHistory::undoEnabled, [this](bool is) { signalLog += is ? "U" : "u"; });
    QObject::connect(&history, &NYXActionHistory::redoEnabled, [this](bool is) { signalLog += is ? "R" : "r"; });
  }

  LoggedAction& push(char name)
  {
    auto action = std::make_unique<LoggedAction>(log, name);
    LoggedAction& pushed = *action;
    history.push(std::move(action), true);
    return pushed;
  }

  void makeStep(const std::string& names)
  {
    history.openStep();
    for (const char name : names) push(name);
    history.closeStep();
  }

  std::string takeLog() { return std::exchange(log, ""); }
  std::string takeSignals() { return std::exchange(signalLog, ""); }

  std::string log;
  std::string signalLog;
  NYXActionHistory history;
};

TEST_F(ActionHistory, DetailedDescriptionCountsTheObjectsOfAStep)
{
  const struct
  {
    std::vector<int> numObjects; // of an action each
    const char* description;
  } cases[] = {{{1}, "Deletion: a"}, {{3}, "Deletion (3)"}, {{1, 1}, "Deletion (2)"}, {{2, 0, 3}, "Deletion (5)"}};
  for (const auto& c : cases)
  {
    history.openStep();
    for (const int number : c.numObjects) history.push(std::make_unique<CountedAction>(number), true);
    push('b'); // of another kind: not counted
    history.closeStep();
    EXPECT_EQ(history.getUndoDescription(true), c.description);
    EXPECT_EQ(history.getUndoDescription(false), "Deletion");
    history.undo();
    EXPECT_EQ(history.getRedoDescription(true), c.description);
  }
}

TEST_F(ActionHistory, RevertsStepsBackwardsAndAppliesThemForwards)
{
  makeStep("abc");
  makeStep("d");
  EXPECT_EQ(takeLog(), "+a+b+c+d");
  history.undo();
  history.undo();
  history.undo(); // nothing left
  EXPECT_EQ(takeLog(), "-d-c-b-a");
  history.redo();
  EXPECT_EQ(takeLog(), "+a+b+c");
  makeStep("e");
  EXPECT_FALSE(history.isRedoable());
  EXPECT_EQ(history.getUndoListSize(), 2);
}

TEST_F(ActionHistory, TellsWhatCanBeDone)
{
  history.openStep();
  history.closeStep();
  EXPECT_EQ(takeSignals(), "");
  EXPECT_EQ(history.getUndoDescription(false), "(Nothing to undo)");
  EXPECT_EQ(history.getRedoDescription(false), "(Nothing to redo)");
  makeStep("a");
  EXPECT_EQ(takeSignals(), "rcU");
  EXPECT_EQ(history.getUndoDescription(false), "(No description available for this action)");
  history.undo();
  EXPECT_EQ(takeSignals(), "cRu");
  history.redo();
  EXPECT_EQ(takeSignals(), "cUr");
  history.clear();
  EXPECT_EQ(takeSignals(), "ruc");
  std::ostringstream dump;
  history.print("> ", dump);
  EXPECT_EQ(dump.str(), "> *** Action history (idle)\n>   [ Undo list size = 0 ]\n>   [ Redo list size = 0 ]\n");
}

TEST_F(ActionHistory, RefusesWhatComesOutOfTurn)
{
  const auto where = [](auto action)
  {
    try
    {
      action();
    }
    catch (const UsageError& error)
    {
      return error.getWhere() + ": " + error.getWhat();
    }
    return std::string("nothing was thrown");
  };
  EXPECT_EQ(where([&] { history.closeStep(); }), "void NYXActionHistory::closeStep(): No open step to close");
  EXPECT_EQ(where([&] { push('a'); }),
            "void NYXActionHistory::push(NYXAction*, const bool): No step was open prior to action insertion");
  history.openStep();
  EXPECT_EQ(where([&] { history.openStep(); }), "void NYXActionHistory::openStep(): A step is already open");
  push('a');
  history.undo();
  EXPECT_EQ(takeLog(), "+a") << "an open step is not undone";
}

TEST_F(ActionHistory, ActionsThatThrowLeaveNoTrace)
{
  makeStep("a");
  makeStep("b");
  history.undo();
  takeLog();
  history.openStep();
  push('c');
  auto faulty = std::make_unique<LoggedAction>(log, 'd');
  faulty->throwsAtApply = true;
  EXPECT_THROW(history.push(std::move(faulty), true), ProgramError);
  EXPECT_EQ(takeLog(), "+c-c");
  EXPECT_FALSE(history.isStepOpen());
  EXPECT_EQ(history.getUndoListSize(), 1);
  EXPECT_EQ(history.getRedoListSize(), 1) << "what could be made again still can";

  history.openStep();
  push('e');
  LoggedAction& stubborn = push('f');
  LoggedAction& fragile = push('g');
  history.closeStep();
  stubborn.throwsAtRevert = true;
  takeLog();
  EXPECT_THROW(history.undo(), ProgramError);
  EXPECT_EQ(takeLog(), "-g+g");
  EXPECT_EQ(history.getUndoListSize(), 2);
  stubborn.throwsAtRevert = false;
  history.undo();
  fragile.throwsAtApply = true;
  takeLog();
  EXPECT_THROW(history.redo(), ProgramError);
  EXPECT_EQ(takeLog(), "+e+f-f-e");
  EXPECT_EQ(history.getRedoListSize(), 1);
}

TEST_F(ActionHistory, AStepLeftByAnErrorIsTakenBack)
{
  const auto work = [&](bool fails)
  {
    NYXActionStep step(history);
    step.push(std::make_unique<LoggedAction>(log, 'a'));
    if (fails) throw ProgramError();
  };
  EXPECT_THROW(work(true), ProgramError);
  EXPECT_EQ(takeLog(), "+a-a");
  EXPECT_FALSE(history.isUndoable());
  work(false);
  EXPECT_TRUE(history.isUndoable());
}

TEST_F(ActionHistory, ASavedPositionIsMetAgainUnlessItIsLost)
{
  makeStep("a");
  history.setSaved();
  history.undo();
  EXPECT_FALSE(history.isAtSaved());
  history.redo();
  EXPECT_TRUE(history.isAtSaved());
  history.undo();
  makeStep("b");
  EXPECT_FALSE(history.isAtSaved());
  history.undo();
  EXPECT_FALSE(history.isAtSaved());
  history.clear();
  EXPECT_FALSE(history.isAtSaved());
}
} // namespace
