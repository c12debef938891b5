// The strip of tools, the model in use, and what lights up below the cursor.
#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "edit_test_support.h"

#include "slice/nyxmodetoolbar.h"

#include <QToolButton>

namespace
{
class Tools : public EditTest
{
protected:
  Tools() : strip(mediator(), &widget) { widget.insertToolBar(strip); }

  QStringList checked() const
  {
    QStringList names;
    for (const QAction* tool : mediator().toolActions())
      if (tool != nullptr && tool->isChecked()) names << tool->objectName();
    return names;
  }
  QString modelShown() const { return strip.findChild<QToolButton*>("modelInUse")->toolTip(); }

  NYXModeToolBar strip;
};
} // namespace

TEST_F(Tools, TheOneAtWorkIsHighlighted)
{
  addSelected("cells", square);
  EXPECT_EQ(checked(), QStringList("selectTool"));
  for (const char* name : {"editPoints", "splitContour", "moveContour", "runSnake"})
  {
    action(name).trigger();
    EXPECT_EQ(checked(), QStringList(name));
    EXPECT_TRUE(action(name).isEnabled()) << "chosen again, it is left";
    action(name).trigger();
    EXPECT_EQ(checked(), QStringList("selectTool")) << name;
    expectIdle();
  }
  action("editPoints").trigger();
  action("moveContour").trigger();
  EXPECT_EQ(checked(), QStringList("moveContour"));
  action("ruler").trigger();
  EXPECT_TRUE(checked().isEmpty());
  EXPECT_EQ(mode(), "RULER");
  EXPECT_EQ(mediator().hint(), "Drag to measure a length and an angle, Escape to end");
  action("splitContour").trigger();
  EXPECT_FALSE(action("ruler").isChecked());
  action("selectTool").trigger();
  EXPECT_EQ(checked(), QStringList("selectTool"));
  expectIdle();
}

TEST_F(Tools, LeavingADrawingKeepsWhatIsAnItem)
{
  key(Qt::Key_D);
  EXPECT_EQ(checked(), QStringList("draw"));
  click(10, 10);
  click(60, 10);
  expectNoStep([this] { action("selectTool").trigger(); });
  key(Qt::Key_D);
  for (const auto& point : square) click(point[0], point[1]);
  expectStep([this] { action("selectTool").trigger(); });
  EXPECT_EQ(slice().getNumItems(), 1);
  expectIdle();
}

TEST_F(Tools, NumberKeysChooseTheModelInUse)
{
  EXPECT_EQ(mediator().modelInUse(), "cells");
  key(Qt::Key_2);
  EXPECT_EQ(mediator().modelInUse(), "fibres");
  EXPECT_EQ(modelShown(), "Model in use: fibres (1 to 9 choose one)");
  EXPECT_FALSE(action("drawAutomatically").isEnabled()) << "makes closed contours only";
  EXPECT_FALSE(action("model5").isEnabled()) << "there are four";
  key(Qt::Key_D);
  key(Qt::Key_3); // nothing is drawn yet
  EXPECT_EQ(mediator().creation().model().getName(), "spots");
  click(30, 30);
  key(Qt::Key_1); // for the next item
  EXPECT_EQ(mediator().creation().model().getName(), "spots");
  key(Qt::Key_Return);
  ASSERT_EQ(slice().getNumItems(), 1);
  EXPECT_EQ(item().getModel()->getName(), "spots");
  EXPECT_EQ(mediator().modelInUse(), "cells");
  choose(mediator().manualMenu(), "tissue");
  EXPECT_EQ(mediator().modelInUse(), "tissue");
  widget.setSlice(nullptr);
  EXPECT_EQ(mediator().modelInUse(), "");
  EXPECT_FALSE(action("draw").isEnabled());
}

