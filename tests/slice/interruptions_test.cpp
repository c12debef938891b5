// Tools that end before their gesture does, and many gestures with undo and redo between them.

#include "app/core/actions/nyxmodeldeletionaction.h"
#include "edit_test_support.h"

#include <map>
#include <random>

namespace
{
class Interruptions : public EditTest
{
protected:
  Interruptions()
  {
    draw("cells", {{100, 100}, {150, 90}, {200, 100}, {200, 150}, {150, 160}, {100, 150}});
    choose(mediator().selectMenu(), "cells");
  }

  void selectAndEdit(const char* name)
  {
    choose(mediator().selectMenu(), "cells");
    key(Qt::Key_E);
    action(name).trigger();
  }
  void begin(const std::function<void()>& start, int x, int y)
  {
    start();
    press(x, y);
    move(x + 7, y + 4);
    move(x + 15, y + 9);
  }
  /// Begins each gesture in turn, calls `check` in the middle of it and lets the mouse go.
  void duringEachGesture(const std::function<void()>& check)
  {
    for (const auto& [name, start] : gestures)
    {
      SCOPED_TRACE(name);
      if (canvas().hasSlice()) choose(mediator().selectMenu(), "cells");
      begin(start, 100, 98);
      check();
      move(140, 140);
      release(140, 140);
      mediator().cancel();
    }
  }

  const std::vector<std::pair<const char*, std::function<void()>>> gestures = {
      {"rubber box", [] {}},
      {"creation", [this] { choose(mediator().manualMenu(), "cells"); }},
      {"region", [this] { choose(mediator().manualMenu(), "tissue"); }},
      {"move", [this] { selectAndEdit("movePoints"); }},
      {"insertion", [this] { selectAndEdit("insertPoints"); }},
      {"deletion", [this] { selectAndEdit("deletePoints"); }},
      {"thresholding", [this] { choose(mediator().automaticMenu(), "cells"); }},
      {"split", [this] { action("splitContour").trigger(); }},
      {"shift", [this] { action("moveContour").trigger(); }},
      {"resampling", [this] { key(Qt::Key_R); }},
      {"Douglas-Peucker", [this] { action("decimateDouglasPeucker").trigger(); }},
      {"origin", [this] { action("changeOrigin").trigger(); }},
      {"Fourier", [this] { action("smoothFourier").trigger(); }},
      {"snake", [this] { key(Qt::Key_S); }},
  };
};
} // namespace

TEST_F(Interruptions, LeaveNothingBehind)
{
  const std::string before = file();
  const int numSteps = history().getUndoListSize();
  const auto expectAsBefore = [&]
  {
    EXPECT_EQ(file(), before);
    EXPECT_EQ(history().getUndoListSize(), numSteps);
    expectIdle();
  };
  const std::function<void()> interruptions[] = {
      [&] { key(Qt::Key_Escape); },
      [&] // another tool
      {
        mediator().creation().activate("spots");
        EXPECT_EQ(mode(), "CREATE");
        EXPECT_EQ(canvas().getExtraItem()->getSize(), 0);
        EXPECT_FALSE(history().isStepOpen());
        mediator().cancel();
      },
      [&] // another slice
      {
        show(1);
        EXPECT_EQ(slice(1).getNumItems(), 0);
        show(0);
      },
      [&] // no slice
      {
        widget.setSlice(nullptr);
        move(140, 140);
        release(140, 140);
        show(0);
      },
      [&] // a computation that begins
      {
        stack.notifyEvent(NYXSliceLockEvent(slice(), true));
        QCoreApplication::processEvents();
        if (mode() != "READY") ADD_FAILURE() << "goes on";
        stack.notifyEvent(NYXSliceLockEvent(slice(), false));
        QCoreApplication::processEvents();
      },
  };
  for (std::size_t i = 0; i < std::size(interruptions); ++i)
  {
    SCOPED_TRACE("interruption " + std::to_string(i));
    duringEachGesture(
        [&]
        {
          interruptions[i]();
          expectAsBefore();
        });
    expectAsBefore();
  }
}

