#pragma once

#include "numeric/progresssubject.h"
#include "slice/image/nyximagewidgetcanvasextrapainter.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

class NYXImageServer;
class NYXImageWidgetCanvas;

/// What a canvas shows while its image is being loaded: for a moment what it showed before, so that it does not flicker
/// when somebody pages through images, then nothing, and after half a second which file is read and how far.
class NYXLoadingNotice : public QObject, public NYXImageWidgetCanvasExtraPainter, private ProgressObserver
{
  Q_OBJECT

public:
  /// Adds itself to the canvas; a child of the parent.
  NYXLoadingNotice(NYXImageWidgetCanvas& canvas, QObject* parent);
  ~NYXLoadingNotice() override;

  /// The server whose progress is told; nullptr for none.
  void setImageServer(NYXImageServer* server);
  /// The canvas is to show another image, or has got it.
  void follow();

  /// What is said, empty while nothing is.
  QString text() const;

  void paint(QPainter& painter) override;

private:
  bool isLoading() const;
  void release();
  void started(const std::string& message) override;
  void progressed(double share) override;
  void finished() override {}

  NYXImageWidgetCanvas& _canvas;
  QPointer<NYXImageServer> _server;
  QTimer _holding; // runs while the canvas keeps what it showed
  QTimer _waiting; // runs while there is nothing to be said yet
  QString _key;    // of the image that is being loaded
  bool _isShown = false;
  bool _isImageOnScreen = false;
  int _percent = 0;
};
