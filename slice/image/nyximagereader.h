#pragma once

#include "numeric/progresssubject.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class Image;
class ImageSource;

/// Reads an image in the thread to which it was moved, and takes its colormap away.
class NYXImageReader : public QObject, private ProgressObserver
{
  Q_OBJECT

public:
  /// Fills the image; throws Cancelled once the subject is.
  using ReadFunction = std::function<void(Image& image, const ImageSource& source, ProgressSubject& subject)>;
  /// ImageReader::read().
  static ReadFunction defaultReadFunction();

  /// Copies the source.
  NYXImageReader(const ImageSource& source, ReadFunction read);
  ~NYXImageReader() override;

  /// Borrowed.
  void setImage(Image* image) { _image = image; }
  /// From any thread.
  void cancel() { _subject.cancel(); }
  bool isCancelled() const { return _subject.isCancelled(); }
  /// Why the image could not be read, with the file's name; to be asked when the reader has finished.
  const QString& problem() const { return _problem; }

public slots:
  void run();

signals:
  void progressed(double share);
  /// Done, cancelled or failed.
  void finished();

private:
  void read();
  void started(const std::string&) override {}
  void progressed(const double share) override;
  void finished() override;

  std::unique_ptr<ImageSource> _source;
  ReadFunction _read;
  Image* _image = nullptr;
  QString _problem;
  ProgressSubject _subject;
};
