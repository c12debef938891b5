// Times a user's steps on a large stack: opening, going through slices, editing, saving, reconstructing and measuring,
// with the peak of the memory after each. The images are made in a temporary folder first.
//
//   load_stack [SLICES] [ITEMS_PER_SLICE] [SIDE]      under a screen, or xvfb-run; 1000 100 2048 unless given

#include "analysis/nyxanalysiswindow.h"
#include "analysis/nyxanalysiswindowmediator.h"
#include "analysis/nyxmeasures.h"
#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxstackio.h"
#include "bench/manyitems.h"
#include "image/imagesourcefile.h"
#include "model/io/stackwriter.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyxslicewidgetcanvas.h"
#include "viewer/nyxrenderingwindow.h"
#include "viewer/nyxscenemodels.h"
#include "viewer/viewercanvasgl.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <fstream>
#include <iostream>
#include <numbers>
#include <random>
#include <tiffio.h>

namespace
{
constexpr int numVertices = 50; // of an item
constexpr int numColumns = 20;  // models that have one item on each slice; all other items are of one more model
constexpr int waitMilliseconds = 600000;

struct Load
{
  int numSlices = 1000;
  int numItemsPerSlice = 100;
  int side = 2048;
};

long peakMegabytes()
{
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmHWM:")) return std::stol(line.substr(6)) / 1024;
  return 0;
}

void report(const char* step, double milliseconds)
{
  std::cout << step << ": " << milliseconds << " ms, peak " << peakMegabytes() << " MB" << std::endl;
}

/// Discs on a noisy ground, a little further on each slice.
void writeImage(const std::string& name, int side, int slice)
{
  TIFF* const tiff = TIFFOpen(name.c_str(), "w");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, side);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, side);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 64);
  std::vector<unsigned char> row(static_cast<std::size_t>(side));
  for (int y = 0; y < side; ++y)
  {
    for (int x = 0; x < side; ++x)
      row[static_cast<std::size_t>(x)] =
          static_cast<unsigned char>(60 + ((x + slice) / 100 + y / 100) % 2 * 80 + (x * 7 + y * 13 + slice * 5) % 30);
    TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y));
  }
  TIFFClose(tiff);
}

Vertices<int> contour(double x, double y, double radius)
{
  Vertices<int> vertices(2);
  for (int i = 0; i < numVertices; ++i)
  {
    const double angle = 2 * std::numbers::pi * i / numVertices;
    vertices.append(Vector<int>{static_cast<int>(std::lround(x + radius * std::cos(angle))),
                                static_cast<int>(std::lround(y + radius * std::sin(angle)))});
  }
  return vertices;
}

void draw(Stack& stack, StackSlice& slice, const Load& load)
{
  const int perRow = std::max(1, static_cast<int>(std::ceil(std::sqrt(load.numItemsPerSlice))));
  const double step = static_cast<double>(load.side) / perRow;
  for (int i = 0; i < load.numItemsPerSlice; ++i)
  {
    const double x = (i % perRow + 0.5) * step, y = (i / perRow + 0.5) * step; // NOLINT(bugprone-integer-division)
    const double radius = step * (0.3 + 0.1 * std::sin(0.05 * slice.getIndex() + i));
    ModelItem::create(*stack.getModel(std::min(i, numColumns)), slice).setVertices(contour(x, y, radius));
  }
}

/// Writes the images and the stack file.
QString makeFiles(const QString& folder, const Load& load)
{
  Stack stack;
  stack.setName("load");
  stack.setDefaultRelativePosition(2);
  for (int m = 0; m <= numColumns; ++m)
    stack.addModel(std::make_unique<Model>(m < numColumns ? "column " + std::to_string(m) : "cells"));
  for (int k = 0; k < load.numSlices; ++k)
  {
    const std::string image = QDir(folder).filePath(QString("image-%1.tif").arg(k, 4, 10, QChar('0'))).toStdString();
    writeImage(image, load.side, k);
    auto slice = std::make_unique<StackSlice>();
    slice->setName(std::to_string(k));
    slice->setImageSource(ImageSourceFile(image));
    draw(stack, stack.addSlice(std::move(slice)), load);
  }
  const QString name = QDir(folder).filePath("load.sdf");
  StackWriter().write(stack, name.toStdString());
  return name;
}

