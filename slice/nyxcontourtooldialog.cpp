#include "slice/nyxcontourtooldialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

NYXContourToolDialog::NYXContourToolDialog(const QString& title, QWidget* parent)
  : QDialog(parent, Qt::Tool), _form(new QFormLayout), _all(new QCheckBox(this))
{
  setObjectName("contourToolDialog");
  setWindowTitle(title);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->setObjectName("buttons");
  buttons->button(QDialogButtonBox::Ok)->setObjectName("ok");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("cancel");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  _all->setObjectName("allContours");
  _all->setToolTip(tr("Change all contours that are selected, not only the first one"));
  connect(_all, &QCheckBox::toggled, this, &NYXContourToolDialog::scopeChanged);
  auto* column = new QVBoxLayout(this);
  column->addLayout(_form);
  column->addWidget(_all);
  column->addWidget(buttons);
}

void NYXContourToolDialog::offerAll(int numContours)
{
  _all->setText(tr("All %1 selected contours").arg(numContours));
  _all->setVisible(numContours > 1);
  _all->setChecked(numContours > 1);
}

bool NYXContourToolDialog::isForAll() const
{
  return _all->isChecked();
}
