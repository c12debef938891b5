#include "app/nyxnewstackdialog.h"

#include "app/nyxdialogs.h"
#include "app/nyximagefiles.h"
#include "app/nyxnames.h"
#include "slice/image/nyxdialogsize.h"
#include "slice/image/nyxplaintext.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr int pathRole = Qt::UserRole;

QPushButton* createButton(const QString& name, const QString& text, const QString& toolTip, QWidget* parent)
{
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setToolTip(toolTip);
  button->setAutoDefault(false);
  return button;
}
} // namespace

NYXNewStackDialog::NYXNewStackDialog(QWidget* parent)
  : QDialog(parent),
    _files(new QListWidget(this)),
    _remove(createButton("removeButton", tr("Remove"), tr("Take the selected files out of the list (Delete)"), this)),
    _up(createButton("upButton", tr("Up"), tr("Move the selected file towards the first slice"), this)),
    _down(createButton("downButton", tr("Down"), tr("Move the selected file towards the last slice"), this)),
    _useCalibration(new QCheckBox(tr("Use image file calibration"), this)),
    _buttons(createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, *this))
{
  setObjectName("newStackDialog");
  setWindowTitle(tr("New stack"));
  _files->setObjectName("imageFiles");
  _files->setToolTip(tr("Each image becomes a slice; drag the files into the order of the slices"));
  _files->setSelectionMode(QAbstractItemView::ExtendedSelection);
  _files->setDragDropMode(QAbstractItemView::InternalMove);
  _files->setTextElideMode(Qt::ElideMiddle);
  _remove->setShortcut(QKeySequence::Delete);
  _useCalibration->setObjectName("useCalibration");
  _useCalibration->setToolTip(tr("Take the size of the pixels from the image files where they tell it"));
  _useCalibration->setChecked(true);
  QPushButton* const add = createButton("addButton", tr("Add..."), tr("Choose image files"), this);

  auto* const side = new QVBoxLayout;
  for (QPushButton* const button : {add, _remove, _up, _down}) side->addWidget(button);
  side->addStretch(1);
  auto* const layout = new QGridLayout(this);
  layout->addWidget(new QLabel(tr("Image files, one for each slice:"), this), 0, 0);
  layout->addWidget(_files, 1, 0);
  layout->addLayout(side, 1, 1);
  layout->addWidget(_useCalibration, 2, 0);
  layout->addWidget(_buttons, 3, 0, 1, 2);
  setTabOrder(_files, add);
  nameParts(*this);
  rememberSize(*this, 80, 24);

  connect(add, &QPushButton::clicked, this, &NYXNewStackDialog::chooseFiles);
  connect(_remove, &QPushButton::clicked, this, &NYXNewStackDialog::removeSelected);
  connect(_up, &QPushButton::clicked, this, [this] { move(-1); });
  connect(_down, &QPushButton::clicked, this, [this] { move(1); });
  connect(_files, &QListWidget::itemSelectionChanged, this, &NYXNewStackDialog::updateButtons);
  connect(_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  updateButtons();
}

QStringList NYXNewStackDialog::getFiles() const
{
  QStringList files;
  for (int i = 0; i < _files->count(); ++i) files.append(_files->item(i)->data(pathRole).toString());
  return files;
}

void NYXNewStackDialog::addFiles(const QStringList& files)
{
  for (const QString& file : files)
  {
    auto* const item = new QListWidgetItem(QFileInfo(file).fileName(), _files);
    item->setData(pathRole, QFileInfo(file).absoluteFilePath());
    item->setToolTip(plainText(QDir::toNativeSeparators(file)));
  }
  updateButtons();
}

bool NYXNewStackDialog::usesFileCalibration() const
{
  return _useCalibration->isChecked();
}

void NYXNewStackDialog::chooseFiles()
{
  addFiles(chooseImageFiles(this, "*.tif *.tiff *.TIF *.TIFF *.img"));
}

void NYXNewStackDialog::removeSelected()
{
  qDeleteAll(_files->selectedItems());
  updateButtons();
}

void NYXNewStackDialog::move(int distance)
{
  const int from = _files->currentRow(), to = from + distance;
  if (from < 0 || to < 0 || to >= _files->count()) return;
  QListWidgetItem* const item = _files->takeItem(from);
  _files->insertItem(to, item);
  _files->setCurrentItem(item);
}

void NYXNewStackDialog::updateButtons()
{
  const int numSelected = _files->selectedItems().size();
  _remove->setEnabled(numSelected > 0);
  _up->setEnabled(numSelected == 1);
  _down->setEnabled(numSelected == 1);
  _buttons->button(QDialogButtonBox::Ok)->setEnabled(_files->count() > 0);
}