class Session
{
public:
  explicit Session(const QString& filename) : _filename(filename) { _window.resize(1200, 750); }

  void open()
  {
    _clock.start();
    _window.startupOpenStack(_filename);
    waitFor([this] { return canvas().getImageProxy().hasImage(); });
    report("open, until the first image", millisecondsOf(_clock));
  }

  /// One slice after the other, each until its image is there.
  void browse(int numSlices)
  {
    auto& list = *_window.findChild<NYXSliceListWidget*>();
    std::vector<double> times;
    for (int k = 1; k < std::min(numSlices, stack().getNumSlices()); ++k)
    {
      _clock.start();
      list.selectSlice(*stack().getSlice(k));
      waitFor([this] { return canvas().getImageProxy().hasImage(); });
      times.push_back(millisecondsOf(_clock));
    }
    std::cout << "go to the next slice: " << summaryOf(times) << ", peak " << peakMegabytes() << " MB" << std::endl;
  }

  /// Moves of a contour on the slice that is shown, each a step, until the window has followed.
  void edit()
  {
    StackSlice& slice = *stack().getSlice(_window.findChild<NYXSliceListWidget*>()->currentSlice());
    std::vector<double> times;
    for (int i = 0; i < 100; ++i)
    {
      ModelItem& item = *slice.getItem(i % slice.getNumItems());
      Vertices<int> moved(item.getVertices());
      moved.detach();
      for (int v = 0; v < moved.getSize(); ++v) moved[v][0] += 1;
      _clock.start();
      stack().sliceHistory(slice).pushStep(std::make_unique<NYXItemVerticesChangeAction>(item, moved));
      QCoreApplication::processEvents();
      times.push_back(millisecondsOf(_clock));
    }
    std::cout << "edit a contour: " << summaryOf(times) << ", peak " << peakMegabytes() << " MB" << std::endl;
  }

  void save()
  {
    _clock.start();
    if (!NYXStackIO(&_window).saveStack(stack())) std::cerr << "not saved\n";
    report("save", millisecondsOf(_clock));
  }

  void reconstruct()
  {
    _clock.start();
    NYXRenderingWindow& view = NYXRenderingWindow::showFor(stack(), 0);
    waitFor([&] { return !view.models().isStale() && !view.models().isRunning(); });
    view.canvas().repaint();
    report("reconstruct, until it is drawn", millisecondsOf(_clock));
    view.close();
  }

  void measure()
  {
    _clock.start();
    NYXAnalysisWindow window;
    window.setStack(&stack());
    window.show();
    const NYXMeasures& measures = window.mediator().measures();
    waitFor([&] { return !measures.areModelsStale() && !measures.areItemsStale(); });
    report("measure", millisecondsOf(_clock));
    window.setStack(nullptr);
  }

private:
  static NYXStack& stack() { return NYXStackServer::server().getStack(0); }
  NYXSliceWidgetCanvas& canvas() const { return *_window.findChild<NYXSliceWidgetCanvas*>(); }
  template <class Test> static void waitFor(const Test& test)
  {
    if (!QTest::qWaitFor(test, waitMilliseconds)) std::cerr << "waited in vain\n";
  }

  QString _filename;
  NYXRootWindow _window;
  QElapsedTimer _clock;
};
} // namespace

int main(int argc, char** argv)
{
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("VELK");
  QCoreApplication::setApplicationName("Mirelo-load");
  const auto argument = [&](int i, int otherwise) { return argc > i ? std::atoi(argv[i]) : otherwise; };
  const Load load = {argument(1, 1000), argument(2, 100), argument(3, 2048)};
  const QTemporaryDir folder;
  const QString filename = makeFiles(folder.path(), load);
  std::cout << load.numSlices << " slices of " << load.side << " x " << load.side << ", "
            << load.numSlices * load.numItemsPerSlice << " items; peak " << peakMegabytes() << " MB" << std::endl;
  Session session(filename);
  session.open();
  session.browse(100);
  session.edit();
  session.save();
  session.measure();
  session.reconstruct();
}
