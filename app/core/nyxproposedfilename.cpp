#include "app/core/nyxproposedfilename.h"

#include <QRegularExpression>

namespace
{
constexpr int maxNumBytes = 200; // file systems take 255, in UTF-8, with all suffixes
} // namespace

QString proposedFileName(const QString& stackName)
{
  static const QRegularExpression forbidden(R"([/\\:*?"<>|\x00-\x1f\x7f]+)"); // on one system or another
  static const QRegularExpression outerDots(R"(^[\s.]+|[\s.]+$)");            // hidden files and folders
  QString name = QString(stackName).replace(forbidden, "-").remove(outerDots);
  while (name.toUtf8().size() > maxNumBytes) name.chop(name.at(name.size() - 1).isLowSurrogate() ? 2 : 1);
  name.remove(outerDots);
  return name.isEmpty() ? "stack" : name;
}
