// Selecting by clicks and by the rubber box, and what is done to the selection.

#include "edit_test_support.h"

namespace
{
class Selection : public EditTest
{
protected:
  std::vector<int> numSelected() const
  {
    std::vector<int> numbers;
    for (const ModelItem* one : slice().getItems()) numbers.push_back(one->getSelection().getSize());
    return numbers;
  }
  /// A closed contour, an open one, points and a region, none of them near another.
  void addOneOfEach()
  {
    addItem(model("cells"), slice(), square);
    addItem(model("fibres"), slice(), {{200, 50}, {300, 50}});
    addItem(model("spots"), slice(), {{200, 200}, {250, 200}, {300, 200}});
    auto region = std::make_unique<ModelItem>(&model("tissue"), &slice());
    RLEItemSet disc;
    disc.setBall(Vector<int>{100, 230}, 20);
    region->setRLEItemSet(disc);
    region.release()->attach();
    mediator().updateEditActions();
  }
  void useAction(const char* name) { action(name).trigger(); }
};
} // namespace

TEST_F(Selection, FollowsClicks)
{
  addOneOfEach();
  const auto shift = Qt::ShiftModifier;
  const struct
  {
    int x, y;
    Qt::KeyboardModifiers modifiers;
    std::vector<int> expected;
  } cases[] = {
      {100, 53, {}, {4, 0, 0, 0}},     // on the contour, 3 pixels + trunc(1 / 1) away at most
      {100, 46, shift, {0, 0, 0, 0}},  // inverted
      {100, 45, {}, {0, 0, 0, 0}},     // too far
      {250, 48, {}, {0, 2, 0, 0}},     // an open contour
      {350, 100, {}, {0, 0, 0, 0}},    // a miss clears
      {202, 202, {}, {0, 0, 1, 0}},    // a point
      {250, 200, {}, {0, 0, 1, 0}},    // another one instead
      {300, 200, shift, {0, 0, 2, 0}}, // and one more
      {250, 200, shift, {0, 0, 1, 0}}, // toggled
      {350, 100, shift, {0, 0, 1, 0}}, // a miss with Shift
      {126, 230, shift, {0, 0, 1, 1}}, // a region: 5 pixels of its brush + 1
      {127, 230, shift, {0, 0, 1, 1}}, // too far
      {200, 50, {}, {0, 2, 0, 0}},     // what is not hit is cleared
      {420, 50, {}, {0, 2, 0, 0}},     // beyond the image
  };
  expectNoStep( // selecting is not undone
      [&]
      {
        for (const auto& c : cases)
        {
          SCOPED_TRACE(std::to_string(c.x) + ", " + std::to_string(c.y));
          click(c.x, c.y, c.modifiers);
          EXPECT_EQ(numSelected(), c.expected);
        }
      });
  EXPECT_FALSE(history().isUndoable());
  tablet(QEvent::TabletPress, 100, 50);
  tablet(QEvent::TabletRelease, 100, 50);
  EXPECT_EQ(numSelected(), (std::vector<int>{4, 0, 0, 0})) << "a tap selects as a click does, once";
}

TEST_F(Selection, ReachesSevenPixelsAtAQuarterOfTheSize)
{
  addItem(model("spots"), slice(), {{200, 200}});
  setZoom(0.25F); // a canvas pixel stands for four
  NYXPreferences::setClickTolerance(3);
  for (const auto& [x, isHit] : std::vector<std::pair<int, bool>>{{207, true}, {208, false}, {193, true}, {192, false}})
  {
    item().moveVertex(0, Vector<int>{x, 200});
    item().getSelection().set(false);
    click(50, 50);
    EXPECT_EQ(item().getSelection().isComplete(), isHit) << "at " << x;
  }
}

TEST_F(Selection, TakesWhatLiesInTheRubberBox)
{
  addOneOfEach();
  drag({{160, 160}, {100, 100}, {40, 40}}); // drawn from any corner
  EXPECT_EQ(numSelected(), (std::vector<int>{4, 0, 0, 0}));
  drag({{190, 40}, {299, 60}}); // a contour that is not whole in the box
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 0, 0}));
  drag({{190, 190}, {270, 420}}); // to the border of the image
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 2, 0}));
  press(70, 190, Qt::LeftButton, Qt::ShiftModifier);
  move(399, 299);
  release(399, 299);
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 3, 1}));
  press(10, 10);
  move(399, 299);
  key(Qt::Key_Escape);
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 0, 0}));
  release(399, 299);
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 0, 0})) << "Escape gives the box up";
}

