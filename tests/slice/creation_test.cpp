// Drawing new items by mouse, pen and keys.

#include "edit_test_support.h"

using Creation = EditTest;

TEST_F(Creation, DrawsAnItemOfEachGeometryInOneStep)
{
  const Points clockwise{{20, 20}, {20, 60}, {60, 60}, {60, 20}};
  const struct
  {
    const char* name;
    Points clicks, expected;
  } cases[] = {
      {"cells", clockwise, {{60, 20}, {60, 60}, {20, 60}, {20, 20}}}, // made counter-clockwise
      {"cells", square, square},
      {"fibres", clockwise, clockwise},
      {"spots", clockwise, clockwise},
      {"fibres", {{10, 10}, {10, 10}, {30, 10}}, {{10, 10}, {30, 10}}}, // twice at one pixel is stored once
      {"fibres", {{410, 10}, {399, 0}, {450, 310}, {0, 299}, {0, 300}}, {{399, 0}, {0, 299}}}, // the image's corners
  };
  int numItems = 0;
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    expectStep([&] { draw(c.name, c.clicks); });
    ASSERT_EQ(slice().getNumItems(), ++numItems);
    EXPECT_EQ(points(numItems - 1), c.expected);
    EXPECT_EQ(item(numItems - 1).getModel()->getName(), c.name);
    expectIdle();
  }
  EXPECT_EQ(stack.getLastSegmentedSlice(), "slice 0");
}

TEST_F(Creation, ShowsTheToolAndTheItemUnderConstruction)
{
  QStringList hints;
  QList<bool> locks;
  const QObject context; // the widget outlives the lists
  QObject::connect(&mediator(), &NYXSliceEditWidgetMediator::hintShown, &context,
                   [&](const QString& hint) { hints << hint; });
  QObject::connect(&mediator(), &NYXSliceEditWidgetMediator::lockRequested, &context,
                   [&](bool isLocked) { locks << isLocked; });
  addSelected("cells", square);
  choose(mediator().manualMenu(), "fibres");
  EXPECT_EQ(mode(), "CREATE");
  EXPECT_EQ(canvas().cursor().shape(), Qt::CrossCursor);
  EXPECT_TRUE(item().getSelection().isEmpty()) << "choosing a model first cancels the selection";
  ASSERT_NE(canvas().getExtraItem(), nullptr);
  click(10, 10);
  EXPECT_EQ(canvas().getExtraItem()->getSize(), 1);
  EXPECT_EQ(slice().getNumItems(), 1);
  key(Qt::Key_Escape);
  EXPECT_EQ(locks, QList<bool>({true, false}));
  EXPECT_TRUE(hints.contains("fibres: click or drag to add vertices, Return or a double click to finish, Backspace to "
                             "take one back, Escape to cancel"));
  EXPECT_TRUE(hints.back().startsWith("Click or drag a box to select"));
  expectIdle();
}

TEST_F(Creation, RefusesTooFewVertices)
{
  const struct
  {
    const char* name;
    Points clicks;
    const char* text;
  } cases[] = {
      {"cells", {{10, 10}, {50, 10}}, "Cannot create a closed contour with less than 3 points.\n\nCreation canceled."},
      {"cells", {}, "Cannot create a closed contour with less than 3 points.\n\nCreation canceled."},
      {"fibres", {{10, 10}}, "Cannot create an open contour with less than 2 points.\n\nCreation canceled."},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.text);
    expectNoStep(
        [&]
        { EXPECT_EQ(answering({}, [&] { draw(c.name, c.clicks); }), QStringList{QString("Usage error|") + c.text}); });
    expectIdle();
  }
  for (const char* name : {"spots", "tissue"}) // nothing drawn is nothing to tell of
    expectNoStep([&] { EXPECT_TRUE(answering({}, [&] { draw(name, {}); }).isEmpty()); });
  expectNoStep(
      [&]
      {
        EXPECT_EQ(answering({},
                            [&]
                            {
                              choose(mediator().manualMenu(), "cells");
                              click(10, 10);
                              doubleClick(50, 10);
                            })
                      .size(),
                  1);
      });
  expectIdle();
}

TEST_F(Creation, TakesStrokesKeysAndDoubleClicks)
{
  choose(mediator().manualMenu(), "cells");
  drag({{10, 10}, {20, 12}, {30, 10}}); // a vertex at each move
  click(30, 40);
  click(20, 60);
  key(Qt::Key_Backspace);
  QCursor::setPos(canvas().mapToGlobal(QPoint(12, 41)));
  QCoreApplication::processEvents();
  key(Qt::Key_X);
  expectStep([&] { doubleClick(8, 30); });
  EXPECT_EQ(points(), (Points{{10, 10}, {20, 12}, {30, 10}, {30, 40}, {12, 41}, {8, 30}}));

  choose(mediator().manualMenu(), "spots"); // placed by clicks only
  drag({{10, 10}, {20, 12}, {30, 10}});
  key(Qt::Key_Enter);
  EXPECT_EQ(points(1), (Points{{10, 10}}));

  choose(mediator().manualMenu(), "fibres"); // a move without a button shows the next segment only
  click(10, 10);
  move(30, 30);
  EXPECT_EQ(canvas().getExtraItem()->getSize(), 1);
  key(Qt::Key_Backspace); // the only vertex
  expectIdle();
  EXPECT_EQ(slice().getNumItems(), 2);
}

