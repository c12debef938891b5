#include "app/nyxfiledialog.h"

#include "app/core/nyxsettings.h"

NYXFileDialog::NYXFileDialog(QWidget* parent, const QString& name, const QString& title, Purpose purpose)
  : QFileDialog(parent, title), _purpose(purpose)
{
  const NYXSettings& settings = NYXSettings::settings();
  setObjectName(name);
  setOption(DontUseNativeDialog);
  setDirectory(purpose == Reading ? settings.getInputDirectory() : settings.getOutputDirectory());
  if (purpose == Writing) setAcceptMode(AcceptSave);
}

QStringList NYXFileDialog::ask()
{
  if (exec() != Accepted) return {};
  NYXSettings& settings = NYXSettings::settings();
  const QString folder = fileMode() == Directory ? selectedFiles().value(0) : directory().absolutePath();
  if (_purpose == Reading)
    settings.setInputDirectory(folder);
  else
    settings.setOutputDirectory(folder);
  return selectedFiles();
}
