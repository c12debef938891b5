#include "slice/image/nyxfiledialog.h"

#include "app/core/nyxsettings.h"
#include "slice/image/nyxdialogsize.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTreeView>

#include <algorithm>

namespace
{
constexpr int numCharacters = 100; // of the first size
constexpr int numLines = 28;

/// The suffixes of "*.png" or "PNG picture (*.png *.PNG)", with their points.
QStringList suffixesOf(const QString& filters)
{
  static const QRegularExpression pattern(R"(\*(\.\w+))");
  QStringList suffixes;
  for (auto match = pattern.globalMatch(filters); match.hasNext();) suffixes.append(match.next().captured(1));
  return suffixes;
}
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

void NYXFileDialog::accept()
{
  if (_purpose == Writing) completeName();
  QFileDialog::accept();
}

/// By ourselves: Qt adds no suffix when there is a point anywhere in the path.
void NYXFileDialog::completeName()
{
  auto& edit = *findChild<QLineEdit*>("fileNameEdit");
  const QString name = edit.text();
  const QStringList suffixes = suffixesOf(nameFilters().join(' '));
  const QStringList chosen = suffixesOf(selectedNameFilter());
  const auto ends = [&name](const QString& suffix) { return name.endsWith(suffix, Qt::CaseInsensitive); };
  const bool isFolder = QFileInfo(directory(), name).isDir();
  if (name.isEmpty() || isFolder || chosen.isEmpty() || std::any_of(suffixes.begin(), suffixes.end(), ends)) return;
  edit.setText(name + chosen.first());
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
