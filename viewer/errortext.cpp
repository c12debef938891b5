#include "viewer/errortext.h"

#include "numeric/exception.h"

#include <QFile>

QString errorText(const Exception& error)
{
  const QString text = QString::fromStdString(error.getWhat());
  const auto* const fileError = dynamic_cast<const FileError*>(&error);
  const QString filename = fileError == nullptr ? QString() : QFile::decodeName(fileError->getFilename().c_str());
  return filename.isEmpty() || text.contains(filename) ? text : filename + ": " + text;
}
