#include "app/nyxpreferencesdialog.h"

#include "app/nyxdialogs.h"
#include "app/nyxnames.h"
#include "app/nyxpreferencesdialogmediator.h"
#include "app/nyxpreferenceseditor.h"
#include "slice/image/nyxdialogsize.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QVBoxLayout>

NYXPreferencesDialog::NYXPreferencesDialog(QWidget* parent) : QDialog(parent)
{
  setObjectName("preferencesDialog");
  setWindowTitle(QCoreApplication::translate("NYXPreferencesDialog", "Preferences"));

  auto* editor = new NYXPreferencesEditor(this);
  auto* buttons = createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, *this);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(editor);
  layout->addStretch(1);
  layout->addWidget(buttons);
  nameParts(*this);
  rememberSize(*this, 50, 16);

  new NYXPreferencesDialogMediator(*this, *editor, *buttons);
}
