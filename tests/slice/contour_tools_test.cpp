// The tools that change whole contours: by the numbers of a dialog, by a cutting line, by a drag, by a threshold.

#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "edit_test_support.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QEventLoop>
#include <QPushButton>

namespace
{
class ContourTools : public EditTest
{
protected:
  /// The dialog of the tool, once the tool has been started.
  QDialog& start(const char* tool)
  {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // an earlier dialog
    action(tool).trigger();
    auto* const dialog = widget.findChild<QDialog*>("contourToolDialog");
    if (!dialog) throw std::runtime_error("there is no dialog");
    return *dialog;
  }
  template <class Box, class Value> static void set(const QDialog& dialog, const char* name, Value value)
  {
    dialog.findChild<Box*>(name)->setValue(value);
  }
  /// Within an event loop, as in the program: the dialog stays until its button is done.
  static void press(const QDialog& dialog, const char* button)
  {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] { dialog.findChild<QPushButton*>(button)->click(), loop.quit(); });
    loop.exec();
  }
  using EditTest::press;

  static double perimeter(const Points& points)
  {
    double sum = 0;
    for (std::size_t i = 0; i < points.size(); ++i)
    {
      const auto &a = points[i], &b = points[(i + 1) % points.size()];
      sum += std::hypot(a[0] - b[0], a[1] - b[1]);
    }
    return sum;
  }
  const Points polygon{{50, 50}, {100, 50}, {150, 50}, {150, 150}, {50, 150}};
};
} // namespace

TEST_F(ContourTools, HaveTheirDialogs)
{
  addSelected("cells", polygon);
  const struct
  {
    const char *tool, *mode, *title, *control;
    double least, greatest, start;
  } cases[] = {
      {"resample", "RESAMPLE", "Contour resampling", "numVertices", 3, 1000000, 5},
      {"decimateDouglasPeucker", "DECIMATE", "Douglas-Peucker decimation", "tolerance", 0, 100, 1},
      {"changeOrigin", "ORIGIN", "Contour reparameterization", "origin", 0, 4, 0},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.tool);
    QDialog& dialog = start(c.tool);
    EXPECT_EQ(mode(), c.mode);
    EXPECT_EQ(dialog.windowTitle(), c.title);
    EXPECT_FALSE(dialog.isModal());
    auto* const control = dialog.findChild<QWidget*>(c.control);
    EXPECT_EQ(control->property("minimum").toDouble(), c.least);
    EXPECT_EQ(control->property("maximum").toDouble(), c.greatest);
    EXPECT_EQ(control->property("value").toDouble(), c.start);
    expectNoStep([&] { control->setProperty("value", c.least), press(dialog, "cancel"); });
    expectIdle();
    QDialog& again = start(c.tool);
    QTest::keyClick(&again, Qt::Key_Escape);
    expectIdle();
    start(c.tool);
    key(Qt::Key_Escape); // on the canvas
    expectIdle();
  }
}

TEST_F(ContourTools, Resample)
{
  addSelected("cells", square);
  addSelected("fibres", {{200, 50}, {300, 50}});
  QDialog& dialog = start("resample");
  auto* const all = dialog.findChild<QCheckBox*>("allContours");
  EXPECT_TRUE(all->isVisible() && all->isChecked());
  set<QSpinBox>(dialog, "numVertices", 8);
  expectStep([&] { press(dialog, "ok"); });
  EXPECT_EQ(points(0),
            (Points{{50, 50}, {100, 50}, {150, 50}, {150, 100}, {150, 150}, {100, 150}, {50, 150}, {50, 100}}));
  EXPECT_EQ(item(1).getSize(), 8);
  EXPECT_EQ(points(1).back(), (std::vector<int>{300, 50}));
  history().undo();
  QDialog& first = start("resample");
  first.findChild<QCheckBox*>("allContours")->setChecked(false);
  set<QSpinBox>(first, "numVertices", 16);
  expectStep([&] { key(Qt::Key_Return); });
  EXPECT_EQ(item(0).getSize(), 16);
  EXPECT_EQ(item(1).getSize(), 2) << "only the first one";
  expectIdle();
}

TEST_F(ContourTools, LeaveTheirContourSelected)
{
  addSelected("cells", polygon);
  for (const char* tool : {"resample", "decimateDouglasPeucker", "smoothFourier"})
  {
    press(start(tool), "ok");
    EXPECT_TRUE(item().getSelection().isComplete()) << tool;
    EXPECT_TRUE(action("resample").isEnabled()) << tool;
    history().undo();
    EXPECT_TRUE(item().getSelection().isComplete()) << tool;
  }
}

