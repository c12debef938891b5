#include "drawn_stack.h"

#include "app/core/actions/nyxmovevertexaction.h"
#include "app/core/actions/nyxselectionaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/core/nyxeventserver.h"

#include <functional>
#include <memory>

namespace
{
std::unique_ptr<NYXMoveVertexAction> move(DrawnStack& d, int vertex)
{
  return std::make_unique<NYXMoveVertexAction>(d.item("cells", 0), vertex, Vector<int>{33, 33});
}

std::unique_ptr<NYXAction> rename(DrawnStack& d, const std::string& name)
{
  NYXStackProperties properties(d.stack());
  properties.name = name;
  return std::make_unique<NYXStackPropertiesAction>(d.stack(), properties);
}

/// Counts how often the flag of any stack is told.
struct FlagLog : NYXEventClient
{
  FlagLog() { NYXEventServer::attach(*this); }
  void stackModifyEvent(const NYXStackModifyEvent& event) override { told.push_back(event.getStack().isModified()); }

  std::vector<bool> told;
};

TEST(ModifiedFlag, FollowsEveryHistory)
{
  DrawnStack d;
  NYXStack& stack = d.stack();
  FlagLog log;
  stack.history().pushStep(rename(d, "a"));
  stack.sliceHistory(d.slice(0)).pushStep(move(d, 0));
  EXPECT_TRUE(stack.isModified());
  stack.history().undo();
  EXPECT_TRUE(stack.isModified()) << "the slice is still changed";
  stack.sliceHistory(d.slice(0)).undo();
  EXPECT_FALSE(stack.isModified());
  EXPECT_EQ(log.told, (std::vector<bool>{true, false}));

  stack.sliceHistory(d.slice(0)).redo();
  stack.setModified(false); // saved here
  EXPECT_FALSE(stack.isModified());
  stack.sliceHistory(d.slice(0)).undo();
  EXPECT_TRUE(stack.isModified()) << "undone beyond the saved state";
  stack.sliceHistory(d.slice(0)).redo();
  EXPECT_FALSE(stack.isModified());
  stack.sliceHistory(d.slice(0)).undo();
  stack.sliceHistory(d.slice(0)).pushStep(move(d, 1));
  stack.sliceHistory(d.slice(0)).undo();
  EXPECT_TRUE(stack.isModified()) << "the saved state is lost";
  stack.setModified(false);
  EXPECT_FALSE(stack.isModified());
}

TEST(ModifiedFlag, SetByHandItStaysUntilSaved)
{
  DrawnStack d;
  d.stack().history().pushStep(rename(d, "a"));
  d.stack().setModified(true);
  d.stack().history().undo();
  EXPECT_TRUE(d.stack().isModified());
  d.stack().setModified(false);
  EXPECT_FALSE(d.stack().isModified());
}

TEST(ModifiedFlag, KnowsOfActionsThatBelongToNoStepYet)
{
  DrawnStack d;
  auto action = move(d, 0);
  action->apply();
  EXPECT_TRUE(d.stack().isModified());
  FlagLog log;
  d.stack().history().pushStep(std::move(action), false);
  EXPECT_TRUE(log.told.empty()) << "it stays modified when the step is made";
  d.stack().history().undo();
  EXPECT_FALSE(d.stack().isModified());

  auto back = move(d, 1);
  const Vector<int> start{8, 10}; // where vertex 1 is
  back->apply();
  back->setPoint(start);
  back->apply();
  EXPECT_TRUE(back->isNull());
  EXPECT_FALSE(d.stack().isModified()) << "dragged to and fro";

  ModelItemSelection selection = d.item("cells", 0).getSelection();
  selection.invert();
  NYXSelectionAction(d.item("cells", 0), selection).apply();
  EXPECT_FALSE(d.stack().isModified()) << "selecting is no change";
}

TEST(ModifiedFlag, IsSetByTheNewsOfOthersAboutThisStack)
{
  DrawnStack a, b;
  const std::vector<std::function<void(DrawnStack&)>> news = {
      [](DrawnStack& d) { d.stack().notifyEvent(NYXStackNameEvent(d.stack())); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXStackRegistrationEvent(d.stack())); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXStackSliceSpacingEvent(d.stack())); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXStackImageCalibrationEvent(d.stack())); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXSliceAnnotationEvent(d.slice(0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXSliceNameEvent(d.slice(0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXSliceSpacingEvent(d.slice(0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXSliceImageCalibrationEvent(d.slice(0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelCreateEvent(d.model("cells"))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelDeleteEvent(d.model("cells"))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelPropertiesEvent(d.model("cells"), {}, {})); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelItemCreateEvent(d.item("cells", 0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelItemDeleteEvent(d.item("cells", 0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelItemVertexEvent(d.item("cells", 0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelItemAttributeEvent(d.item("cells", 0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXModelItemTriangulationTagEvent(d.item("cells", 0))); },
      [](DrawnStack& d)
      { d.stack().notifyEvent(NYXModelItemConvertEvent(d.item("cells", 0), d.model("cells"), d.model("nuclei"))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXPoseCreateEvent(*d.stack().getPose(0))); },
      [](DrawnStack& d) { d.stack().notifyEvent(NYXPoseDeleteEvent(*d.stack().getPose(0))); },
  };
  for (const auto& tell : news)
  {
    tell(a);
    EXPECT_TRUE(a.stack().isModified()) << &tell - news.data();
    EXPECT_FALSE(b.stack().isModified()) << &tell - news.data();
    a.stack().setModified(false);
  }
  a.stack().notifyEvent(NYXSliceItemSelectionEvent(a.slice(0)));
  a.stack().notifyEvent(NYXModelItemSelectEvent(a.item("cells", 0)));
  a.stack().notifyEvent(NYXSliceLockEvent(a.slice(0), true));
  EXPECT_FALSE(a.stack().isModified());
  a.stack().notifyEvent(NYXModelItemCreateEvent(a.item("cells", 2)));
  EXPECT_EQ(a.stack().getLastSegmentedSlice(), "slice 2");
  EXPECT_EQ(b.stack().getLastSegmentedSlice(), "slice 1");
}

TEST(Reconstruction, IsComputedAnewWhenSlicesMove)
{
  DrawnStack d;
  const auto heightOfLast = [&] { return d.stack().getReconstruction().getZMap()[2]; };
  EXPECT_FLOAT_EQ(heightOfLast(), 5.1f); // 0, 3.1, and 2 by default
  NYXStackProperties properties(d.stack());
  properties.defaultRelativePosition = 4;
  d.stack().history().pushStep(std::make_unique<NYXStackPropertiesAction>(d.stack(), properties));
  EXPECT_FLOAT_EQ(heightOfLast(), 7.1f);
  d.stack().history().undo();
  EXPECT_FLOAT_EQ(heightOfLast(), 5.1f);
}
} // namespace
