#include "slice/image/nyximagereader.h"

#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagereduction.h"
#include "image/imagesource.h"
#include "slice/image/imagesourcename.h"

#include <new>

namespace
{
QString problemText(const QString& filename, const QString& what)
{
  return filename.isEmpty() ? what : filename + "\n" + what;
}
} // namespace

NYXImageReader::ReadFunction NYXImageReader::defaultReadFunction()
{
  return [](Image& image, const ImageSource& source, ProgressSubject& subject)
  { ImageReader::read(image, source, subject); };
}

NYXImageReader::NYXImageReader(const ImageSource& source, ReadFunction read)
  : _source(source.clone()), _read(std::move(read))
{
}

NYXImageReader::~NYXImageReader() = default;

QString NYXImageReader::problemText(const Exception& error, const ImageSource& source)
{
  const auto* const fileError = dynamic_cast<const FileError*>(&error);
  const bool isNamed = fileError && !fileError->getFilename().empty();
  const QString filename = isNamed ? QString::fromStdString(fileError->getFilename()) : imageSourceFile(source);
  return ::problemText(filename, QString::fromStdString(error.getWhat()));
}

void NYXImageReader::work(ProgressSubject& subject)
{
  try
  {
    const ProgressStep step(subject, "Loading the image", _source->getColormap() ? 2 : 1);
    _read(*_image, *_source, subject);
    expandColormap(*_image, subject);
  }
  catch (const Cancelled&)
  {
    throw;
  }
  catch (const Exception& error)
  {
    fail(problemText(error, *_source));
  }
  catch (const std::bad_alloc&)
  {
    fail(::problemText(imageSourceFile(*_source), tr("There is not enough memory for the image")));
  }
}

void NYXImageReader::fail(const QString& problem)
{
  _image->clear();
  _problem = problem;
}