TEST_F(Interruptions, ByUndoKeepTheHistoryWhole)
{
  while (history().isUndoable()) history().undo();
  const std::string empty = file();
  for (const auto& [name, start] : gestures)
  {
    SCOPED_TRACE(name);
    while (history().isUndoable()) history().undo();
    ASSERT_EQ(file(), empty);
    draw("cells", {{100, 100}, {150, 90}, {200, 100}, {200, 150}, {150, 160}, {100, 150}});
    choose(mediator().selectMenu(), "cells");
    key(Qt::Key_E);
    expectStep([&] { drag({{100, 150}, {95, 155}}); });
    key(Qt::Key_Escape);
    choose(mediator().selectMenu(), "cells");
    begin(start, 100, 98);
    for (int k = 0; k < 2; ++k) stack.histories().undo(&slice()); // of its last change, of the item itself
    answering({}, [&] { move(120, 120), move(140, 140), release(140, 140); });
    mediator().cancel();
    expectIdle();
    const std::string last = file();
    while (history().isUndoable()) history().undo();
    EXPECT_EQ(file(), empty);
    const bool wasKept = last != empty;
    while (wasKept && history().isRedoable() && file() != last) history().redo();
    EXPECT_EQ(file(), wasKept ? last : empty);
  }
}

TEST_F(Interruptions, ByTheDeletionOfTheModelCanBeUndone)
{
  const std::string before = file();
  duringEachGesture(
      [&]
      {
        const NYXSliceEditWidgetMediatorCreationDelegate& creation = mediator().creation();
        const bool goesOn = creation.isActive() && creation.model().getName() != "cells";
        stack.history().pushStep(std::make_unique<NYXModelDeletionAction>(model("cells")));
        EXPECT_EQ(creation.isActive(), goesOn);
        if (!goesOn) expectIdle();
        move(140, 140);
        release(140, 140);
        stack.history().undo();
        EXPECT_EQ(file(), before);
      });
}

TEST_F(Interruptions, DoNotComeFromOtherStacks)
{
  NYXStack other;
  addModel(other, "cells", MPrimitive::Polygon);
  choose(mediator().manualMenu(), "cells");
  for (const auto& point : Points{{10, 10}, {40, 10}, {40, 40}}) click(point[0], point[1]);
  other.history().pushStep(std::make_unique<NYXModelDeletionAction>(*other.getModel(0)));
  expectStep([this] { key(Qt::Key_Return); });
}

TEST_F(Interruptions, OfALockedSliceNoToolBegins)
{
  key(Qt::Key_C, Qt::ControlModifier);
  stack.notifyEvent(NYXSliceLockEvent(slice(), true));
  QCoreApplication::processEvents();
  expectNoStep(
      [&]
      {
        mediator().creation().activate("cells");
        EXPECT_EQ(mode(), "READY");
        mediator().edition().activate();
        EXPECT_EQ(mode(), "READY");
        for (const Qt::Key tool : {Qt::Key_E, Qt::Key_R, Qt::Key_S, Qt::Key_Delete})
        {
          key(tool);
          EXPECT_EQ(mode(), "READY");
        }
        key(Qt::Key_V, Qt::ControlModifier);
        EXPECT_FALSE(mediator().manualMenu().isEnabled() || mediator().automaticMenu().isEnabled() ||
                     mediator().convertMenu().isEnabled() || mediator().reconstructionMenu().isEnabled());
      });
}

namespace
{
/// Draws, selects and changes at random.
class RandomGestures : public EditTest
{
protected:
  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
  std::vector<int> point() { return {below(420), below(320)}; }
  std::vector<int> pointOfItem()
  {
    if (slice().getNumItems() == 0) return point();
    const ModelItem& chosen = item(below(slice().getNumItems()));
    if (chosen.isRegion() || chosen.getSize() == 0) return point();
    const Vector<int> vertex = chosen.getVertices()[below(chosen.getSize())];
    return {vertex[0], vertex[1]};
  }
  void stroke() { drag({pointOfItem(), point(), point()}); }
  void edit(const char* mode)
  {
    key(Qt::Key_E);
    action(mode).trigger();
    stroke();
    key(Qt::Key_Escape);
  }
  void useDialog(const char* tool)
  {
    action(tool).trigger();
    if (below(3) == 0) return mediator().cancel();
    answering({}, [&] { key(Qt::Key_Return); });
  }

