#include "app/nyximagefiles.h"

#include "slice/image/nyxfiledialog.h"

#include <QCollator>
#include <QCoreApplication>

#include <algorithm>

QStringList chooseImageFiles(QWidget* parent, const QString& filter)
{
  NYXFileDialog dialog(parent, "selectImageFilesDialog",
                       QCoreApplication::translate("NYXStackIO", "Select image files"));
  dialog.setNameFilter(filter);
  dialog.setFileMode(QFileDialog::ExistingFiles);
  dialog.rememberSize();
  QStringList files = dialog.ask();
  sortByNumbers(files);
  return files;
}

void sortByNumbers(QStringList& names)
{
  QCollator collator(QLocale::English); // the C locale knows no numbers
  collator.setNumericMode(true);
  std::sort(names.begin(), names.end(), collator);
}
