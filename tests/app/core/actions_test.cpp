// Each kind of action: applied, reverted and applied again, with what is saved compared each time.
#include "drawn_stack.h"

#include "app/core/actions/nyxinsertvertexaction.h"
#include "app/core/actions/nyxitemappendpointsaction.h"
#include "app/core/actions/nyxitemconversionaction.h"
#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/actions/nyxitemselectionattributesaction.h"
#include "app/core/actions/nyxitemselectionconversionaction.h"
#include "app/core/actions/nyxitemshiftaction.h"
#include "app/core/actions/nyxitemtriangulationtagaction.h"
#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/actions/nyxmodelcreationaction.h"
#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/core/actions/nyxmodelitembrushaction.h"
#include "app/core/actions/nyxmodelorderaction.h"
#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "app/core/actions/nyxmovevertexaction.h"
#include "app/core/actions/nyxposeinsertiondeletionaction.h"
#include "app/core/actions/nyxregistrationaction.h"
#include "app/core/actions/nyxremoveselectionaction.h"
#include "app/core/actions/nyxremovevertexaction.h"
#include "app/core/actions/nyxselectionaction.h"
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
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
using ActionPtr = std::unique_ptr<NYXAction>;

template <class Action, class... Arguments> ActionPtr make(Arguments&&... arguments)
{
  return std::make_unique<Action>(std::forward<Arguments>(arguments)...);
}

Vertices<int> points(const std::vector<std::vector<int>>& pixels)
{
  return curveThrough<int>(pixels);
}

std::unique_ptr<ModelItem> newItem(DrawnStack& drawn)
{
  auto item = std::make_unique<ModelItem>(&drawn.model("nuclei"), &drawn.slice(2));
  item->setVertices(points({{1, 1}, {20, 1}, {20, 20}}));
  return item;
}

ModelItem& selected(ModelItem& item, const std::vector<int>& vertices)
{
  for (const int i : vertices) item.getSelection().set(true, i, false);
  return item;
}

template <class Properties, class Object> Properties changed(Object& object, void (*change)(Properties&))
{
  Properties properties(object);
  change(properties);
  return properties;
}

struct Case
{
  const char* name;
  std::function<ActionPtr(DrawnStack&)> action;
  const char* description;
  std::vector<int> events; // posted when it is applied; reverting swaps creation and deletion
  bool isComparable = true;
};

