// A user's work from the images to the numbers, by mouse and keyboard in the windows of the program; what comes out is
// compared with the body that the images show.
#include "hand.h"
#include "specimenimages.h"

#include "analysis/nyxanalysiswindow.h"
#include "analysis/spatialresults/nyxspatialresultwindow.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "geometry/curve.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationwindow.h"
#include "slice/image/nyximageproxy.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "viewer/nyxrenderingwindow.h"
#include "viewer/nyxscenemodels.h"
#include "viewer/viewercanvasgl.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <tuple>

namespace
{
/// Volume that a text STL file encloses, by the divergence theorem.
double volumeOfStl(const QString& name)
{
  QFile file(name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
  std::vector<std::array<double, 3>> corners;
  double volume = 0;
  while (!file.atEnd())
  {
    const QList<QByteArray> words = file.readLine().simplified().split(' ');
    if (words[0] != "vertex") continue;
    corners.push_back({words[1].toDouble(), words[2].toDouble(), words[3].toDouble()});
    if (corners.size() < 3) continue;
    const auto& [a, b, c] = std::tie(corners[0], corners[1], corners[2]);
    volume +=
        (a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) + a[2] * (b[0] * c[1] - b[1] * c[0])) /
        6;
    corners.clear();
  }
  return std::abs(volume);
}

class Journey : public testing::Test
{
protected:
  Journey() : _window(makeWindow()) {}
  ~Journey() override
  {
    NYXStackServer& server = NYXStackServer::server();
    while (server.getNumStacks() > 0) server.removeStack(server.getStack(0));
    delete &_window;
  }

  QString file(const QString& name) const { return _folder.filePath(name); }
  NYXRootWindow& window() const { return _window; }
  static NYXStack& stack() { return NYXStackServer::server().getStack(0); }
  NYXSliceEditWidgetCanvas& canvas() const { return *_window.findChild<NYXSliceEditWidgetCanvas*>(); }

  static const StackSlice& lastSlice() { return *stack().getSlice(stack().getNumSlices() - 1); }
  static QString number(double value) { return QString::number(value); }

  void makeStack()
  {
    QStringList images;
    for (const std::string& name : SpecimenImages::write(_folder.path().toStdString()))
      images.append(QString::fromStdString(name));
    hand::answering({{"New stack", [](QDialog& dialog) { hand::press(dialog, "Add..."); }},
                     {"Select image files", [images](QDialog& dialog) { hand::nameFiles(dialog, images); }},
                     {"New stack", [](QDialog& dialog) { hand::press(dialog, "OK"); }},
                     {"Slice spacing",
                      [](QDialog& dialog)
                      {
                        hand::fill(dialog, "spacing", number(SpecimenImages::sectionSpacing));
                        hand::press(dialog, "OK");
                      }}},
                    [&] {
                      hand::choose(window(), {"File", "New stack"});
                    });
  }

  void calibrate()
  {
    hand::answering({{"Stack properties",
                      [](QDialog& dialog)
                      {
                        hand::select(dialog, "lengthUnit", "\u00b5m (micrometer)");
                        hand::fill(dialog, "pixelWidth", number(SpecimenImages::pixelSize));
                        auto& forAll = hand::find<QCheckBox>(dialog, "applyToAllSlices");
                        if (!forAll.isChecked()) hand::click(forAll);
                        hand::press(dialog, "OK");
                      }}},
                    [&] {
                      hand::choose(window(), {"Edit", "Stack properties..."});
                    });
  }

