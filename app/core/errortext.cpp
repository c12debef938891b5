#include "app/core/errortext.h"

#include "numeric/exception.h"

#include <QCoreApplication>
#include <QFile>

#include <new>

QString errorText(const Exception& error)
{
  const QString text = QString::fromStdString(error.getWhat());
  const auto* const fileError = dynamic_cast<const FileError*>(&error);
  const QString filename = fileError == nullptr ? QString() : QFile::decodeName(fileError->getFilename().c_str());
  return filename.isEmpty() || text.contains(filename) ? text : filename + ": " + text;
}

QString handledErrorText()
{
  try
  {
    throw;
  }
  catch (const Exception& error)
  {
    return errorText(error);
  }
  catch (const std::bad_alloc&)
  {
    return QCoreApplication::translate("errorText", "There is not enough memory");
  }
  catch (const std::exception& error)
  {
    return QString::fromLocal8Bit(error.what());
  }
}
