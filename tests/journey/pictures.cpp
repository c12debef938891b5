// Writes the pictures of the windows that the README shows, each after some work on the example stack.
//
//   mirelo_pictures FOLDER      by scripts/pictures.sh
#include "hand.h"

#include "analysis/nyxanalysiswindow.h"
#include "analysis/spatialresults/nyxspatialresultwindow.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "registration/nyxregistrationcanvas.h"
#include "registration/nyxregistrationwindow.h"
#include "slice/image/nyximageproxy.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "viewer/nyxrenderingwindow.h"
#include "viewer/nyxscenemodels.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <iostream>
#include <random>

namespace
{
constexpr int settling = 700;        // milliseconds
constexpr int lastingMessage = 5000; // how long the window tells of a choice

class Pictures
{
public:
  explicit Pictures(QDir folder) : _folder(std::move(folder))
  {
    _window.resize(1100, 740);
    _window.show();
    _window.startupOpenStack(MIRELO_EXAMPLE);
    goToSlice(12);
  }
  ~Pictures() { NYXStackServer::server().removeStack(stack()); }
  Pictures(const Pictures&) = delete;
  Pictures& operator=(const Pictures&) = delete;

  void drawing()
  {
    hand::click(canvas(), onCanvas(5, 5));
    hand::key(canvas(), Qt::Key_2);
    QTest::qWait(lastingMessage);
    hand::key(canvas(), Qt::Key_D);
    for (const auto& [x, y] : {std::pair(195, 25), {212, 29}, {224, 44}, {216, 58}})
      hand::click(canvas(), onCanvas(x, y));
    QTest::mouseMove(&canvas(), onCanvas(198, 54));
    take(_window, "root-window");
    hand::key(canvas(), Qt::Key_Escape);
  }

  void panorama()
  {
    hand::key(_window, Qt::Key_F6);
    take(_window, "panorama");
    hand::key(_window, Qt::Key_F6);
  }

  void registration()
  {
    hand::choose(_window, {"Process", "Register"});
    auto& registration = *_window.findChild<NYXRegistrationWindow*>();
    registration.resize(1100, 700);
    hand::select(registration, "sliceBox", "012");
    take(registration, "registration");
    registration.close();
  }

  void scene()
  {
    hand::choose(_window, {"Process", "Reconstruct"});
    auto& view = *NYXRenderingWindow::find(stack());
    view.resize(1100, 700);
    waitFor([&view] { return !view.models().isStale() && !view.models().isRunning(); });
    view.models().showModel(*stack().getModel(2), false); // the fibres, which cross the section, hide the others
    auto& poses = hand::find<QListWidget>(view, "poses");
    poses.setCurrentRow(0);
    hand::find<QPushButton>(view, "Apply").click();
    take(view, "view-3d");
    view.close();
  }

  void measures()
  {
    hand::choose(_window, {"Analyze", "Measures"});
    auto& measures = *_window.findChild<NYXAnalysisWindow*>();
    measures.resize(900, 600);
    waitFor([&measures] { return measures.saveAction().isEnabled(); });
    take(measures, "measures");
    measures.close();
  }

  void spatialAnalysis()
  {
    addGrains();
    hand::answering({{"Statistical spatial analysis",
                      [](QDialog& dialog)
                      {
                        hand::select(dialog, "boundaryModel", "nucleus");
                        hand::select(dialog, "objectModel", "grains");
                        hand::click(hand::find<QCheckBox>(dialog, "functionG"));
                        hand::press(dialog, "OK");
                      }}},
                    [&] {
                      hand::choose(_window, {"Analyze", "Spatial analysis", "Run"});
                    });
    waitFor([] { return results() != nullptr; });
    results()->resize(1100, 600);
    take(*results(), "spatial-results");
    results()->close();
  }

private:
  static NYXStack& stack() { return NYXStackServer::server().getStack(0); }
  NYXSliceEditWidgetCanvas& canvas() const { return *_window.findChild<NYXSliceEditWidgetCanvas*>(); }
  QPoint onCanvas(int x, int y) const { return canvas().convertToCanvasPosition(QPoint(x, y)); }

  static NYXSpatialResultWindow* results()
  {
    for (QWidget* top : QApplication::topLevelWidgets())
      if (auto* const results = qobject_cast<NYXSpatialResultWindow*>(top)) return results;
    return nullptr;
  }

  void goToSlice(int slice)
  {
    _window.findChild<NYXSliceListWidget*>()->selectSlice(*stack().getSlice(slice));
    waitFor([this] { return canvas().getImageProxy().hasImage(); });
  }

  /// Points in the nucleus that keep away from each other.
  void addGrains()
  {
    Model& grains = stack().addModel(std::make_unique<Model>("grains"));
    ModelProperties points;
    points.setGeometry(MPrimitive::Polypoint);
    grains.setProperties(points);
    std::mt19937 random(1);
    std::uniform_int_distribution<int> jitter(-3, 3);
    for (int k = 8; k < 16; ++k)
    {
      ModelItem& item = ModelItem::create(grains, *stack().getSlice(k));
      for (int y = 104; y < 150; y += 11)
        for (int x = 124; x < 190; x += 11) item.appendVertex(Vector<int>{x + jitter(random), y + jitter(random)});
    }
  }

  void take(QWidget& window, const char* name) const
  {
    waitFor([&window] { return window.isActiveWindow(); });
    QTest::qWait(settling);
    const QString file = _folder.filePath(QString(name) + ".png");
    if (!window.screen()->grabWindow(window.winId()).save(file))
      throw std::runtime_error("cannot write " + file.toStdString());
  }

  template <class Test> static void waitFor(const Test& test)
  {
    if (!QTest::qWaitFor(test, 20000)) throw std::runtime_error("waited in vain");
  }

  QDir _folder;
  NYXRootWindow _window;
};

void takeAll(const QDir& folder)
{
  Pictures pictures(folder);
  pictures.drawing();
  pictures.panorama();
  pictures.registration();
  pictures.scene();
  pictures.measures();
  pictures.spatialAnalysis();
}
} // namespace

int main(int argc, char** argv)
{
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("VELK");
  QCoreApplication::setApplicationName("Mirelo");
  QApplication::setQuitOnLastWindowClosed(false);
  if (argc != 2) return std::cerr << "usage: mirelo_pictures FOLDER\n", 2;
  try
  {
    takeAll(QDir(argv[1]));
  }
  catch (const std::exception& error)
  {
    std::cerr << "mirelo_pictures: " << error.what() << "\n";
    return 1;
  }
}