  void alignSlices()
  {
    hand::choose(window(), {"Process", "Register"});
    auto& registration = *window().findChild<NYXRegistrationWindow*>();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&registration));
    hand::click(hand::find<QWidget>(registration, "allSlices"));
    hand::press(registration, "Run");
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return stack().getLastRegisteredSlice() == lastSlice().getName() && !stack().inRegistration(); }, 20000));
    registration.close();
  }

  void makeModels(const std::vector<std::pair<QString, QString>>& models)
  {
    hand::answering({{"Edit models",
                      [&](QDialog& dialog)
                      {
                        for (const auto& [name, geometry] : models)
                        {
                          hand::press(dialog, "New");
                          hand::fill(dialog, "modelName", name);
                          hand::select(dialog, "modelGeometry", geometry);
                          hand::press(dialog, "Apply");
                        }
                        hand::press(dialog, "OK");
                      }}},
                    [&] {
                      hand::choose(window(), {"Edit", "Edit models..."});
                    });
  }

  void goToSlice(int slice)
  {
    hand::choose(window(), {"Edit", "Select first slice"});
    for (int k = 0; k < slice; ++k) hand::key(canvas(), Qt::Key_PageDown);
    ASSERT_TRUE(QTest::qWaitFor([this] { return canvas().getImageProxy().hasImage(); }));
    hand::click(canvas(), onCanvas({2, 2})); // where nothing is
  }
  QPoint onCanvas(const SpecimenImages::Point& place) const
  {
    return canvas().convertToCanvasPosition(QPoint(qRound(place.x), qRound(place.y)));
  }
  /// Draws an item of a model, which has a number key, by a click for each place.
  void draw(int model, const std::vector<SpecimenImages::Point>& places)
  {
    hand::key(canvas(), Qt::Key_0 + model);
    hand::key(canvas(), Qt::Key_D);
    for (const SpecimenImages::Point& place : places) hand::click(canvas(), onCanvas(place));
    hand::key(canvas(), Qt::Key_Return);
  }

  /// Places of the body lie one above the other.
  void expectAligned() const
  {
    const StackReconstruction<double> reconstruction(stack());
    for (const SpecimenImages::Point place : {SpecimenImages::Point{40, 0}, {0, 20}, {-30, -10}})
      for (int k = 0; k < stack().getNumSlices(); ++k)
      {
        const auto [x, y] = inSpace(reconstruction, k, place);
        const auto [x0, y0] = inSpace(reconstruction, 0, place);
        EXPECT_NEAR(x, x0, 5 * SpecimenImages::pixelSize) << k;
        EXPECT_NEAR(y, y0, 5 * SpecimenImages::pixelSize) << k;
      }
  }

  /// The outline on all sections by hand, one of them wrongly at first, and points in the body.
  void drawBody()
  {
    for (int k = 0; k < SpecimenImages::numSections; ++k)
    {
      goToSlice(k);
      draw(1, SpecimenImages::outline(k, 24));
      draw(2, spots(k));

      ASSERT_EQ(stack().getSlice(k)->getNumItems(), 2) << k;
    }
  }
  /// A contour in the wrong place, taken back.
  void undoAndRedo()
  {
    goToSlice(0);
    draw(1, {{10, 10}, {30, 10}, {30, 30}});
    ASSERT_EQ(stack().getSlice(0)->getNumItems(), 3);
    hand::key(canvas(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(stack().getSlice(0)->getNumItems(), 2);
    hand::key(canvas(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(stack().getSlice(0)->getNumItems(), 3);
    hand::key(canvas(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(stack().getSlice(0)->getNumItems(), 2);
  }

  /// A contour made by thresholding in a rectangle around the body.
  void findByThreshold(int section)
  {
    goToSlice(section);
    hand::key(canvas(), Qt::Key_3);
    hand::key(canvas(), Qt::Key_A);
    const auto accept = [](QDialog& dialog) { hand::press(dialog, "OK"); };
    hand::answering({{"Automatic thresholding", accept},
                     {"Automatic thresholding", accept},
                     {"Automatic thresholding result", accept}},
                    [&] {
                      hand::drag(canvas(), onCanvas({15, 15}), onCanvas({185, 185}));
                    });
    expectFound(section, 0.03); // its vertices are pixels inside of the edge
  }

  static SpecimenImages::Point away(int section, const SpecimenImages::Point& edge, double factor)
  {
    const SpecimenImages::Point middle = SpecimenImages::onImage(section, {0, 0});
    return {middle.x + factor * (edge.x - middle.x), middle.y + factor * (edge.y - middle.y)};
  }

  /// A contour drawn wide of the body, which moves to its edges.
  void findBySnake(int section)
  {
    goToSlice(section);
    std::vector<SpecimenImages::Point> wide;
    for (const SpecimenImages::Point& edge : SpecimenImages::outline(section, 40))
      wide.push_back(away(section, edge, 1.1));
    draw(3, wide);
    hand::click(canvas(),
                onCanvas(away(section, SpecimenImages::outline(section, 1)[0], 1.2))); // from the body's contour
    hand::key(canvas(), Qt::Key_S);
    auto& dialog = hand::find<QDialog>(window(), "snakeDialog");
    const StackSlice& slice = *stack().getSlice(section);
    const int numSteps = stack().sliceHistory(slice).getUndoListSize();
    hand::fill(dialog, "iterations", "500");
    hand::press(dialog, "OK");
    ASSERT_TRUE(QTest::qWaitFor([&] { return stack().sliceHistory(slice).getUndoListSize() == numSteps + 1; }, 20000));
    expectFound(section, 0.05);
  }
  void expectFound(int section, double tolerance) const
  {
    const StackSlice& slice = *stack().getSlice(section);
    ASSERT_EQ(slice.getNumItems(), 3);
    const ModelItem& found = *slice.getItem(2);
    EXPECT_EQ(found.getModel()->getName(), "found");
    const std::unique_ptr<Shape<double>> curve(found.toShape<double>());
    const double area = std::abs(static_cast<const Curve<double>&>(*curve).twiceArea(0, 1)) / 2;
    EXPECT_NEAR(area, SpecimenImages::area(section), tolerance * SpecimenImages::area(section));
  }

  void saveAndReopen()
  {
    const QString name = file("body.sdf");
    hand::answering({{"Save stack as", [name](QDialog& dialog) { hand::nameFiles(dialog, {name}); }}},
                    [&] { hand::key(window(), Qt::Key_S, Qt::ControlModifier); });
    EXPECT_FALSE(stack().isModified());
    hand::choose(window(), {"File", "Close stack"});
    ASSERT_EQ(NYXStackServer::server().getNumStacks(), 0);
    hand::answering({{"Open stack", [name](QDialog& dialog) { hand::nameFiles(dialog, {name}); }}},
                    [&] {
                      hand::choose(window(), {"File", "Open stack"});
                    });
    ASSERT_EQ(NYXStackServer::server().getNumStacks(), 1);
    EXPECT_EQ(stack().getModel(0)->getNumItems(), SpecimenImages::numSections);
    EXPECT_EQ(stack().getModel(2)->getNumItems(), 2);
  }

  void viewAndExport()
  {
    hand::choose(window(), {"Process", "Reconstruct"});
    auto& view = *NYXRenderingWindow::find(stack());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view.models().isStale() && !view.models().isRunning(); }, 20000));
    const QString picture = file("view.png");
    hand::answering({{"Snapshot", [](QDialog& dialog) { hand::press(dialog, "Save..."); }},
                     {"Save snapshot", [picture](QDialog& dialog) { hand::nameFiles(dialog, {picture}); }}},
                    [&] { hand::press(view, "Snapshot..."); });
    const QImage image(picture);
    EXPECT_EQ(image.size(), view.canvas().size());
    EXPECT_NE(image.pixelColor(image.rect().center()), image.pixelColor(2, 2)) << "the body is in the middle";
    const QString folder = file("surfaces");
    QDir().mkdir(folder);
    hand::answering({{"Export surfaces",
                      [folder](QDialog& dialog)
                      {
                        hand::fill(dialog, "folder", folder);
                        hand::click(hand::find<QCheckBox>(dialog, "closeSurfaces"));
                        hand::press(dialog, "Export");
                      }}},
                    [&] { hand::press(view, "Export surfaces..."); });
    expectVolume(volumeOfStl(QDir(folder).filePath(QDir(folder).entryList({"*-body.stl"}).value(0))), trapezoidVolume(),
                 0.04);
    view.close();
  }

  void measure()
  {
    hand::choose(window(), {"Analyze", "Measures"});
    auto& measures = *window().findChild<NYXAnalysisWindow*>();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&measures));
    ASSERT_TRUE(QTest::qWaitFor([&] { return measures.saveAction().isEnabled(); }, 20000));
    const QString table = file("models.csv");
    hand::answering({{"Save measures", [table](QDialog& dialog) { hand::nameFiles(dialog, {table}); }}},
                    [&] {
                      hand::choose(measures, {"File", "Save ..."});
                    });
    QFile saved(table);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(saved.readAll()).split("\r\n");
    EXPECT_TRUE(lines[0].endsWith("Volume [\u00b5m^3]")) << lines[0].toStdString();
    const QStringList body = lines[1].split(',');
    EXPECT_EQ(body[0], "body");
    expectVolume(body.last().toDouble(), slabVolume(), 0.03);
    measures.close();
  }

  /// The points lie on a grid: they are less often near each other than at random.
  void testPoints()
  {
    hand::answering({{"Statistical spatial analysis",
                      [](QDialog& dialog)
                      {
                        hand::select(dialog, "boundaryModel", "body");
                        hand::select(dialog, "objectModel", "spots");
                        hand::click(hand::find<QCheckBox>(dialog, "functionG"));
                        hand::press(dialog, "OK");
                      }}},
                    [&] {
                      hand::choose(window(), {"Analyze", "Spatial analysis", "Run"});
                    });
    QTableWidget* table = nullptr;
    ASSERT_TRUE(QTest::qWaitFor(
        [&]
        {
          for (QWidget* top : QApplication::topLevelWidgets())
            if (auto* const results = qobject_cast<NYXSpatialResultWindow*>(top))
              table = results->findChild<QTableWidget*>();
          return table != nullptr;
        },
        20000));
    ASSERT_EQ(table->rowCount(), SpecimenImages::numSections);
    for (int k = 0; k < table->rowCount(); ++k) EXPECT_GT(table->item(k, 1)->text().toDouble(), 0.95) << k;
    table->window()->close();
  }

  static void expectVolume(double volume, double expected, double tolerance)
  {
    EXPECT_NEAR(volume, expected, tolerance * expected);
  }
  static double areaInSpace(int section)
  {
    return SpecimenImages::area(section) * SpecimenImages::pixelSize * SpecimenImages::pixelSize;
  }
  /// Each section extended to the next one.
  static double slabVolume()
  {
    double volume = 0;
    for (int k = 0; k < SpecimenImages::numSections; ++k) volume += areaInSpace(k) * SpecimenImages::sectionSpacing;
    return volume;
  }
  /// The body between the first and the last section.
  static double trapezoidVolume()
  {
    return slabVolume() -
           (areaInSpace(0) + areaInSpace(SpecimenImages::numSections - 1)) / 2 * SpecimenImages::sectionSpacing;
  }

  static std::vector<SpecimenImages::Point> spots(int section)
  {
    std::vector<SpecimenImages::Point> places;
    for (const double x : {-34, -17, 0, 17, 34}) places.push_back(SpecimenImages::onImage(section, {x, 0}));
    for (const double x : {-17, 0, 17})
      for (const double y : {-15, 15}) places.push_back(SpecimenImages::onImage(section, {x, y}));
    return places;
  }

private:
  static std::pair<double, double> inSpace(const StackReconstruction<double>& reconstruction, int section,
                                           const SpecimenImages::Point& place)
  {
    const SpecimenImages::Point pixel = SpecimenImages::onImage(section, place);
    const Vector<double>& map = reconstruction.getMap(section);
    return {map[0] * pixel.x + map[1] * pixel.y + map[2], map[3] * pixel.x + map[4] * pixel.y + map[5]};
  }

  static NYXRootWindow& makeWindow()
  {
    QSettings().clear();
    auto* const window = new NYXRootWindow;
    window->resize(1200, 750);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window));
    return *window;
  }

  QTemporaryDir _folder;
  hand::Watchdog _watchdog;
  NYXRootWindow& _window;
};

TEST_F(Journey, FromImagesToNumbers)
{
  makeStack();
  ASSERT_EQ(NYXStackServer::server().getNumStacks(), 1);
  ASSERT_EQ(stack().getNumSlices(), SpecimenImages::numSections);
  calibrate();
  EXPECT_FLOAT_EQ(stack().getSlice(3)->getPixelCalibration().getPixelHeight(), SpecimenImages::pixelSize);
  EXPECT_EQ(stack().getLengthUnit().getScale(), -6);
  alignSlices();
  expectAligned();
  makeModels(
      {{"body", "Polygon (closed curves)"}, {"spots", "Polypoint (points)"}, {"found", "Polygon (closed curves)"}});
  ASSERT_EQ(stack().getNumModels(), 3);
  drawBody();
  undoAndRedo();
  findByThreshold(2);
  findBySnake(4);
  saveAndReopen();
  viewAndExport();
  measure();
  testPoints();
}
} // namespace
