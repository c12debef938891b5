#include "slice/image/nyxloadingnotice.h"

#include "app/core/nyxpreferences.h"
#include "slice/image/imagesourcename.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximageserver.h"
#include "slice/image/nyximageserverdata.h"
#include "slice/image/nyximagewidgetcanvas.h"

#include <QFileInfo>
#include <QPainter>

#include <algorithm>

namespace
{
constexpr int holdingMilliseconds = 100;
constexpr int waitingMilliseconds = 500;
} // namespace

NYXLoadingNotice::NYXLoadingNotice(NYXImageWidgetCanvas& canvas, QObject* parent) : QObject(parent), _canvas(canvas)
{
  _canvas.addExtraPainter(this);
  _holding.setSingleShot(true);
  _waiting.setSingleShot(true);
  connect(&_holding, &QTimer::timeout, this, &NYXLoadingNotice::release);
  connect(&_waiting, &QTimer::timeout, this,
          [this]
          {
            _isShown = true;
            _canvas.update();
          });
}

NYXLoadingNotice::~NYXLoadingNotice()
{
  setImageServer(nullptr);
}

void NYXLoadingNotice::setImageServer(NYXImageServer* server)
{
  if (_server) _server->removeObserver(*this);
  _server = server;
  if (_server) _server->addObserver(*this);
}

bool NYXLoadingNotice::isLoading() const
{
  const NYXImageProxy& proxy = _canvas.getImageProxy();
  return proxy.hasImageServer() && !proxy.hasImage() && proxy.problem().isEmpty();
}

void NYXLoadingNotice::follow()
{
  if (!isLoading())
  {
    _waiting.stop();
    _isShown = false;
    _key.clear();
    return release();
  }
  if (_key == _canvas.getImageProxy().key()) return;
  _key = _canvas.getImageProxy().key();
  _isShown = false;
  _percent = 0;
  _waiting.start(waitingMilliseconds);
  if (_holding.isActive() || !_isImageOnScreen || !_canvas.isVisible()) return; // an old picture goes in time
  _canvas.holdPicture(true);
  _holding.start(holdingMilliseconds);
}

/// Lets the canvas show what it has by now.
void NYXLoadingNotice::release()
{
  _holding.stop();
  _canvas.holdPicture(false);
}

/// The server reads one image at a time: this one, now or soon.
void NYXLoadingNotice::started(const std::string&)
{
  _percent = 0;
}

void NYXLoadingNotice::progressed(double share)
{
  const int percent = std::min(100, static_cast<int>(100 * share / NYXImageServerData::readerShare));
  if (percent == _percent) return;
  _percent = percent;
  if (_isShown) _canvas.update();
}

QString NYXLoadingNotice::text() const
{
  if (!_isShown || !isLoading()) return {};
  const QString file = QFileInfo(imageSourceFile(*_canvas.getImageProxy().getImageSource())).fileName();
  return tr("Reading %1...").arg(file.isEmpty() ? tr("the image") : file) + QString("\n%1%").arg(_percent);
}

void NYXLoadingNotice::paint(QPainter& painter)
{
  _isImageOnScreen = _canvas.getImageProxy().hasImage();
  const QString said = text();
  if (said.isEmpty()) return;
  const QColor background = NYXPreferences::getImageCanvasBackgroundColor();
  painter.setPen(background.lightnessF() < 0.6 ? Qt::white : Qt::black);
  painter.drawText(_canvas.rect(), Qt::AlignCenter, said);
}
