#include "app/core/nyxsettings.h"

#include <QDir>
#include <QSettings>

NYXSettings::NYXSettings() : _inputDirectory(QDir::homePath()), _outputDirectory(QDir::homePath()) {}

NYXSettings& NYXSettings::settings()
{
  static NYXSettings instance;
  return instance;
}

void NYXSettings::load()
{
  const QSettings store;
  NYXSettings& s = settings();
  s._inputDirectory = store.value("inputDirectory", s._inputDirectory).toString();
  s._outputDirectory = store.value("outputDirectory", s._outputDirectory).toString();
  s._recentFiles = store.value("recentFiles", s._recentFiles).toStringList().mid(0, maxNumRecentFiles);
  s._openStackDialogSize = store.value("openStackDialogSize", s._openStackDialogSize).toSize();
}

void NYXSettings::save()
{
  QSettings store;
  const NYXSettings& s = settings();
  store.setValue("inputDirectory", s._inputDirectory);
  store.setValue("outputDirectory", s._outputDirectory);
  store.setValue("recentFiles", s._recentFiles);
  if (s._openStackDialogSize.isValid()) store.setValue("openStackDialogSize", s._openStackDialogSize);
}

void NYXSettings::addRecentFile(const QString& file)
{
  if (_recentFiles.contains(file)) return;
  _recentFiles.prepend(file);
  if (_recentFiles.size() > maxNumRecentFiles) _recentFiles.removeLast();
}
