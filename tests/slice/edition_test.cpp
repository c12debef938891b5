// Moving, inserting and deleting single vertices, and erasing regions.

#include "edit_test_support.h"
#include "slice/nyxvertexeditiontoolbar.h"

namespace
{
class Edition : public EditTest
{
protected:
  void start(const char* name, const Points& vertices, VertexEditionMode mode = VertexEditionMode::Move)
  {
    addSelected(name, vertices);
    key(Qt::Key_E);
    if (mode != VertexEditionMode::Move)
      useToolBar(mode == VertexEditionMode::Insert ? "insertPoints" : "deletePoints");
  }
  NYXVertexEditionToolBar& toolBar() const { return *widget.findChild<NYXVertexEditionToolBar*>(); }
  void useToolBar(const char* name) { toolBar().findChild<QAction*>(name)->trigger(); }
};
} // namespace

TEST_F(Edition, ShowsItsToolBarAndModes)
{
  addItem(model("cells"), slice(), square);
  start("cells", {{200, 50}, {300, 50}, {300, 150}}); // the last selected item is edited
  EXPECT_EQ(mode(), "MOVE");
  EXPECT_TRUE(toolBar().isVisible());
  EXPECT_EQ(toolBar().pos(), canvas().mapToGlobal(QPoint(10, 10)));
  QStringList texts;
  for (const QAction* entry : toolBar().actions()) texts << entry->text();
  EXPECT_EQ(texts, QStringList({"Move points", "Insert points", "Delete points", "", "End edition"}));
  useToolBar("insertPoints");
  EXPECT_EQ(mode(), "INSERT");
  useToolBar("deletePoints");
  EXPECT_EQ(mode(), "DELETE");
  EXPECT_EQ(canvas().cursor().shape(), Qt::BlankCursor);
  QStringList entries;
  QTimer::singleShot(0,
                     [&]
                     {
                       auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                       for (const QAction* entry : menu ? menu->actions() : QList<QAction*>()) entries << entry->text();
                       if (menu) menu->close();
                     });
  press(100, 200, Qt::RightButton);
  release(100, 200, Qt::RightButton);
  EXPECT_EQ(entries, texts);
  useToolBar("endEdition");
  EXPECT_FALSE(toolBar().isVisible());
  expectIdle();
  key(Qt::Key_E);
  key(Qt::Key_Escape);
  expectIdle();
  EXPECT_FALSE(history().isUndoable());
}

TEST_F(Edition, ShowsWhereAVertexWouldBeInserted)
{
  start("cells", square, VertexEditionMode::Insert);
  move(350, 250);
  const QImage plain = canvas().grabFramebuffer();
  const auto numLit = [&](int x, const QImage& shown)
  {
    int count = 0;
    for (int y = 45; y < 56; ++y) count += shown.pixel(x, y) != plain.pixel(x, y);
    return count;
  };
  move(100, 53);
  const QImage near = canvas().grabFramebuffer();
  EXPECT_TRUE(numLit(88, near) + numLit(89, near) + numLit(90, near) > 0); // dashes to the vertices beside it
  EXPECT_TRUE(numLit(110, near) + numLit(111, near) + numLit(112, near) > 0);
  move(100, 70);
  EXPECT_EQ(canvas().grabFramebuffer(), plain);
}

TEST_F(Edition, InsertsNoVertexTwiceAtOnePlace)
{
  const std::pair<const char*, Points> cases[] = {{"cells", {{50, 50}, {100, 50}, {150, 50}, {150, 150}, {50, 150}}},
                                                  {"spots", {{50, 50}, {150, 50}, {100, 50}}}};
  for (const auto& [name, expected] : cases)
  {
    SCOPED_TRACE(name);
    const bool isClosed = std::string(name) == "cells";
    start(name, isClosed ? square : Points{{50, 50}, {150, 50}}, VertexEditionMode::Insert);
    const int place = slice().getNumItems() - 1;
    expectStep(
        [&]
        {
          click(100, 50);
          doubleClick(100, 50);
        });
    EXPECT_EQ(points(place), expected);
    mediator().cancel();
    mediator().cancel(); // the selection
  }
}

TEST_F(Edition, MovesTheNearestVertexWithinTenPixelsAtAnyZoom)
{
  start("cells", square);
  expectStep([&] { drag({{146, 58}, {200, 100}, {180, 40}}); });
  EXPECT_EQ(points(), (Points{{50, 50}, {180, 40}, {150, 150}, {50, 150}}));
  expectNoStep([&] { drag({{57, 58}, {100, 100}}); });           // 10.6 pixels away
  expectNoStep([&] { drag({{50, 50}, {100, 100}, {50, 50}}); }); // back in its place
  expectNoStep([&] { click(50, 50); });
  expectStep([&] { drag({{50, 150}, {-20, 320}}); }); // stays on the image
  EXPECT_EQ(points()[3], (std::vector<int>{0, 299}));
  setZoom(0.25F);
  expectStep([&] { drag({{14, 14}, {25, 25}}); }); // 8.5 pixels
  EXPECT_EQ(points()[0], (std::vector<int>{100, 100}));
  expectNoStep([&] { drag({{28, 28}, {40, 40}}); }); // 17 pixels
  EXPECT_TRUE(item().getSelection().isComplete());
}

