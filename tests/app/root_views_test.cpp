// What the right side of the root window shows: the slice, the panorama, the overview, and the fields that tell of it.
#include "app/nyxrootmediator.h"
#include "app/nyxrootsliceeditwidget.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "slice/image/nyxoverview.h"
#include "slice/image/nyxpanorama.h"
#include "slice/image/nyxslicewidget.h"
#include "slice/image/nyxslicewidgetstatusbar.h"
#include "viewer/nyxrenderingwindow.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QSpinBox>
#include <QStatusTipEvent>
#include <QTest>
#include <QToolBar>

namespace
{
struct RootViews : testing::Test
{
  template <class Part> Part& part() { return *test.window().findChild<Part*>(); }
  void openExample() { test.window().startupOpenStack(MIRELO_EXAMPLE); }

  WindowTest test;
};

TEST_F(RootViews, PanoramaAndSliceTakeTurnsAndAreRemembered)
{
  QAction& panorama = *test.action("Display stack panorama");
  QAction& single = *test.action("Display single slice");
  EXPECT_FALSE(panorama.isEnabled());
  openExample();
  EXPECT_TRUE(single.isChecked());
  EXPECT_TRUE(part<NYXRootSliceEditWidget>().isVisible());
  EXPECT_FALSE(part<NYXPanorama>().isVisible());
  panorama.trigger();
  EXPECT_FALSE(single.isChecked());
  EXPECT_FALSE(part<NYXRootSliceEditWidget>().isVisible());
  EXPECT_TRUE(part<NYXPanorama>().isVisible());
  EXPECT_FALSE(test.action("Zoom out")->isEnabled()); // nothing there to zoom
  {
    NYXRootWindow second;
    EXPECT_TRUE(second.findChild<NYXPanorama*>()->isVisible());
  }
  test.action("Close stack")->trigger();
  EXPECT_TRUE(test.window().findChild<QWidget*>("startPage")->isVisible()); // whatever is shown of stacks
  openExample();
  EXPECT_TRUE(part<NYXPanorama>().isVisible());
  single.trigger();
  EXPECT_TRUE(part<NYXRootSliceEditWidget>().isVisible());
  EXPECT_TRUE(test.action("Zoom out")->isEnabled());
  EXPECT_FALSE(QSettings().value("rootWindow/panorama").toBool());
}

TEST_F(RootViews, TheSliceListAndThePanoramaFollowEachOther)
{
  openExample();
  test.action("Display stack panorama")->trigger();
  auto& panorama = part<NYXPanorama>();
  auto& slices = part<NYXSliceListWidget>();
  const auto place = [&](int slice) { return panorama.thumbnailRect(slice).center(); };
  QTest::mouseClick(panorama.viewport(), Qt::LeftButton, {}, place(3));
  EXPECT_EQ(slices.currentSlice(), 3);
  EXPECT_EQ(test.window().findChild<QLabel*>("sliceField")->text(), "slice 003 (4 / 28)");
  test.action("Select next slice")->trigger();
  EXPECT_EQ(panorama.getCurrentSlice(), 4);
  test.window().findChild<QLineEdit*>("sliceFilter")->setText("5");
  EXPECT_EQ(panorama.getCurrentSlice(), 5);
  QTest::mouseClick(panorama.viewport(), Qt::LeftButton, {}, place(2)); // hidden in the list
  EXPECT_EQ(slices.currentSlice(), 2);
  QTest::mouseClick(panorama.viewport(), Qt::LeftButton, {}, place(1));
  QTest::mouseDClick(panorama.viewport(), Qt::LeftButton, {}, place(1));
  EXPECT_TRUE(test.action("Display single slice")->isChecked());
  EXPECT_FALSE(panorama.isVisible());
  EXPECT_EQ(slices.currentSlice(), 1);
}

TEST_F(RootViews, PageKeysLeadThroughThePanoramaWhileItHasTheFocus)
{
  openExample();
  test.action("Display stack panorama")->trigger();
  test.window().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&test.window()));
  QTest::keyClick(&part<NYXPanorama>(), Qt::Key_PageDown);
  EXPECT_GT(part<NYXSliceListWidget>().currentSlice(), 1); // not just the next slice
  QTest::keyClick(&part<NYXPanorama>(), Qt::Key_Home);
  EXPECT_EQ(part<NYXSliceListWidget>().currentSlice(), 0);
}

TEST_F(RootViews, ThePanoramaThatHasTheFocusGoesWithTheStack)
{
  openExample();
  test.window().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&test.window()));
  test.action("Display stack panorama")->trigger();
  ASSERT_TRUE(part<NYXPanorama>().hasFocus());
  test.action("Close stack")->trigger();
  EXPECT_FALSE(part<NYXPanorama>().isVisible());
  EXPECT_EQ(part<NYXSliceListWidget>().numSlices(), 0);
  EXPECT_EQ(test.window().windowTitle(), "Mirelo");
}

