#include "viewer/nyxsurfaceexportdialog.h"

#include "app/core/nyxsettings.h"
#include "slice/image/nyxfiledialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

NYXSurfaceExportDialog::NYXSurfaceExportDialog(QWidget* parent)
  : QDialog(parent),
    _folder(new QLineEdit(NYXSettings::settings().getOutputDirectory(), this)),
    _format(new QComboBox(this)),
    _isClosed(new QCheckBox(tr("Close surfaces (caps)"), this))
{
  setObjectName("surfaceExportDialog");
  setWindowTitle(tr("Export surfaces"));
  _folder->setObjectName("folder");
  _folder->setMinimumWidth(fontMetrics().averageCharWidth() * 45);
  _format->setObjectName("format");
  _format->addItem(tr("STL (text)"), static_cast<int>(SurfaceFormat::AsciiStl));
  _format->addItem(tr("STL (binary)"), static_cast<int>(SurfaceFormat::BinaryStl));
  _format->addItem(tr("PLY"), static_cast<int>(SurfaceFormat::Ply));
  _format->addItem(tr("OBJ"), static_cast<int>(SurfaceFormat::Obj));
  _isClosed->setObjectName("closeSurfaces");
  _isClosed->setToolTip(tr("Fills the first and the last contours of each surface"));
  auto* const browse = new QPushButton(tr("Browse..."), this);
  auto* const folder = new QHBoxLayout;
  folder->addWidget(_folder, 1);
  folder->addWidget(browse);
  auto* const form = new QFormLayout(this);
  form->addRow(tr("Folder"), folder);
  form->addRow(tr("Format"), _format);
  form->addRow(QString(), _isClosed);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  _export = buttons->button(QDialogButtonBox::Ok);
  _export->setText(tr("Export"));
  buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(browse, &QPushButton::clicked, this, &NYXSurfaceExportDialog::chooseFolder);
  connect(_folder, &QLineEdit::textChanged, this, &NYXSurfaceExportDialog::update);
  update();
}

void NYXSurfaceExportDialog::update()
{
  const bool hasFolder = !_folder->text().trimmed().isEmpty();
  _export->setEnabled(hasFolder);
  _export->setToolTip(hasFolder ? QString() : tr("Choose a folder first"));
}

void NYXSurfaceExportDialog::chooseFolder()
{
  NYXFileDialog dialog(this, "surfaceFolderDialog", tr("Folder"), NYXFileDialog::Writing);
  dialog.setAcceptMode(QFileDialog::AcceptOpen); // a folder that is there
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  if (!_folder->text().trimmed().isEmpty()) dialog.setDirectory(_folder->text());
  dialog.rememberSize();
  const QStringList chosen = dialog.ask();
  if (!chosen.isEmpty()) _folder->setText(chosen.first());
}

SurfaceExport NYXSurfaceExportDialog::target() const
{
  SurfaceExport target;
  target.directory = QFile::encodeName(QFileInfo(_folder->text()).absoluteFilePath()).toStdString();
  target.format = static_cast<SurfaceFormat>(_format->currentData().toInt());
  target.isClosed = _isClosed->isChecked();
  return target;
}
