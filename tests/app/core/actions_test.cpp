// Each kind of action: applied, reverted and applied again, with what is saved compared each time.
#include "action_cases.h"

#include "app/core/actions/nyxinsertvertexaction.h"
#include "app/core/actions/nyxitemconversionaction.h"
#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/actions/nyxitemselectionattributesaction.h"
#include "app/core/actions/nyxitemselectionconversionaction.h"
#include "app/core/actions/nyxitemshiftaction.h"
#include "app/core/actions/nyxitemtriangulationtagaction.h"
#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/core/actions/nyxmodelitembrushaction.h"
#include "app/core/actions/nyxmodelorderaction.h"
#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "app/core/actions/nyxmovevertexaction.h"
#include "app/core/actions/nyxregistrationaction.h"
#include "app/core/actions/nyxremoveselectionaction.h"
#include "app/core/actions/nyxremovevertexaction.h"
#include "app/core/actions/nyxselectionaction.h"
#include "app/core/actions/nyxsliceorderaction.h"
#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxeventserver.h"
#include "tests/support/errors.h"

#include <functional>
#include <memory>

namespace
{
/// Notes the kinds of events that actions post.
struct EventLog : NYXEventClient
{
  EventLog() { NYXEventServer::attach(*this); }
  std::vector<int> take() { return std::exchange(types, {}); }

  std::vector<int> types;

#define LOG_EVENT(handler, Event)                                                                                      \
  void handler(const Event& event) override                                                                            \
  {                                                                                                                    \
    types.push_back(event.type());                                                                                     \
  }
  LOG_EVENT(stackNameEvent, NYXStackNameEvent)
  LOG_EVENT(stackRegistrationEvent, NYXStackRegistrationEvent)
  LOG_EVENT(stackSliceSpacingEvent, NYXStackSliceSpacingEvent)
  LOG_EVENT(stackImageCalibrationEvent, NYXStackImageCalibrationEvent)
  LOG_EVENT(sliceAnnotationEvent, NYXSliceAnnotationEvent)
  LOG_EVENT(sliceNameEvent, NYXSliceNameEvent)
  LOG_EVENT(sliceSpacingEvent, NYXSliceSpacingEvent)
  LOG_EVENT(sliceImageCalibrationEvent, NYXSliceImageCalibrationEvent)
  LOG_EVENT(modelCreateEvent, NYXModelCreateEvent)
  LOG_EVENT(modelDeleteEvent, NYXModelDeleteEvent)
  LOG_EVENT(modelPropertiesEvent, NYXModelPropertiesEvent)
  LOG_EVENT(modelItemCreateEvent, NYXModelItemCreateEvent)
  LOG_EVENT(modelItemDeleteEvent, NYXModelItemDeleteEvent)
  LOG_EVENT(modelItemVertexEvent, NYXModelItemVertexEvent)
  LOG_EVENT(modelItemAttributeEvent, NYXModelItemAttributeEvent)
  LOG_EVENT(modelItemTriangulationTagEvent, NYXModelItemTriangulationTagEvent)
  LOG_EVENT(modelItemSelectEvent, NYXModelItemSelectEvent)
  LOG_EVENT(modelItemConvertEvent, NYXModelItemConvertEvent)
  LOG_EVENT(poseCreateEvent, NYXPoseCreateEvent)
  LOG_EVENT(poseDeleteEvent, NYXPoseDeleteEvent)
#undef LOG_EVENT
  void processModelItemAction(NYXItemAction&) override
  {
    ++numItemActions;
  }
  void processSliceAction(NYXSliceAction&) override
  {
    ++numSliceActions;
  }