TEST_F(Edition, InsertsVerticesInOneStepADrag)
{
  start("cells", square, VertexEditionMode::Insert);
  expectStep([&] { drag({{153, 80}, {160, 90}, {160, 90}, {155, 100}}); });
  EXPECT_EQ(points(), (Points{{50, 50}, {150, 50}, {153, 80}, {160, 90}, {155, 100}, {150, 150}, {50, 150}}));
  expectStep([&] { click(47, 100); }); // the closing edge, 3 pixels + 1 away at most
  EXPECT_EQ(points().back(), (std::vector<int>{47, 100}));
  expectNoStep([&] { drag({{100, 100}, {60, 100}}); });
  key(Qt::Key_Escape);
  EXPECT_TRUE(item().getSelection().isComplete());
  expectStep([&] { key(Qt::Key_Delete); });
  EXPECT_EQ(slice().getNumItems(), 0);
}

TEST_F(Edition, InsertsPointsAnywhere)
{
  start("spots", {{50, 50}}, VertexEditionMode::Insert);
  expectStep([&] { click(300, 200); });
  EXPECT_EQ(points(), (Points{{50, 50}, {300, 200}}));
}

TEST_F(Edition, DeletesVerticesInOneStepADrag)
{
  start("cells", {{50, 50}, {100, 50}, {150, 50}, {150, 150}, {100, 150}, {50, 150}}, VertexEditionMode::Delete);
  expectStep([&] { drag({{103, 52}, {120, 50}, {148, 50}}); });
  EXPECT_EQ(points(), (Points{{50, 50}, {150, 150}, {100, 150}, {50, 150}}));
  expectNoStep([&] { click(105, 150); });
  expectStep([&] { click(104, 150); });
}

TEST_F(Edition, RefusesToDeleteTheLastVertices)
{
  const struct
  {
    const char* name;
    Points vertices;
    const char* reason;
  } cases[] = {
      {"cells",
       {{50, 50}, {150, 50}, {150, 150}},
       "You cannot remove any vertex from this contour.\n\nReason: cannot make a closed contour with less than 3 "
       "vertices."},
      {"fibres",
       {{50, 50}, {150, 50}},
       "You cannot remove any vertex from this contour.\n\nReason: cannot make an open contour with less than 2 "
       "vertices."},
      {"spots", {{50, 50}}, "You cannot remove this vertex.\n\nReason: it is the last one."},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    start(c.name, c.vertices, VertexEditionMode::Delete);
    const QStringList expected{QString("Warning|") + c.reason};
    expectNoStep([&] { EXPECT_EQ(answering({}, [&] { click(50, 50); }), expected); });
    EXPECT_EQ(mode(), "DELETE") << "the tool goes on";
    key(Qt::Key_Escape);
    item().getSelection().set(false);
  }
  start("cells", square, VertexEditionMode::Delete); // one of a drag's vertices can go
  expectStep([&] { EXPECT_EQ(answering({}, [&] { drag({{50, 50}, {150, 50}, {150, 150}}); }).size(), 1); });
  EXPECT_EQ(slice().getItem(3)->getSize(), 3);
}

TEST_F(Edition, ErasesRegions)
{
  auto region = std::make_unique<ModelItem>(&model("tissue"), &slice());
  RLEItemSet disc;
  disc.setBall(Vector<int>{100, 100}, 20);
  region->setRLEItemSet(disc);
  region->getSelection().set(true);
  region.release()->attach();
  mediator().updateEditActions();
  key(Qt::Key_E);
  EXPECT_EQ(mode(), "DELETE");
  EXPECT_FALSE(toolBar().findChild<QAction*>("movePoints")->isEnabled());
  EXPECT_FALSE(toolBar().findChild<QAction*>("insertPoints")->isEnabled());
  expectStep([&] { drag({{80, 100}, {120, 100}}); });
  EXPECT_EQ(item().getSize(), 1257 - (41 + 10 * 39)) << "a band of 11 rows, through all of the disc";
  expectNoStep([&] { drag({{100, 100}, {110, 100}}); }); // nothing is there
  NYXPreferences::setRegionBrushSize(50);
  expectStep([&] { click(100, 100); });
  EXPECT_EQ(slice().getNumItems(), 0) << "a region without positions is none";
  expectIdle();
}