TEST_F(Tools, TheModelInUseMayGetAnotherName)
{
  const auto rename = [this](const char* from, const char* to)
  {
    NYXModelProperties properties(model(from));
    properties.name = to;
    stack.history().pushStep(std::make_unique<NYXModelPropertiesAction>(model(from), properties));
  };
  key(Qt::Key_2);
  rename("fibres", "axons");
  EXPECT_EQ(mediator().modelInUse(), "axons");
  key(Qt::Key_D);
  click(10, 10);
  stack.history().undo();
  EXPECT_TRUE(mediator().hint().startsWith("fibres: ")) << mediator().hint().toStdString();
  mediator().cancel();
  EXPECT_EQ(mediator().modelInUse(), "fibres");
  choose(mediator().automaticMenu(), "cells");
  rename("cells", "nuclei");
  expectStep([this] { answering({0, 0}, [this] { drag({{140, 90}, {200, 100}, {260, 210}}); }); });
  EXPECT_EQ(item().getModel()->getName(), "nuclei");
}

TEST_F(Tools, EndWhenTheGeometryOfAModelChanges)
{
  choose(mediator().automaticMenu(), "cells");
  NYXModelProperties properties(model("cells"));
  properties.properties.setGeometry(MPrimitive::Region);
  stack.history().pushStep(std::make_unique<NYXModelPropertiesAction>(model("cells"), properties));
  expectIdle();
}

TEST_F(Tools, TheEraserIsDrawnAtItsSize)
{
  setZoom(0.5F); // a vertex would be searched two pixels farther away
  NYXPreferences::setRegionBrushSize(20);
  auto region = std::make_unique<ModelItem>(&model("tissue"), &slice());
  region->addRLEItemSet(RLEItemSet({RLEItem(10, 10, 5)}));
  region->getSelection().set(true);
  region.release()->attach();
  mediator().updateEditActions();
  action("editPoints").trigger();
  move(100, 75); // of the canvas: the middle of the image
  const QImage picture = canvas().grabFramebuffer();
  const auto isBlue = [&](double x)
  {
    const QColor color = picture.pixelColor(qRound(x), 75);
    return color.blue() > color.red() + 60;
  };
  EXPECT_TRUE(isBlue(100 + 20.5 / 2) || isBlue(100 + 20.5 / 2 - 1));
  EXPECT_FALSE(isBlue(100 + 22.5 / 2 + 1));
}

TEST_F(Tools, BracketsChangeTheBrush)
{
  NYXPreferences::setRegionBrushSize(1);
  key(Qt::Key_BracketLeft);
  key(Qt::Key_BracketLeft);
  EXPECT_EQ(NYXPreferences::getRegionBrushSize(), 0);
  key(Qt::Key_BracketRight);
  EXPECT_EQ(NYXPreferences::getRegionBrushSize(), 1);
}

TEST_F(Tools, WhatAClickWouldSelectLightsUp)
{
  addItem(model("cells"), slice(), square);
  addItem(model("spots"), slice(), {{250, 250}, {300, 250}});
  canvas().repaintItems();
  move(350, 20);
  const QImage plain = canvas().grabFramebuffer();
  const auto isLit = [&](int x, int y) { return canvas().grabFramebuffer().pixel(x, y) != plain.pixel(x, y); };
  move(100, 52);
  EXPECT_TRUE(isLit(150, 100)); // the whole contour
  EXPECT_FALSE(isLit(257, 250));
  move(251, 250);
  EXPECT_FALSE(isLit(150, 100));
  EXPECT_TRUE(isLit(257, 250)); // a ring around the point
  EXPECT_FALSE(isLit(307, 250));
  move(100, 52);
  key(Qt::Key_D);
  EXPECT_FALSE(isLit(150, 100)) << "a click draws now";
}

TEST_F(Tools, DecimateTellsWhatItLeaves)
{
  QStringList messages;
  const QObject context;
  QObject::connect(&mediator(), &NYXSliceEditWidgetMediator::messageShown, &context,
                   [&](const QString& text) { messages << text; });
  addSelected("fibres", {{10, 10}, {30, 10}, {60, 10}, {100, 10}, {160, 10}}); // on one line
  expectStep([this] { action("decimate").trigger(); });
  expectNoStep([this] { action("decimate").trigger(); });
  EXPECT_EQ(messages, QStringList({"2 of 5 vertices are left", "All 2 vertices are needed"}));
}
