#pragma once

#include "slice/image/nyximageworker.h"

#include <QSize>

#include <deque>
#include <memory>
#include <mutex>

class Image;

/// Makes the reduced copies of an image.
class NYXImageResizer : public NYXImageWorker
{
  Q_OBJECT

public:
  NYXImageResizer();
  ~NYXImageResizer() override;

  /// Borrowed, as are the images that were taken, while the work is done.
  void setImage(const Image* image) { _image = image; }
  /// See NYXImageServer::setBaseSize().
  void setBaseSize(const QSize& size) { _baseSize = size; }
  /// The next of the images made by now, or nullptr. From any thread.
  std::unique_ptr<Image> takeImage();

signals:
  /// There is another image to take.
  void imageAvailable();

protected:
  void work(ProgressSubject& subject) override;

private:
  void makePyramid(ProgressSubject& subject);
  void makeBaseSize(ProgressSubject& subject);
  const Image* publish(Image&& image);

  const Image* _image = nullptr;
  QSize _baseSize = QSize(0, 0);
  std::deque<std::unique_ptr<Image>> _images; // not taken yet
  std::mutex _mutex;                          // guards them
};