TEST_F(Selection, FollowsKeysAndMenus)
{
  addOneOfEach();
  key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(numSelected(), (std::vector<int>{4, 2, 3, 1}));
  key(Qt::Key_Escape);
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 0, 0}));
  choose(mediator().selectMenu(), "spots");
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 3, 0}));
  const auto names = [](QMenu& menu)
  {
    emit menu.aboutToShow();
    QStringList texts;
    for (const QAction* entry : menu.actions()) texts << entry->text();
    return texts;
  };
  addModel(stack, "a & b", MPrimitive::Polygon);
  EXPECT_EQ(names(mediator().manualMenu()), QStringList({"cells", "fibres", "spots", "tissue", "a && b"}));
  EXPECT_EQ(names(mediator().automaticMenu()), QStringList({"cells", "a && b"}));
  EXPECT_EQ(names(mediator().selectMenu()), QStringList({"cells", "fibres", "spots", "tissue"}));
  EXPECT_EQ(names(mediator().reconstructionMenu()),
            QStringList({"Can connect with all", "Cannot connect with previous contours",
                         "Cannot connect with next contours"}));
}

TEST_F(Selection, HasTheActionsAndShortcuts)
{
  const std::vector<std::pair<const char*, const char*>> shortcuts = {
      {"Cancel", "Esc"},        {"Copy", "Ctrl+C"},    {"Paste", "Ctrl+V"},
      {"Delete", "Del"},        {"Edit points", "E"},  {"Decimate", ""},
      {"Change origin", ""},    {"Resample", "R"},     {"Decimate (Douglas-Peucker)", ""},
      {"Run Snake", "S"},       {"Split contour", ""}, {"Smooth (Fourier)", ""},
      {"Select all", "Ctrl+A"}, {"Move contour", ""},  {"Properties...", ""}};
  for (const auto& [text, keys] : shortcuts)
  {
    const QList<QAction*> actions = mediator().findChildren<QAction*>();
    const auto it =
        std::find_if(actions.begin(), actions.end(), [t = text](const QAction* a) { return a->text() == t; });
    ASSERT_NE(it, actions.end()) << text;
    EXPECT_EQ((*it)->shortcut().toString(), keys) << text;
  }
}

TEST_F(Selection, OffersWhatAppliesToIt)
{
  addOneOfEach();
  const auto enabled = [&]
  {
    QStringList names;
    for (const char* name : {"editPoints", "decimate", "changeOrigin", "runSnake", "splitContour", "moveContour"})
      if (action(name).isEnabled()) names << name;
    return names;
  };
  const std::pair<const char*, QStringList> cases[] = {
      {"cells", {"editPoints", "decimate", "changeOrigin", "runSnake", "splitContour", "moveContour"}},
      {"fibres", {"editPoints", "decimate", "splitContour", "moveContour"}},
      {"spots", {"editPoints", "moveContour"}},
      {"tissue", {"editPoints", "moveContour"}}};
  for (const auto& [name, expected] : cases)
  {
    choose(mediator().selectMenu(), name);
    EXPECT_EQ(enabled(), expected) << name;
    EXPECT_EQ(mediator().reconstructionMenu().isEnabled(), std::string(name) == "cells");
  }
  key(Qt::Key_Escape);
  EXPECT_TRUE(enabled().isEmpty());
}

TEST_F(Selection, IsDeletedInOneStep)
{
  addOneOfEach();
  click(200, 200);
  click(100, 50, Qt::ShiftModifier);
  expectStep([&] { key(Qt::Key_Delete); });
  EXPECT_EQ(numSelected(), (std::vector<int>{0, 0, 0})) << "the contour and one of the points are gone";
  history().undo();
  EXPECT_EQ(numSelected(), (std::vector<int>{4, 0, 1, 0})) << "in its old place, selected as before";
  key(Qt::Key_A, Qt::ControlModifier);
  expectStep([&] { key(Qt::Key_Delete); });
  EXPECT_EQ(slice().getNumItems(), 0);
}

