#include "viewer/videocommand.h"

#include <QFileInfo>

QString VideoCommand::quoted(const QString& name)
{
  return "'" + QString(name).replace("'", "'\\''") + "'";
}

QString VideoCommand::frameName(const QString& folder, int frame)
{
  return folder + QString("/%1.png").arg(frame, 4, 10, QChar('0'));
}

QString VideoCommand::check()
{
  return "ffmpeg -L";
}

/// The encoder takes the folder as a part of a pattern, in which a percent sign is written twice.
QString VideoCommand::encode(const QString& folder, int frameRate, const QString& output)
{
  const QString rate = QString::number(frameRate);
  const QString frames = QString(folder).replace("%", "%%") + "/%04d.png";
  return "ffmpeg -r " + rate + " -i " + quoted(frames) + " -an -r " + rate + " -y -crf 20 -vcodec libx264 " +
         quoted(QFileInfo(output).absoluteFilePath());
}

QString VideoCommand::emptyFolder(const QString& folder)
{
  return "rm -f " + quoted(folder) + "/*";
}

QString VideoCommand::removeFolder(const QString& folder)
{
  return "rmdir " + quoted(folder);
}