  int numItemActions = 0;
  int numSliceActions = 0;
};

/// The events of the way back: creation becomes deletion, and the last come first.
std::vector<int> reversed(std::vector<int> types)
{
  const auto opposite = [](int type)
  {
    switch (type)
    {
    case NYXEvent::ModelCreate:
    case NYXEvent::ModelItemCreate:
    case NYXEvent::PoseCreate:
      return type + 1;
    case NYXEvent::ModelDelete:
    case NYXEvent::ModelItemDelete:
    case NYXEvent::PoseDelete:
      return type - 1;
    default:
      return type;
    }
  };
  for (int& type : types) type = opposite(type);
  return types;
}

TEST(Actions, GoForthAndBackWithoutATrace)
{
  for (const ActionCase& c : actionCases())
  {
    SCOPED_TRACE(c.name);
    DrawnStack drawn;
    ActionPtr action = c.action(drawn);
    EXPECT_FALSE(action->isNull());
    EXPECT_TRUE(*action == *action);
    if (c.isComparable)
    {
      EXPECT_TRUE(*action == *c.action(drawn));
    }
    EXPECT_EQ(action->description(false), c.description);
    const std::string before = drawn.state() + drawn.selections();
    EventLog log;
    NYXActionHistory& history = drawn.stack().history();
    history.pushStep(std::move(action));
    const std::string after = drawn.state() + drawn.selections();
    EXPECT_NE(after, before);
    EXPECT_EQ(log.take(), c.events);
    EXPECT_GT(log.numItemActions + log.numSliceActions + static_cast<int>(c.events.size()), 0);
    for (int i = 0; i < 2; ++i)
    {
      history.undo();
      EXPECT_EQ(drawn.state() + drawn.selections(), before);
      std::vector<int> back = log.take(), expected = reversed(c.events);
      std::sort(back.begin(), back.end());
      std::sort(expected.begin(), expected.end());
      EXPECT_EQ(back, expected);
      history.redo();
      EXPECT_EQ(drawn.state() + drawn.selections(), after);
      EXPECT_EQ(log.take(), c.events);
    }
  }
}

TEST(Actions, DieWithTheStackInEitherState)
{
  for (const ActionCase& c : actionCases())
  {
    SCOPED_TRACE(c.name);
    {
      DrawnStack applied;
      applied.stack().history().pushStep(c.action(applied));
    }
    DrawnStack reverted;
    reverted.stack().history().pushStep(c.action(reverted));
    reverted.stack().history().undo();
    DrawnStack unused;
    c.action(unused);
  }
}

TEST(Actions, WithoutAChangeAreNullAndMakeNoStep)
{
  DrawnStack d;
  ModelItem& cell = d.item("cells", 0);
  ModelItem& tissue = d.item("tissue", 0);
  d.stack().setLastRegisteredSlice(d.slice(2).getName()); // aligning another one would change that
  std::vector<ActionPtr> actions;
  actions.push_back(make<NYXMoveVertexAction>(cell, 1));
  actions.push_back(make<NYXRemoveVertexAction>(cell, Vector<int>{90, 70}, 3));
  actions.push_back(make<NYXRemoveSelectionAction>(cell));
  actions.push_back(make<NYXSelectionAction>(cell, cell.getSelection()));
  actions.push_back(make<NYXItemSelectionAttributesAction>(cell, cell.getProperties()));
  actions.push_back(make<NYXItemSelectionConversionAction>(cell, cell.getModel()));
  actions.push_back(make<NYXItemSelectionConversionAction>(cell, nullptr));
  actions.push_back(make<NYXItemConversionAction>(cell, *cell.getModel()));
  actions.push_back(make<NYXItemVerticesChangeAction>(cell, cell.getVertices()));
  actions.push_back(make<NYXItemTriangulationTagAction>(cell, cell.getTriangulationTag()));
  actions.push_back(make<NYXModelItemBrushAction>(tissue, disc(40, 40, 3), NYXModelItemBrushAction::Paint));
  actions.push_back(make<NYXModelItemBrushAction>(tissue, disc(90, 70, 3), NYXModelItemBrushAction::Erase));
  actions.push_back(make<NYXItemShiftAction>(cell));
  actions.push_back(make<NYXModelPropertiesAction>(d.model("cells"), NYXModelProperties(d.model("cells"))));
  actions.push_back(make<NYXModelOrderAction>(d.model("cells"), 0));
  actions.push_back(make<NYXSliceOrderAction>(d.slice(2), 2));
  actions.push_back(make<NYXSlicePropertiesAction>(d.slice(2), NYXSliceProperties(d.slice(2))));
  actions.push_back(make<NYXRegistrationAction>(d.slice(2), Registration()));
  actions.push_back(make<NYXStackPropertiesAction>(d.stack(), NYXStackProperties(d.stack())));
  actions.push_back(make<NYXLengthUnitAction>(d.stack(), -6));
  for (ActionPtr& action : actions)
  {
    EXPECT_TRUE(action->isNull()) << action->description(true).toStdString();
    d.stack().history().pushStep(std::move(action));
  }
  EXPECT_FALSE(d.stack().history().isUndoable());
  EXPECT_EQ(NYXItemSelectionConversionAction(cell, nullptr).description(false),
            "<Invalid item selection conversion action>");
}

TEST(Actions, AppliedAgainAndAgainWhileDraggedRevertAtOnce)
{
  DrawnStack d;
  const std::string before = d.state();
  ModelItem& tissue = d.item("tissue", 0);
  auto shift = std::make_unique<NYXItemShiftAction>(tissue);
  for (int i = 1; i <= 5; ++i)
  {
    shift->setShift(i, 2 * i);
    shift->apply();
  }
  EXPECT_EQ(tissue.getRLEItemSet(), disc(45, 50, 9));
  d.stack().history().pushStep(std::move(shift), false);
  d.stack().history().undo();
  EXPECT_EQ(d.state(), before);
}

TEST(Actions, RefuseWhatCannotBe)
{
  DrawnStack d;
  ModelItem& cell = d.item("cells", 0);
  expectError<RangeError>("no such vertex", [&] { NYXMoveVertexAction(cell, 4); });
  expectError<RangeError>("no such vertex", [&] { NYXRemoveVertexAction(cell, -1); });
  expectError<UsageError>("Polyline into Region",
                          [&] { NYXItemConversionAction(d.item("fibres", 0), d.model("tissue")); });
  expectError<UsageError>("Region into Polygon",
                          [&] { NYXItemConversionAction(d.item("tissue", 0), d.model("cells")); });
  expectError<UsageError>("regions", // the cells would lose their vertices
                          [&]
                          {
                            NYXModelProperties properties(d.model("cells"));
                            properties.properties.setGeometry(MPrimitive::Region);
                            NYXModelPropertiesAction(d.model("cells"), properties);
                          });
  expectError<UsageError>("no open stack",
                          []
                          {
                            ModelItem item;
                            NYXItemDeletionAction action(item);
                          });
  expectError<RangeError>("range of coordinates", [&] { NYXItemShiftAction(cell, 2147483647, 0).apply(); });
}

/// A client that fails when it hears of a vertex.
struct FaultyClient : NYXEventClient
{
  FaultyClient() { NYXEventServer::attach(*this); }
  void modelItemVertexEvent(const NYXModelItemVertexEvent&) override
  {
    if (isFaulty) throw ProgramError();
  }