TEST_F(Creation, DrawsWithThePen)
{
  choose(mediator().manualMenu(), "cells");
  tablet(QEvent::TabletPress, 50, 50);
  for (int x = 51; x <= 150; ++x) tablet(QEvent::TabletMove, x, 50);
  for (int y = 51; y <= 150; ++y) tablet(QEvent::TabletMove, 150, y);
  tablet(QEvent::TabletRelease, 150, 150);
  EXPECT_EQ(canvas().getExtraItem()->getSize(), 201) << "no event is left out";
  for (int k = 0; k < 2; ++k) // the second tap is a double click
  {
    tablet(QEvent::TabletPress, 50, 150);
    tablet(QEvent::TabletRelease, 50, 150);
  }
  EXPECT_EQ(item().getSize(), 202);
  expectIdle();
}

TEST_F(Creation, LeavesOutWhatADrawnCurveHardlyNeeds)
{
  NYXPreferences::enableAutoDecimation(true);
  const auto drawSteps = [&](const char* name)
  {
    choose(mediator().manualMenu(), name);
    press(50, 50);
    for (int x = 60; x <= 150; x += 10) move(x, 50);
    for (int y = 60; y <= 150; y += 10) move(150, y);
    release(150, 150);
    key(Qt::Key_Return);
  };
  drawSteps("fibres");
  EXPECT_EQ(points(), (Points{{50, 50}, {150, 50}, {150, 150}}));
  draw("fibres", {{10, 10}, {20, 10}, {30, 10}}); // two vertices would be left
  EXPECT_EQ(item(1).getSize(), 3);
  draw("spots", {{10, 10}, {20, 10}, {30, 10}, {30, 20}});
  EXPECT_EQ(item(2).getSize(), 4);
}

TEST_F(Creation, ExtendsThePointsAndRegionsThatTheSliceHas)
{
  draw("spots", {{10, 10}});
  addItem(model("spots"), slice(1), {{1, 1}});
  expectStep([&] { draw("spots", {{20, 20}, {30, 30}}); });
  EXPECT_EQ(slice().getNumItems(), 1);
  EXPECT_EQ(points(), (Points{{10, 10}, {20, 20}, {30, 30}}));

  draw("tissue", {{100, 100}});
  RLEItemSet disc;
  disc.setBall(Vector<int>{100, 100}, 5);
  EXPECT_EQ(item(1).getRLEItemSet(), disc);
  expectStep([&] { draw("tissue", {{120, 100}}); });
  EXPECT_EQ(slice().getNumItems(), 2);
  EXPECT_EQ(item(1).getSize(), 2 * disc.numVertices());
  expectNoStep([&] { draw("tissue", {{120, 100}}); }); // painted already
}

TEST_F(Creation, PaintsRegionsDiscByDisc)
{
  const auto size = [&] { return canvas().getExtraItem()->getSize(); };
  choose(mediator().manualMenu(), "tissue");
  click(100, 100);
  const int disc = size();
  press(200, 100); // not connected with the disc before
  EXPECT_EQ(size(), 2 * disc);
  move(240, 100);
  EXPECT_EQ(size(), 2 * disc + 40 * 11) << "without gaps, however fast the mouse is";
  key(Qt::Key_Backspace);
  EXPECT_EQ(size(), 2 * disc);
  move(210, 100); // goes on from what is left
  EXPECT_EQ(size(), 2 * disc + 10 * 11);
  move(450, 100);
  move(300, 280); // not through the image from where the mouse left it
  EXPECT_EQ(size(), 3 * disc + 10 * 11);
  release(300, 280);
  click(0, 0); // a quarter of a disc, with the axes
  EXPECT_EQ(size(), 3 * disc + 10 * 11 + (disc - 1) / 4 + 5 + 1);
  for (int k = 0; k < 4; ++k) key(Qt::Key_Backspace);
  EXPECT_EQ(size(), disc);
  key(Qt::Key_Backspace);
  expectIdle();
  EXPECT_EQ(slice().getNumItems(), 0);
}

TEST_F(Creation, IsCancelledByTheRightButtonWithoutAMenu)
{
  choose(mediator().manualMenu(), "cells");
  click(10, 10);
  bool hasMenu = false;
  QTimer::singleShot(50,
                     [&]
                     {
                       hasMenu = QApplication::activePopupWidget() != nullptr;
                       if (hasMenu) QApplication::activePopupWidget()->close();
                     });
  press(20, 20, Qt::RightButton);
  release(20, 20, Qt::RightButton);
  QTest::qWait(80);
  EXPECT_FALSE(hasMenu);
  expectIdle();
  EXPECT_EQ(slice().getNumItems(), 0);
}
