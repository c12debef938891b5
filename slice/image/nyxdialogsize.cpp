#include "slice/image/nyxdialogsize.h"

#include <QDialog>
#include <QGuiApplication>
#include <QScreen>
#include <QSettings>

QSize textSize(const QWidget& window, int numCharacters, int numLines)
{
  const QFontMetrics font = window.fontMetrics();
  return {font.averageCharWidth() * numCharacters, font.lineSpacing() * numLines};
}

void rememberSize(QDialog& dialog, int numCharacters, int numLines)
{
  const QString key = "dialogs/" + dialog.objectName() + "/size";
  const QSize first = textSize(dialog, numCharacters, numLines);
  const QSize last = QSettings().value(key).toSize();
  const QSize screen = QGuiApplication::primaryScreen()->availableSize();
  dialog.resize((last.isValid() ? last : first).boundedTo(screen).expandedTo(dialog.minimumSizeHint()));
  QObject::connect(&dialog, &QDialog::finished, &dialog, [&dialog, key] { QSettings().setValue(key, dialog.size()); });
}
