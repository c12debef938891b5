// Frame times of a root window whose slice is dragged by the middle button: an image of SIDE x SIDE pixels that is
// still being loaded, with ITEMS contours of 100 vertices each in view. Times run from swapped frame to swapped frame.
// Before that, the time from the opening of a stack with the image alone to its first pixels on the screen, beside the
// time that libtiff takes to read the file, both from the file cache.
//
//   canvas_frames [SIDE] [ITEMS] [ZOOM]      under a screen, or xvfb-run

#include "app/core/nyxstackserver.h"
#include "app/nyxrootsliceeditwidget.h"
#include "app/nyxrootwindow.h"
#include "bench/manyitems.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "slice/image/nyxslicewidgetcanvas.h"
#include "slice/nyxsliceeditwidget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>

#include <tiffio.h>

#include <algorithm>
#include <iostream>

namespace
{
constexpr int numFrames = 300;

/// The time that libtiff takes to read the image into memory.
double libtiffMilliseconds(const std::string& filename)
{
  QElapsedTimer clock;
  clock.start();
  TIFF* file = TIFFOpen(filename.c_str(), "r");
  const tmsize_t stripSize = TIFFStripSize(file);
  const tstrip_t numStrips = TIFFNumberOfStrips(file);
  const std::unique_ptr<unsigned char[]> pixels(new unsigned char[static_cast<std::size_t>(stripSize) * numStrips]);
  for (tstrip_t strip = 0; strip < numStrips; ++strip)
    TIFFReadEncodedStrip(file, strip, pixels.get() + static_cast<std::ptrdiff_t>(strip) * stripSize, stripSize);
  TIFFClose(file);
  return millisecondsOf(clock);
}

/// The time from the opening of a stack until a frame with its image is on the screen.
double firstPixelsMilliseconds(const std::string& filename, const ManyItems& settings, NYXImageWidgetCanvas& canvas)
{
  ManyItems imageOnly = settings;
  imageOnly.numItems = 0;
  std::unique_ptr<NYXStack> stack = makeStack(filename, imageOnly);
  QEventLoop loop;
  QObject::connect(&canvas, &QOpenGLWidget::frameSwapped, &loop,
                   [&]
                   {
                     if (canvas.getImageProxy().hasImage()) loop.quit();
                   });
  QElapsedTimer clock;
  clock.start();
  NYXStack& open = NYXStackServer::server().addStack(std::move(stack));
  loop.exec();
  const double milliseconds = millisecondsOf(clock);
  NYXStackServer::server().removeStack(open);
  return milliseconds;
}

void reportFirstPixels(const std::string& filename, const ManyItems& settings, NYXImageWidgetCanvas& canvas)
{
  std::vector<double> window, libtiff;
  for (int k = 0; k < 5; ++k)
  {
    window.push_back(firstPixelsMilliseconds(filename, settings, canvas));
    libtiff.push_back(libtiffMilliseconds(filename));
  }
  const double ours = *std::min_element(window.begin(), window.end());
  const double theirs = *std::min_element(libtiff.begin(), libtiff.end());
  std::cout << "first pixels " << ours << " ms, libtiff " << theirs << " ms, ratio " << ours / theirs << "\n";
}

/// Drags the canvas from frame to frame and collects the times between them.
class Drag : public QObject
{
public:
  explicit Drag(NYXImageWidgetCanvas& canvas) : _canvas(canvas)
  {
    connect(&canvas, &QOpenGLWidget::frameSwapped, this, [this] { nextFrame(); });
  }

private:
  /// With the first frame on the screen: the image is being read by then.
  void start()
  {
    _position = _canvas.rect().center();
    send(QEvent::MouseButtonPress, Qt::MiddleButton);
    _clock.start();
    move();
  }

  void nextFrame()
  {
    if (!_clock.isValid()) return start();
    _times.push_back(static_cast<double>(_clock.nsecsElapsed()) / 1e6);
    _numLoading += _canvas.getImageProxy().getNumImages() < 2;
    _clock.restart();
    if (static_cast<int>(_times.size()) == numFrames) return report();
    QTimer::singleShot(0, this, [this] { move(); });
  }

  void move()
  {
    const int turn = static_cast<int>(_times.size()) / 20 % 2 == 0 ? 1 : -1;
    _position += QPoint(7 * turn, 3 * turn);
    send(QEvent::MouseMove, Qt::NoButton);
  }

  void send(QEvent::Type type, Qt::MouseButton button)
  {
    QMouseEvent event(type, _position, _canvas.mapToGlobal(_position), button, Qt::MiddleButton, Qt::NoModifier);
    QApplication::sendEvent(&_canvas, &event);
  }

  void report()
  {
    const auto worst = std::max_element(_times.begin(), _times.end()) - _times.begin();
    std::cout << "canvas " << _canvas.width() << "x" << _canvas.height() << ": " << summaryOf(_times) << " (frame "
              << worst << "); " << _numLoading << " frames without pyramid\n";
    QCoreApplication::exit();
  }

  NYXImageWidgetCanvas& _canvas;
  QPoint _position;
  QElapsedTimer _clock;
  std::vector<double> _times;
  int _numLoading = 0;
};
} // namespace

int main(int argc, char** argv)
{
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("VELK");
  QCoreApplication::setApplicationName("canvas_frames"); // settings of its own
  QApplication::setStyle("Fusion");
  ManyItems settings;
  settings.read(QCoreApplication::arguments());
  const QTemporaryDir folder;
  const std::string image = folder.filePath("image.tif").toStdString();
  writeTexture(image, settings.side);

  auto* window = new NYXRootWindow;
  window->setGeometry(0, 0, 1280, 800);
  NYXSliceEditWidget& widget = window->findChild<NYXRootSliceEditWidget*>()->sliceWidget();
  reportFirstPixels(image, settings, widget.canvas());
  NYXStackServer::server().addStack(makeStack(image, settings));
  widget.canvas().setBestFitMode(false, false);
  widget.canvas().setZoomFactor(settings.zoom);
  widget.mediator().centerView();
  const Drag drag(widget.canvas());
  return QCoreApplication::exec();
}