const std::vector<Case>& cases()
{
  static const std::vector<Case> list = {
      {"item creation",
       [](DrawnStack& d) { return make<NYXItemCreationAction>(newItem(d)); },
       "Item creation",
       {17},
       false},
      {"creation of several items",
       [](DrawnStack& d)
       {
         std::vector<std::unique_ptr<ModelItem>> items;
         for (int i = 0; i < 3; ++i) items.push_back(newItem(d));
         return make<NYXItemCreationAction>(std::move(items));
       },
       "Item creation",
       {17, 17, 17},
       false},
      {"item deletion",
       [](DrawnStack& d) { return make<NYXItemDeletionAction>(d.item("cells", 2)); },
       "Item deletion",
       {18}},
      {"deletion of several items",
       [](DrawnStack& d)
       {
         return make<NYXItemDeletionAction>(
             std::vector<ModelItem*>{&d.item("cells", 4), &d.item("fibres", 0), &d.item("cells", 0)});
       },
       "Item deletion",
       {18, 18, 18}},
      {"points appended",
       [](DrawnStack& d) {
         return make<NYXItemAppendPointsAction>(d.item("spots", 0), points({{1, 2}, {3, 4}}));
       },
       "Append points to item",
       {19}},
      {"region merged",
       [](DrawnStack& d)
       {
         ModelItem other(&d.model("tissue"), &d.slice(0));
         other.setRLEItemSet(disc(45, 45, 9));
         return make<NYXItemAppendPointsAction>(d.item("tissue", 0), other);
       },
       "Append points to item",
       {19}},
      {"vertex inserted",
       [](DrawnStack& d) {
         return make<NYXInsertVertexAction>(d.item("cells", 0), 4, Vector<int>{3, 30});
       },
       "Insert item vertex",
       {19}},
      {"vertex moved",
       [](DrawnStack& d) {
         return make<NYXMoveVertexAction>(d.item("cells", 0), 0, Vector<int>{2, 3});
       },
       "Move item vertex",
       {19}},
      {"vertex removed",
       [](DrawnStack& d) {
         return make<NYXRemoveVertexAction>(selected(d.item("spots", 0), {1, 3}), 1);
       },
       "Remove item vertex",
       {19}},
      {"vertices removed within a radius", // 0, and 1 at a distance of sqrt(5)
       [](DrawnStack& d) {
         return make<NYXRemoveVertexAction>(selected(d.item("spots", 0), {0, 3}), Vector<int>{5, 5}, 2.24);
       },
       "Remove item vertex",
       {19}},
      {"selected vertices removed",
       [](DrawnStack& d) { return make<NYXRemoveSelectionAction>(selected(d.item("cells", 0), {2})); },
       "Remove item selection",
       {19}},
      {"unselected vertices removed",
       [](DrawnStack& d) {
         return make<NYXRemoveSelectionAction>(selected(d.item("spots", 0), {0, 2}), true);
       },
       "Remove item selection",
       {19}},
      {"selection",
       [](DrawnStack& d)
       {
         ModelItemSelection selection = d.item("cells", 0).getSelection();
         selection.set(true, 1, false);
         return make<NYXSelectionAction>(d.item("cells", 0), selection);
       },
       "Item selection",
       {22}},
      {"properties of an item",
       [](DrawnStack& d)
       {
         ModelItemProperties properties;
         properties.setColor(1, 2, 3);
         return make<NYXItemSelectionAttributesAction>(selected(d.item("cells", 1), {0}), properties);
       },
       "Item properties",
       {20}},
      {"properties of some points",
       [](DrawnStack& d)
       {
         ModelItemProperties properties;
         properties.setPointSize(7);
         return make<NYXItemSelectionAttributesAction>(selected(d.item("spots", 0), {1, 2}), properties);
       },
       "Item properties",
       {19, 17}},
      {"conversion of a selected item",
       [](DrawnStack& d)
       { return make<NYXItemSelectionConversionAction>(selected(d.item("cells", 1), {0}), &d.model("nuclei")); },
       "Conversion to: nuclei",
       {23}},
      {"conversion of some points to a region",
       [](DrawnStack& d)
       { return make<NYXItemSelectionConversionAction>(selected(d.item("spots", 0), {3}), &d.model("tissue")); },
       "Conversion to: tissue",
       {19, 17, 23}},
      {"conversion of a contour to a region",
       [](DrawnStack& d) { return make<NYXItemConversionAction>(d.item("cells", 1), d.model("tissue")); },
       "Conversion to: tissue",
       {23}},
      {"conversion of a region to points",
       [](DrawnStack& d) { return make<NYXItemConversionAction>(d.item("tissue", 0), d.model("spots")); },
       "Conversion to: spots",
       {23}},
      {"all vertices changed",
       [](DrawnStack& d) {
         return make<NYXItemVerticesChangeAction>(d.item("cells", 0), points({{0, 0}, {9, 0}, {0, 9}}));
       },
       "Change item vertices",
       {19}},
      {"triangulation tag",
       [](DrawnStack& d)
       { return make<NYXItemTriangulationTagAction>(d.item("cells", 0), CurveStackTriangulationContourTag::Begin); },
       "Item triangulation tag",
       {21}},
      {"brush",
       [](DrawnStack& d)
       { return make<NYXModelItemBrushAction>(d.item("tissue", 0), disc(45, 45, 9), NYXModelItemBrushAction::Paint); },
       "Paint region",
       {19}},
      {"eraser",
       [](DrawnStack& d)
       { return make<NYXModelItemBrushAction>(d.item("tissue", 0), disc(45, 45, 9), NYXModelItemBrushAction::Erase); },
       "Erase from region",
       {19}},
      {"contour shifted",
       [](DrawnStack& d) { return make<NYXItemShiftAction>(d.item("cells", 0), 5, -3); },
       "Move item",
       {19}},
      {"region shifted",
       [](DrawnStack& d) { return make<NYXItemShiftAction>(d.item("tissue", 0), -5, 3); },
       "Move item",
       {19}},
      {"model creation",
       [](DrawnStack& d) { return make<NYXModelCreationAction>(d.stack(), std::make_unique<Model>("vessels")); },
       "Model creation",
       {14},
       false},
      {"model deletion",
       [](DrawnStack& d) { return make<NYXModelDeletionAction>(d.model("cells")); },
       "Model deletion",
       {15}},
      {"model properties",
       [](DrawnStack& d)
       {
         return make<NYXModelPropertiesAction>(d.model("cells"),
                                               changed<NYXModelProperties>(d.model("cells"),
                                                                           [](auto& p)
                                                                           {
                                                                             p.name = "somata";
                                                                             p.properties.setSurfaceOpacity(9);
                                                                             p.itemProperties.setColor(9, 8, 7);
                                                                           }));
       },
       "Model properties",
       {16}},
      {"model order",
       [](DrawnStack& d) { return make<NYXModelOrderAction>(d.model("nuclei"), 1); },
       "Order of models",
       {16}},
      {"slice insertion",
       [](DrawnStack& d)
       {
         auto slice = std::make_unique<StackSlice>();
         slice->setName("new");
         slice->setImageSource(ImageSourceFile("new.tif"));
         d.stack().setImagesPath("images");
         return make<NYXSliceInsertionDeletionAction>(d.stack(), std::move(slice), 1);
       },
       "Insert slice",
       {},
       false},
      {"slice deletion",
       [](DrawnStack& d) { return make<NYXSliceInsertionDeletionAction>(d.slice(0)); },
       "Delete slice",
       {}},
      {"slice order", [](DrawnStack& d) { return make<NYXSliceOrderAction>(d.slice(0), 2); }, "Order of slices", {6}},
      {"slice properties",
       [](DrawnStack& d)
       {
         return make<NYXSlicePropertiesAction>(d.slice(1),
                                               changed<NYXSliceProperties>(d.slice(1),
                                                                           [](auto& p)
                                                                           {
                                                                             p.name = "torn";
                                                                             p.annotation = "left";
                                                                             p.pixelCalibration.setPixelWidth(0.3f);
                                                                             p.position = NYXSliceProperties::Absolute;
                                                                             p.depth = 7;
                                                                           }));
       },
       "Slice properties",
       {10, 8, 12, 11}},
      {"registration of a slice",
       [](DrawnStack& d) { return make<NYXRegistrationAction>(d.slice(1), Registration(1, 2, 3)); },
       "Slice registration",
       {5}},
      {"registration of all slices",
       [](DrawnStack& d)
       {
         std::vector<NYXRegistrationAction::Alignment> all;
         for (int i = 1; i < 3; ++i) all.push_back({&d.slice(i), Registration(i, -i, 10 * i)});
         return make<NYXRegistrationAction>(all);
       },
       "Stack registration",
       {5}},
      {"stack properties",
       [](DrawnStack& d)
       {
         return make<NYXStackPropertiesAction>(
             d.stack(), changed<NYXStackProperties>(d.stack(),
                                                    [](auto& p)
                                                    {
                                                      p.name = "rat";
                                                      p.annotation = "note";
                                                      p.invertZAxis = true;
                                                      p.defaultRelativePosition = 0.1f;
                                                      p.defaultPixelCalibration.setLengthUnit(LengthUnit(-9));
                                                    }));
       },
       "Stack properties",
       {2, 6, 7}},
      {"length unit", [](DrawnStack& d) { return make<NYXLengthUnitAction>(d.stack(), -9); }, "Length unit", {6, 7}},
      {"pose insertion",
       [](DrawnStack& d)
       { return make<NYXPoseInsertionDeletionAction>(d.stack(), std::make_unique<Pose>(Pose::canonicalPose1())); },
       "Pose creation",
       {24},
       false},
      {"pose deletion",
       [](DrawnStack& d) { return make<NYXPoseInsertionDeletionAction>(*d.stack().getPose(0)); },
       "Pose deletion",
       {25}},
  };
  return list;
}

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
  for (const Case& c : cases())
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
  for (const Case& c : cases())
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