TEST_F(Selection, IsNotDeletedWhenTooFewVerticesWouldRemain)
{
  model("cells").setName("%2 cells");
  const struct
  {
    const char* name;
    Points vertices;
    int numSelected;
    const char* text; // nothing for one that is deleted
  } cases[] = {
      {"%2 cells", square, 2,
       "Vertex suppresion|%2 cells:\n\nCould not remove selected vertices since this would leave only 2 vertices on "
       "the contour (the minimum number of vertices per contour is 3 in this model)."},
      {"%2 cells", square, 1, nullptr},
      {"fibres",
       {{200, 50}, {300, 50}},
       1,
       "Vertex suppresion|fibres:\n\nCould not remove selected vertices since this would leave only 1 vertices on "
       "the contour (the minimum number of vertices per contour is 2 in this model)."},
      {"spots", {{200, 50}, {300, 50}}, 1, nullptr},
  };
  for (const auto& c : cases)
  {
    ModelItem& added = addItem(model(c.name), slice(), c.vertices);
    for (int i = 0; i < c.numSelected; ++i) added.getSelection().set(true, i, false);
    mediator().updateEditActions();
    const QStringList expected = c.text ? QStringList{c.text} : QStringList();
    const auto work = [&] { EXPECT_EQ(answering({}, [&] { key(Qt::Key_Delete); }), expected); };
    c.text ? expectNoStep(work) : expectStep(work);
    added.getSelection().set(false);
  }
}

TEST_F(Selection, IsCopiedAndPasted)
{
  EXPECT_FALSE(action("paste").isEnabled());
  addOneOfEach();
  item(0).setTriangulationTag(CurveStackTriangulationContourTag::End);
  key(Qt::Key_A, Qt::ControlModifier);
  item(2).getSelection().set(false, 0, false); // two of the points
  key(Qt::Key_C, Qt::ControlModifier);
  key(Qt::Key_A, Qt::ControlModifier);
  key(Qt::Key_Delete); // the copy is one of its own
  show(1);
  const std::string before = file();
  key(Qt::Key_V, Qt::ControlModifier);
  ASSERT_EQ(slice(1).getNumItems(), 4);
  EXPECT_EQ(pointsOf(slice(1).getItem(0)->getVertices()), square);
  EXPECT_EQ(slice(1).getItem(0)->getTriangulationTag(), CurveStackTriangulationContourTag::End);
  EXPECT_EQ(pointsOf(slice(1).getItem(2)->getVertices()), (Points{{250, 200}, {300, 200}}));
  EXPECT_EQ(slice(1).getItem(3)->getSize(), 1257); // pixels of a disc of radius 20
  EXPECT_TRUE(slice(1).getItem(2)->getSelection().isComplete());
  EXPECT_EQ(stack.sliceHistory(slice(1)).getUndoListSize(), 1);
  stack.sliceHistory(slice(1)).undo();
  EXPECT_EQ(file(), before);
}

TEST_F(Selection, PastesNothingThatTheFileCannotHold)
{
  addSelected("cells", square);
  item().getSelection().set(false, 0, false);
  item().getSelection().set(false, 1, false); // two vertices are no contour
  key(Qt::Key_C, Qt::ControlModifier);
  expectNoStep([&] { useAction("paste"); });
  item().getSelection().set(true);
  mediator().updateEditActions();
  key(Qt::Key_C, Qt::ControlModifier);
  model("cells").setName("others"); // the stack has no model for it any more
  QStringList messages;
  QObject::connect(&mediator(), &NYXSliceEditWidgetMediator::messageShown, [&](const QString& m) { messages << m; });
  expectNoStep([&] { useAction("paste"); });
  EXPECT_EQ(messages.size(), 1);
}