  bool isFaulty = true;
};

TEST(Actions, ThatFailHalfWayLeaveTheStackAsItWas)
{
  DrawnStack d;
  NYXActionHistory& history = d.stack().history();
  const std::string before = d.state();
  const auto makeStep = [&](ActionPtr last)
  {
    const NYXActionStep step(history);
    history.push(make<NYXModelDeletionAction>(d.model("fibres")), true);
    history.push(make<NYXItemDeletionAction>(d.item("cells", 1)), true);
    history.push(std::move(last), true);
  };
  const auto failing = [&] { return make<NYXInsertVertexAction>(d.item("cells", 0), 9, Vector<int>{1, 1}); };
  NYXStackProperties unstorable(d.stack());
  unstorable.name = "good";
  unstorable.imagesPath = "bad\npath";
  EXPECT_THROW(makeStep(failing()), RangeError);
  EXPECT_EQ(d.state(), before);
  EXPECT_THROW(makeStep(make<NYXStackPropertiesAction>(d.stack(), unstorable)), ValueError);
  EXPECT_EQ(d.state(), before);

  const auto moving = [&] { return make<NYXMoveVertexAction>(d.item("cells", 0), 0, Vector<int>{7, 7}); };
  FaultyClient client;
  EXPECT_THROW(makeStep(moving()), ProgramError);
  EXPECT_EQ(d.state(), before);
  EXPECT_FALSE(history.isUndoable());
  EXPECT_FALSE(d.stack().isModified());

  client.isFaulty = false;
  makeStep(moving());
  const std::string after = d.state();
  client.isFaulty = true;
  EXPECT_THROW(history.undo(), ProgramError);
  EXPECT_EQ(d.state(), after);
  client.isFaulty = false;
  history.undo();
  EXPECT_EQ(d.state(), before);
  client.isFaulty = true;
  EXPECT_THROW(history.redo(), ProgramError);
  EXPECT_EQ(d.state(), before);
  EXPECT_TRUE(history.isRedoable());
}

TEST(Actions, TheBookmarksFollow)
{
  DrawnStack d;
  NYXStack& stack = d.stack();
  stack.history().pushStep(make<NYXItemCreationAction>(newItem(d)));
  EXPECT_EQ(stack.getLastSegmentedSlice(), "slice 2");
  NYXSliceProperties properties(d.slice(2));
  properties.name = "last";
  stack.history().pushStep(make<NYXSlicePropertiesAction>(d.slice(2), properties));
  EXPECT_EQ(stack.getLastSegmentedSlice(), "last");
  stack.history().pushStep(make<NYXItemDeletionAction>(d.item("cells", 0))); // on slice 0
  stack.history().undo();
  EXPECT_EQ(stack.getLastSegmentedSlice(), "last") << "a restored item is not a newly segmented one";
  stack.history().undo();
  EXPECT_EQ(stack.getLastSegmentedSlice(), "slice 2");
  stack.history().undo();
  EXPECT_EQ(stack.getLastSegmentedSlice(), "slice 1");
}

TEST(Actions, ManyItemsInOneStepAndManyVerticesInOneItem)
{
  DrawnStack d;
  const int numItems = 10000, numVertices = 100000;
  for (int i = 0; i < numItems; ++i) addItem(d.model("cells"), d.slice(i % 3), {{1, 1}, {9, 1}, {1, 9}});
  const std::string before = d.state();
  std::vector<ModelItem*> items = d.model("cells").getItems();
  std::reverse(items.begin(), items.end());
  NYXActionHistory& history = d.stack().history();
  history.pushStep(make<NYXItemDeletionAction>(items));
  history.openStep();
  for (int i = 0; i < 3; ++i) history.push(make<NYXItemCreationAction>(newItem(d)), true);
  history.closeStep();
  history.undo();
  history.undo();
  EXPECT_EQ(d.state(), before);

  ModelItem& large = d.item("fibres", 0);
  large.setVertices(Vertices<int>(2, numVertices));
  const int* const storage = large.getVertices().data();
  history.pushStep(make<NYXMoveVertexAction>(large, 7, Vector<int>{1, 1}));
  history.undo();
  NYXSelectionAction(large, ModelItemSelection(large.getSelection())).apply();
  EXPECT_EQ(large.getVertices().data(), storage) << "the vertices were copied";
}
} // namespace