TEST_F(RootViews, TheOverviewRemembersThatItIsShown)
{
  openExample();
  QAction& action = *test.action("Display overview");
  EXPECT_FALSE(part<NYXOverview>().isVisible());
  action.trigger();
  EXPECT_TRUE(part<NYXOverview>().isVisible());
  {
    NYXRootWindow second;
    EXPECT_TRUE(second.findChild<NYXOverview*>()->isVisible());
  }
  part<NYXOverview>().resize(150, 170);
  EXPECT_TRUE(action.isChecked());
  part<NYXOverview>().close();
  EXPECT_FALSE(action.isChecked());
  EXPECT_FALSE(QSettings().value("overview/visible").toBool());
  NYXRootWindow third;
  EXPECT_FALSE(third.findChild<NYXOverview*>()->isVisible());
  third.findChild<QAction*>("Display overview")->trigger();
  EXPECT_EQ(third.findChild<NYXOverview*>()->size(), QSize(150, 170));
}

TEST_F(RootViews, TheOverviewLiesOnItsWindowAlsoWithoutACanvas)
{
  QSettings().setValue("overview/visible", true);
  QSettings().setValue("rootWindow/size", QSize(800, 600));
  for (const bool isPanorama : {false, true})
  {
    QSettings().setValue("rootWindow/panorama", isPanorama);
    NYXRootWindow second;
    EXPECT_TRUE(second.geometry().contains(second.findChild<NYXOverview*>()->geometry()));
    openExample();
  }
}

TEST_F(RootViews, TheBarsHaveTheActionsOfTheImage)
{
  const auto texts = [](const QToolBar& bar)
  {
    QStringList list;
    for (const QAction* action : bar.actions())
      if (!action->isSeparator() && !action->text().isEmpty())
      {
        list << action->text();
        EXPECT_FALSE(action->icon().isNull()) << action->text().toStdString();
      }
    return list;
  };
  EXPECT_EQ(texts(*test.window().findChild<QToolBar*>("rootToolBar")),
            QStringList({"New stack", "Open stack", "Save stack", "Undo", "Redo", "Display stack panorama",
                         "Display single slice", "Display overview"}));
  EXPECT_EQ(texts(*test.window().findChild<QToolBar*>("navigationToolBar")),
            QStringList({"Select first slice", "Select previous slice", "Select next slice", "Select last slice",
                         "Zoom in", "Zoom out", "Best fit"}));
  EXPECT_EQ(texts(*test.window().findChild<QToolBar*>("modeToolBar")),
            QStringList(
                {"Select", "Draw", "Draw automatically", "Edit points", "Split contour", "Move contour", "Run Snake"}));
  EXPECT_EQ(texts(part<NYXSliceWidget>().toolBar()),
            QStringList({"Ruler", "Display images only", "Display items only", "Display images and items",
                         "Show previous slice", "Copy from previous slice"}));
}

TEST_F(RootViews, FieldsOfTheStatusBarStayInTheirPlaces)
{
  test.window().resize(1280, 720);
  openExample();
  const char* const fields[] = {"pixelField", "zoomField",  "imageSizeField", "imageTypeField",
                                "itemsField", "stackField", "sliceField"};
  auto& bar = part<NYXRootStatusBar>();
  const auto places = [&]
  {
    QTest::qWait(1);
    QList<QRect> rects;
    for (const char* field : fields)
    {
      const auto& label = *test.window().findChild<QLabel*>(field);
      rects << QRect(label.mapTo(&bar, QPoint()), label.size());
    }
    return rects;
  };
  const QList<QRect> before = places();
  for (int i = 1; i < before.size(); ++i) EXPECT_GE(before[i].left(), before[i - 1].right()) << fields[i];
  EXPECT_LE(before.back().right(), bar.width());
  auto& image = static_cast<NYXSliceWidgetStatusBar&>(part<NYXSliceWidget>().statusBar());
  image.setPixelInfo("X=4000, Y=4000, RGB=200,200,200");
  image.setZoomInfo(0.01F);
  image.setImageSizeInfo(QSize(9000, 9000), 81000000);
  bar.setStackText("a stack with a name that is much longer than the field*");
  bar.setSliceText("slice 9");
  EXPECT_EQ(places(), before);
  for (const char* field : {"pixelField", "zoomField", "imageSizeField", "imageTypeField", "itemsField", "sliceField"})
  {
    const auto& label = *test.window().findChild<QLabel*>(field);
    EXPECT_LE(label.fontMetrics().horizontalAdvance(label.text()), label.width()) << field; // not cut off
  }
  test.action("Display stack panorama")->trigger();
  EXPECT_EQ(places().back(), before.back());
  test.window().resize(700, 500);
  EXPECT_EQ(test.window().width(), 700); // the fields give way
}

TEST_F(RootViews, ReconstructShowsTheModelsInAWindowThatFollowsTheSlice)
{
  QAction& reconstruct = *test.action("Reconstruct");
  EXPECT_FALSE(reconstruct.isEnabled());
  openExample();
  NYXStack& stack = *test.window().mediator().currentStack();
  EXPECT_EQ(NYXRenderingWindow::find(stack), nullptr);
  reconstruct.trigger();
  NYXRenderingWindow* const window = NYXRenderingWindow::find(stack);
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
  test.action("Select next slice")->trigger();
  EXPECT_EQ(window->findChild<QSpinBox*>("sliceNumber")->value(), part<NYXSliceListWidget>().currentSlice() + 1);
  reconstruct.trigger();
  EXPECT_EQ(NYXRenderingWindow::find(stack), window);
  test.action("Close stack")->trigger();
  for (QWidget* widget : QApplication::topLevelWidgets()) EXPECT_NE(widget->objectName(), "renderingWindow");
}
} // namespace