TEST_F(ContourTools, DecimateByDouglasPeucker)
{
  addSelected("cells", polygon);
  expectStep([&] { press(start("decimateDouglasPeucker"), "ok"); });
  EXPECT_EQ(points(), square);
  item().getSelection().set(true);
  mediator().updateEditActions();
  QDialog& dialog = start("decimateDouglasPeucker");
  set<QDoubleSpinBox>(dialog, "tolerance", 100);
  expectNoStep(
      [&]
      {
        EXPECT_EQ(answering({}, [&] { press(dialog, "ok"); }),
                  QStringList{"Douglas-Peucker decimation|Cannot decimate to less than 3 vertices"});
      });
  expectIdle();
}

TEST_F(ContourTools, ChangeTheOrigin)
{
  addSelected("cells", square);
  QDialog& dialog = start("changeOrigin");
  set<QSpinBox>(dialog, "origin", 1);
  click(52, 148); // a vertex of the canvas
  EXPECT_EQ(dialog.findChild<QSpinBox*>("origin")->value(), 3);
  click(100, 100);
  expectStep([&] { press(dialog, "ok"); });
  EXPECT_EQ(points(), (Points{{50, 150}, {50, 50}, {150, 50}, {150, 150}}));
}

TEST_F(ContourTools, SmoothByFourierDescriptors)
{
  Points star; // a circle of radius 50 with 20 spikes: the 19th and 21st harmonics
  for (int i = 0; i < 400; ++i)
  {
    const double angle = 2 * M_PI * i / 400, radius = 50 + 5 * std::cos(20 * angle);
    star.push_back({static_cast<int>(std::lround(200 + radius * std::cos(angle))),
                    static_cast<int>(std::lround(150 + radius * std::sin(angle)))});
  }
  addSelected("cells", star);
  addSelected("fibres", {{10, 10}, {30, 30}}); // is left alone
  QDialog& dialog = start("smoothFourier");
  EXPECT_FALSE(dialog.findChild<QCheckBox*>("allContours")->isVisible());
  set<QDoubleSpinBox>(dialog, "fidelity", 100);
  EXPECT_GE(dialog.findChild<QSpinBox*>("numDescriptors")->value(), 21);
  set<QSpinBox>(dialog, "numDescriptors", 5);
  EXPECT_NEAR(dialog.findChild<QDoubleSpinBox*>("fidelity")->value(), 100 * 2500 / 2512.5, 0.3);
  expectStep([&] { press(dialog, "ok"); });
  ASSERT_EQ(item().getSize(), 400);
  for (const auto& p : points()) EXPECT_NEAR(std::hypot(p[0] - 200, p[1] - 150), 50, 1.5);
  EXPECT_EQ(item(1).getSize(), 2);
}

TEST_F(ContourTools, StayWithinTheImage)
{
  addSelected("cells", {{0, 0}, {399, 0}, {399, 299}, {0, 299}});
  QDialog& dialog = start("smoothFourier");
  set<QSpinBox>(dialog, "numDescriptors", 1); // the ellipse is wider than the rectangle
  press(dialog, "ok");
  for (const auto& p : points()) EXPECT_TRUE(p[0] >= 0 && p[0] <= 399 && p[1] >= 0 && p[1] <= 299);
}

TEST_F(ContourTools, FollowTheContourWhileTheDialogIsOpen)
{
  addSelected("cells", polygon);
  history().pushStep(std::make_unique<NYXItemVerticesChangeAction>(item(), curveThrough<int>(square)));
  item().getSelection().set(true);
  mediator().updateEditActions();
  QDialog& dialog = start("changeOrigin");
  history().undo(); // of the contour's last change
  set<QSpinBox>(dialog, "origin", 3);
  press(dialog, "ok");
  EXPECT_EQ(points().front(), (std::vector<int>{150, 150}));
  history().undo();
  EXPECT_EQ(points(), polygon);
}

TEST_F(ContourTools, SplitAlongALine)
{
  addSelected("cells", square);
  item().setTriangulationTag(CurveStackTriangulationContourTag::Begin);
  action("splitContour").trigger();
  EXPECT_EQ(mode(), "SPLIT");
  expectStep([&] { drag({{100, 30}, {100, 90}, {100, 170}}); });
  ASSERT_EQ(slice().getNumItems(), 2);
  EXPECT_NEAR(perimeter(points(0)) + perimeter(points(1)), 600, 2);
  for (int i = 0; i < 2; ++i)
  {
    EXPECT_EQ(item(i).getSize(), 4);
    EXPECT_FALSE(item(i).isClockwise());
    EXPECT_EQ(item(i).getTriangulationTag(), CurveStackTriangulationContourTag::Begin);
  }
  expectIdle();
  EXPECT_TRUE(mediator().hint().startsWith("Click or drag a box to select")) << "the halves are not selected";
}

