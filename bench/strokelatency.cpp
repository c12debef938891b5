// Time from a move event to the frame that shows the vertex it adds, while a contour is drawn in a root window: an
// image of SIDE x SIDE pixels with ITEMS contours of 100 vertices each in view; 300 moves of the mouse and 300 of the
// pen.
//
//   stroke_latency [SIDE] [ITEMS] [ZOOM]      under a screen, or xvfb-run

#include "app/core/nyxpreferences.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "bench/manyitems.h"
#include "slice/image/nyximageproxy.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsliceeditwidgetmediatorcreationdelegate.h"

#include <QApplication>
#include <QEventLoop>
#include <QTabletEvent>
#include <QTemporaryDir>
#include <QTimer>

#include <cmath>
#include <iostream>

namespace
{
constexpr int numMoves = 300;
constexpr int settlingTime = 3000; // milliseconds, in which the image is read and the items are drawn in full

void wait(int milliseconds)
{
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

/// A stroke through the view, as a spiral.
class Stroke
{
public:
  Stroke(NYXSliceEditWidget& widget, bool isPen) : _widget(widget), _canvas(widget.editCanvas()), _isPen(isPen) {}

  std::vector<double> measure()
  {
    _widget.editMediator().creation().activate("contours");
    send(QEvent::MouseButtonPress, QEvent::TabletPress, 0);
    wait(100);
    std::vector<double> times;
    for (int k = 1; k <= numMoves; ++k) times.push_back(timeOfMove(k));
    _widget.editMediator().cancel();
    return times;
  }

private:
  double timeOfMove(int k)
  {
    QEventLoop loop;
    QObject::connect(&_canvas, &QOpenGLWidget::frameSwapped, &loop, &QEventLoop::quit);
    QElapsedTimer clock;
    clock.start();
    send(QEvent::MouseMove, QEvent::TabletMove, k);
    loop.exec();
    const double milliseconds = millisecondsOf(clock);
    wait(1); // what comes after the frame is no part of the next one
    return milliseconds;
  }

  void send(QEvent::Type mouse, QEvent::Type pen, int k)
  {
    const double angle = 0.2 * k, radius = 20 + 0.6 * k;
    const QPointF position = _canvas.rect().center() + QPointF(radius * std::cos(angle), radius * std::sin(angle));
    const QPointF global = _canvas.mapToGlobal(position.toPoint());
    const Qt::MouseButton button = k == 0 ? Qt::LeftButton : Qt::NoButton;
    QMouseEvent mouseEvent(mouse, position, global, button, Qt::LeftButton, Qt::NoModifier);
    QTabletEvent penEvent(pen, position, global, QTabletEvent::Stylus, QTabletEvent::Pen, 0.5, 0, 0, 0, 0, 0,
                          Qt::NoModifier, 1, button, Qt::LeftButton);
    QCoreApplication::sendEvent(&_canvas, _isPen ? static_cast<QEvent*>(&penEvent) : &mouseEvent);
  }

  NYXSliceEditWidget& _widget;
  NYXSliceEditWidgetCanvas& _canvas;
  bool _isPen;
};
} // namespace

int main(int argc, char** argv)
{
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("VELK");
  QCoreApplication::setApplicationName("stroke_latency"); // settings of its own
  QApplication::setStyle("Fusion");
  ManyItems settings{4096, 10000, 0.25F};
  settings.read(QCoreApplication::arguments());
  const QTemporaryDir folder;
  const std::string image = folder.filePath("image.tif").toStdString();
  writeTexture(image, settings.side);

  auto* window = new NYXRootWindow;
  window->setGeometry(0, 0, 1280, 800);
  auto& widget = *window->findChild<NYXSliceEditWidget*>();
  NYXStackServer::server().addStack(makeStack(image, settings));
  widget.canvas().setBestFitMode(false, false);
  widget.canvas().setZoomFactor(settings.zoom);
  widget.mediator().centerView();
  wait(settlingTime);
  std::cout << "canvas " << widget.canvas().width() << "x" << widget.canvas().height() << ": mouse "
            << summaryOf(Stroke(widget, false).measure()) << "; pen " << summaryOf(Stroke(widget, true).measure())
            << std::endl;
  std::_Exit(0);
}
