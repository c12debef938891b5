#pragma once

#include "numeric/progresssubject.h"

#include <QObject>
#include <QSize>

#include <memory>
#include <vector>

class Image;

/// Makes the reduced copies of an image in the thread to which it was moved, and owns them.
class NYXImageResizer : public QObject
{
  Q_OBJECT

public:
  NYXImageResizer();
  ~NYXImageResizer() override;

  /// Borrowed.
  void setImage(const Image* image) { _image = image; }
  /// See NYXImageServer::setBaseSize().
  void setBaseSize(const QSize& size) { _baseSize = size; }
  /// From any thread.
  void cancel() { _subject.cancel(); }
  bool isCancelled() const { return _subject.isCancelled(); }
  /// Frees the copies; only while the thread does not run.
  void clear();

public slots:
  void run();

signals:
  /// The next reduced image is there; it stays until clear().
  void imageAvailable(const Image* image);
  void progressed(double share);
  /// Done or cancelled.
  void finished();

private:
  void makePyramid();
  void makeBaseSize();
  void publish(std::unique_ptr<Image> image);

  const Image* _image = nullptr;
  QSize _baseSize = QSize(0, 0);
  std::vector<std::unique_ptr<Image>> _images;
  ProgressSubject _subject;
};