TEST_F(ContourTools, SayWhenTheLineDoesNotSplit)
{
  addSelected("cells", square);
  const Points lines[] = {{{10, 10}, {30, 200}},    // beside the contour
                          {{100, 30}, {100, 100}},  // ends within
                          {{100, 100}, {100, 100}}, // a click
                          {{51, 40}, {40, 51}}};    // cuts off less than a pixel
  for (const Points& line : lines)
  {
    action("splitContour").trigger();
    expectNoStep(
        [&]
        { EXPECT_EQ(answering({}, [&] { drag(line); }), QStringList{"Split contour|Contour could not be split."}); });
    expectIdle();
  }
}

TEST_F(ContourTools, MoveWhatIsSelectedWithinTheImage)
{
  addSelected("cells", square);
  addSelected("spots", {{200, 200}, {210, 210}});
  action("moveContour").trigger();
  EXPECT_EQ(mode(), "MOVE");
  EXPECT_EQ(canvas().cursor().shape(), Qt::SizeAllCursor);
  expectStep([&] { drag({{300, 100}, {310, 100}, {320, 130}}); });
  EXPECT_EQ(points(0), (Points{{70, 80}, {170, 80}, {170, 180}, {70, 180}}));
  EXPECT_EQ(points(1), (Points{{220, 230}, {230, 240}}));
  expectStep([&] { drag({{300, 100}, {-300, -300}, {10, 10}}); });
  EXPECT_EQ(points(0)[0], (std::vector<int>{0, 0})) << "the tool is still there, and stops at the border";
  EXPECT_EQ(points(1)[0], (std::vector<int>{150, 150})) << "as one";
  expectNoStep([&] { drag({{300, 100}, {320, 120}, {300, 100}}); });
  EXPECT_TRUE(item(0).getSelection().isComplete());
  key(Qt::Key_Escape);
  expectIdle();
}

TEST_F(ContourTools, MakeAContourByAThreshold)
{
  choose(mediator().automaticMenu(), "cells");
  EXPECT_NE(mode(), "READY");
  const QString smoothing = "Enter smoothing level:|0..50 by 1 from %1";
  const QString decimation = "Enter decimation level:|0..100 by 5 from %1";
  QStringList seen;
  expectStep([&] { seen = answering({1, 10}, [&] { drag({{140, 90}, {200, 150}, {260, 210}}); }); });
  EXPECT_EQ(seen, (QStringList{smoothing.arg(0), decimation.arg(0),
                               QString::asprintf("Automatic thresholding result|Curve created with %d vertices",
                                                 item().getSize())}));
  EXPECT_FALSE(item().isClockwise());
  for (const auto& p : points()) EXPECT_NEAR(std::hypot(p[0] - 200, p[1] - 150), 40, 1.5);
  EXPECT_LT(item().getSize(), 60) << "decimated";
  expectIdle();

  const struct
  {
    QList<int> answers;
    Points box;
    QStringList seen;
  } cases[] = {
      {{0, 100},
       {{140, 90}, {260, 210}},
       {smoothing.arg(1), decimation.arg(10), // the values entered last
        "Automatic thresholding result|Curve created with %d vertices"}},
      {{2},
       {{10, 10}, {50, 50}}, // of one grey level
       {smoothing.arg(0), "Automatic thresholding result|No starting point found. Retry with another ROI."}},
      {{}, {{140, 90}, {260, 210}}, {smoothing.arg(2)}},
      {{2}, {{140, 90}, {260, 210}}, {smoothing.arg(2), decimation.arg(100)}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.seen.back().toStdString());
    choose(mediator().automaticMenu(), "cells");
    const auto work = [&] { seen = answering(c.answers, [&] { drag(c.box); }); };
    const bool isCreated = c.seen.back().contains("%d");
    isCreated ? expectStep(work) : expectNoStep(work);
    QStringList expected = c.seen;
    expected.back().replace("%d", QString::number(slice().getItems().back()->getSize()));
    EXPECT_EQ(seen, expected);
    expectIdle();
  }
}

TEST_F(ContourTools, SayWhenDecimationLeavesNoContour)
{
  Image image(400, 300, 8);
  for (int y = 0; y < 300; ++y) std::fill_n(image.getLine(y), 400, 50);
  for (int x = 100; x < 120; ++x) image.getLine(100)[x] = 200; // a line of pixels
  image.writeFile(folder.file("line.tif"), true);
  slice().setImageSource(ImageSourceFile(folder.file("line.tif")));
  widget.setSlice(nullptr);
  show(0);
  ASSERT_TRUE(QTest::qWaitFor([this] { return canvas().getImageProxy().hasImage(); }));
  choose(mediator().automaticMenu(), "cells");
  expectNoStep(
      [&]
      {
        EXPECT_EQ(answering({0, 50},
                            [&] {
                              drag({{90, 90}, {130, 110}});
                            })
                      .back(),
                  "Automatic thresholding result|The detected contour does not contain enough points\nHint: try using "
                  "a smaller decimation level");
      });
  expectIdle();
}
