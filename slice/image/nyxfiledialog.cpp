#include "slice/image/nyxfiledialog.h"

#include "app/core/nyxsettings.h"
#include "slice/image/nyxdialogsize.h"

#include <QHeaderView>
#include <QTreeView>

namespace
{
constexpr int numCharacters = 100; // of the first size
constexpr int numLines = 28;
} // namespace

NYXFileDialog::NYXFileDialog(QWidget* parent, const QString& name, const QString& title, Purpose purpose)
  : QFileDialog(parent, title), _purpose(purpose)
{
  const NYXSettings& settings = NYXSettings::settings();
  setObjectName(name);
  setOption(DontUseNativeDialog);
  setDirectory(purpose == Reading ? settings.getInputDirectory() : settings.getOutputDirectory());
  if (purpose == Writing) setAcceptMode(AcceptSave);
  resize(textSize(*this, numCharacters, numLines));
  if (const auto* const files = findChild<QTreeView*>()) // else dates are cut off
  {
    files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    files->header()->setSectionResizeMode(0, QHeaderView::Stretch); // the names
  }
}

void NYXFileDialog::rememberSize()
{
  ::rememberSize(*this, numCharacters, numLines);
}

QStringList NYXFileDialog::ask()
{
  if (exec() != Accepted) return {};
  NYXSettings& settings = NYXSettings::settings();
  const QString chosen = selectedFiles().value(0); // perhaps typed, in another folder than the one that is shown
  const QString folder = fileMode() == Directory ? chosen : QFileInfo(chosen).absolutePath();
  if (_purpose == Reading)
    settings.setInputDirectory(folder);
  else
    settings.setOutputDirectory(folder);
  return selectedFiles();
}
