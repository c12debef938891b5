#pragma once

#include "slice/image/nyximageworker.h"

#include <QString>

#include <functional>
#include <memory>

class Exception;
class Image;
class ImageSource;

/// Reads an image and takes its colormap away.
class NYXImageReader : public NYXImageWorker
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
  /// Why the image could not be read, with the file's name; to be asked when the work is done.
  const QString& problem() const { return _problem; }
  /// What is said of an image that cannot be read.
  static QString problemText(const Exception& error, const ImageSource& source);

protected:
  void work(ProgressSubject& subject) override;

private:
  void fail(const QString& problem);

  std::unique_ptr<ImageSource> _source;
  ReadFunction _read;
  Image* _image = nullptr;
  QString _problem;
};