TEST_F(Selection, IsCutWhenItIsPastedOnASmallerImage)
{
  Image(100, 80, 8).writeFile(folder.file("small.tif"), true);
  slice(1).setImageSource(ImageSourceFile(folder.file("small.tif")));
  addSelected("cells", square);
  addSelected("cells", {{200, 200}, {300, 200}, {300, 250}});
  addSelected("spots", {{20, 20}, {200, 200}, {99, 79}});
  key(Qt::Key_C, Qt::ControlModifier);
  show(1);
  QStringList messages;
  QObject::connect(&mediator(), &NYXSliceEditWidgetMediator::messageShown, [&](const QString& m) { messages << m; });
  key(Qt::Key_V, Qt::ControlModifier);
  ASSERT_EQ(slice(1).getNumItems(), 2);
  EXPECT_EQ(pointsOf(slice(1).getItem(0)->getVertices()), (Points{{50, 50}, {99, 50}, {99, 79}, {50, 79}}));
  EXPECT_EQ(pointsOf(slice(1).getItem(1)->getVertices()), (Points{{20, 20}, {99, 79}})); // none where nothing is
  EXPECT_EQ(messages.size(), 1);
}

TEST_F(Selection, IsPastedWholeWhenTheSizeOfTheImageIsNotKnown)
{
  slice(1).setImageSource(ImageSourceFile(folder.file("missing.tif")));
  addSelected("cells", square);
  key(Qt::Key_C, Qt::ControlModifier);
  show(1);
  key(Qt::Key_V, Qt::ControlModifier);
  ASSERT_EQ(slice(1).getNumItems(), 1);
  EXPECT_EQ(pointsOf(slice(1).getItem(0)->getVertices()), square);
}

TEST_F(Selection, IsConverted)
{
  addOneOfEach();
  addModel(stack, "nuclei", MPrimitive::Polygon);
  choose(mediator().selectMenu(), "cells");
  expectStep([&] { choose(mediator().convertMenu(), "nuclei"); });
  EXPECT_EQ(item(0).getModel()->getName(), "nuclei");
  expectNoStep([&] { choose(mediator().convertMenu(), "nuclei"); });
  expectStep([&] { choose(mediator().convertMenu(), "tissue"); });
  EXPECT_TRUE(item(0).isRegion());

  click(200, 200); // a part of the points becomes an item of its own
  addModel(stack, "dots", MPrimitive::Polypoint);
  expectStep([&] { choose(mediator().convertMenu(), "dots"); });
  EXPECT_EQ(slice().getNumItems(), 5);
  EXPECT_EQ(points(2), (Points{{250, 200}, {300, 200}}));
}

TEST_F(Selection, IsNotConvertedToWhatItCannotBe)
{
  addSelected("fibres", {{200, 50}, {300, 50}});
  for (const char* name : {"cells", "tissue"}) // two vertices are no closed contour, and an open one covers nothing
  {
    expectNoStep(
        [&]
        {
          const QStringList seen = answering({}, [&] { choose(mediator().convertMenu(), name); });
          ASSERT_EQ(seen.size(), 1) << name;
          EXPECT_TRUE(seen.front().contains("converted"));
        });
  }
}

TEST_F(Selection, GetsATriangulationTag)
{
  addSelected("cells", square);
  const std::pair<const char*, int> tags[] = {{"connectNotPrevious", 1}, {"connectNotNext", 2}, {"connectAll", 0}};
  for (const auto& [name, tag] : tags)
  {
    expectStep([&, n = name] { useAction(n); });
    EXPECT_EQ(static_cast<int>(item().getTriangulationTag()), tag);
    EXPECT_EQ(action(name).data().toInt(), tag);
    expectNoStep([&, n = name] { useAction(n); });
  }
  history().undo();
  mediator().refreshContextMenuActions();
  EXPECT_TRUE(action("connectNotNext").isChecked());
}

TEST_F(Selection, IsDecimated)
{
  addSelected("cells", {{50, 50}, {100, 50}, {150, 50}, {150, 150}, {50, 150}});
  addSelected("fibres", {{200, 50}, {250, 51}, {300, 50}});
  addSelected("spots", {{200, 200}, {210, 200}, {220, 200}});
  expectStep([&] { useAction("decimate"); });
  EXPECT_EQ(points(0), square);
  EXPECT_EQ(points(1), (Points{{200, 50}, {300, 50}}));
  EXPECT_EQ(item(2).getSize(), 3);
}