  /// One of the gestures, whatever comes of it.
  void act()
  {
    const char* const names[] = {"cells", "fibres", "spots", "tissue"};
    const std::function<void()> gestures[] = {
        [&] {
          draw(names[below(4)], {point(), point(), point(), point()});
        },
        [&]
        { choose(mediator().manualMenu(), names[below(4)]), stroke(), key(Qt::Key_Backspace), key(Qt::Key_Return); },
        [&] { choose(mediator().manualMenu(), names[below(4)]), stroke(), key(Qt::Key_Escape); },
        [&]
        {
          const auto p = pointOfItem();
          click(p[0], p[1], below(2) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
        },
        [&] {
          drag({point(), point()});
        },
        [&] { key(Qt::Key_A, Qt::ControlModifier); },
        [&]
        {
          if (below(3) == 0) key(Qt::Key_Delete);
        },
        [&] { key(Qt::Key_C, Qt::ControlModifier), key(Qt::Key_V, Qt::ControlModifier); },
        [&] { edit("movePoints"); },
        [&] { edit("insertPoints"); },
        [&] { edit("deletePoints"); },
        [&] { action("decimate").trigger(); },
        [&] { useDialog("resample"); },
        [&] { useDialog("decimateDouglasPeucker"); },
        [&] { useDialog("changeOrigin"); },
        [&] { useDialog("smoothFourier"); },
        [&] { action("splitContour").trigger(), stroke(), key(Qt::Key_Escape); },
        [&] { action("moveContour").trigger(), stroke(), key(Qt::Key_Escape); },
        [&]
        {
          if (mediator().convertMenu().isEnabled()) choose(mediator().convertMenu(), names[below(4)]);
        },
        [&] { action("connectNotNext").trigger(); },
        [&] {
          choose(mediator().automaticMenu(), "cells"), drag({{140, 90}, {200 + below(60), 210}});
        },
        [&] { goSteps(&NYXActionHistory::undo); },
        [&] { mediator().selection().selectModelItems(names[below(4)]); },
        [&] { mediator().selection().selectModelItems(names[below(4)]); },
        [&] { goSteps(&NYXActionHistory::redo); },
    };
    answering({1, 5}, [&] { gestures[below(static_cast<int>(std::size(gestures)))](); });
  }
  void goSteps(void (NYXActionHistory::*go)())
  {
    for (int k = below(4); k >= 0; --k) (history().*go)();
  }

  /// What a file can hold: enough vertices, on the image.
  void expectSound() const
  {
    for (const ModelItem* one : slice().getItems())
    {
      ASSERT_GE(one->getSize(), minNumVertices(one->getModel()->getGeometry()));
      const BoundingBox<int> box = one->boundingBox();
      ASSERT_TRUE(box.getMinimum()[0] >= 0 && box.getMinimum()[1] >= 0 && box.getMaximum()[0] <= 399 &&
                  box.getMaximum()[1] <= 299);
    }
  }

private:
  std::mt19937 _random{1};
};
} // namespace

TEST_F(RandomGestures, EndInTheSameFileAfterUndoAndRedo)
{
  const std::string empty = file();
  std::map<long, std::string> files; // by the last step that stands
  for (int i = 0; i < 500 && !HasFatalFailure(); ++i)
  {
    SCOPED_TRACE("gesture " + std::to_string(i));
    canvas().setUpdatesEnabled(i % 10 == 0); // painting takes most of the time
    act();
    expectIdle();
    expectSound();
    const NYXActionHistory::Step* const step = history().stepToUndo();
    const std::string now = file();
    ASSERT_EQ(files.try_emplace(step ? step->number : 0, now).first->second, now);
  }
  while (history().isRedoable()) history().redo();
  const std::string last = file();
  EXPECT_NE(last, empty);
  EXPECT_GT(history().getUndoListSize(), 50);
  for (int k = 0; k < 2; ++k)
  {
    while (history().isUndoable()) history().undo();
    EXPECT_EQ(file(), empty);
    while (history().isRedoable()) history().redo();
    EXPECT_EQ(file(), last);
  }
}
