#include "app/nyxpreferencesdialog.h"

#include "app/nyxpreferencesdialogmediator.h"
#include "app/nyxpreferenceseditor.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

NYXPreferencesDialog::NYXPreferencesDialog(QWidget* parent) : QDialog(parent)
{
  setObjectName("preferencesDialog");
  setWindowTitle(QCoreApplication::translate("NYXPreferencesDialog", "Preferences"));

  auto* editor = new NYXPreferencesEditor(this);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText("OK");
  buttons->button(QDialogButtonBox::Apply)->setText("Apply");
  buttons->button(QDialogButtonBox::Cancel)->setText("Cancel");
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(editor);
  layout->addStretch(1);
  layout->addWidget(buttons);

  new NYXPreferencesDialogMediator(*this, *editor, *buttons);
}
