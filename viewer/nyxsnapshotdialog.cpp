#include "viewer/nyxsnapshotdialog.h"

#include "slice/image/nyxintegerbox.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

NYXSnapshotDialog::NYXSnapshotDialog(const QSize& size, int largestScale, QWidget* parent)
  : QDialog(parent),
    _scale(new NYXIntegerBox(this)),
    _isTransparent(new QCheckBox(tr("Transparent background"), this)),
    _isCropped(new QCheckBox(tr("Cropped to what is drawn"), this))
{
  setObjectName("snapshotDialog");
  setWindowTitle(tr("Snapshot"));
  _scale->setObjectName("scale");
  _scale->setRange(1, largestScale);
  _scale->setPrefix("x ");
  _scale->setToolTip(tr("Multiple of the window's size"));
  _isTransparent->setObjectName("transparent");
  _isCropped->setObjectName("cropped");
  auto* const pixels = new QLabel(this);
  const auto showPixels = [this, pixels, size]
  { pixels->setText(tr("%1 x %2 pixels").arg(size.width() * scale()).arg(size.height() * scale())); };
  connect(_scale, qOverload<int>(&QSpinBox::valueChanged), this, showPixels);
  showPixels();
  auto* const form = new QFormLayout(this);
  form->addRow(tr("Size"), _scale);
  form->addRow(QString(), pixels);
  form->addRow(QString(), _isTransparent);
  form->addRow(QString(), _isCropped);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Save)->setText(tr("Save..."));
  buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

int NYXSnapshotDialog::scale() const
{
  return _scale->value();
}

bool NYXSnapshotDialog::isTransparent() const
{
  return _isTransparent->isChecked();
}

bool NYXSnapshotDialog::isCropped() const
{
  return _isCropped->isChecked();
}
