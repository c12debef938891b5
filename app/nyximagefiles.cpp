#include "app/nyximagefiles.h"

#include "app/core/nyxsettings.h"

#include <QCollator>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>

#include <algorithm>

QStringList chooseImageFiles(QWidget* parent, const QString& filter)
{
  NYXSettings& settings = NYXSettings::settings();
  QFileDialog dialog(parent, QCoreApplication::translate("NYXStackIO", "Select image files"),
                     settings.getInputDirectory(), filter);
  dialog.setObjectName("selectImageFilesDialog");
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFileMode(QFileDialog::ExistingFiles);
  if (dialog.exec() != QDialog::Accepted) return {};
  settings.setInputDirectory(dialog.directory().absolutePath());
  QStringList files = dialog.selectedFiles();
  QCollator collator;
  collator.setNumericMode(true);
  std::sort(files.begin(), files.end(), collator);
  return files;
}
