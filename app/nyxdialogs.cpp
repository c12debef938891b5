#include "app/nyxdialogs.h"

#include "slice/image/nyxplaintext.h"

#include <QCoreApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>

QDialogButtonBox* createButtonBox(QDialogButtonBox::StandardButtons buttons, QDialog& dialog)
{
  const struct
  {
    QDialogButtonBox::StandardButton which;
    const char* text;
  } texts[] = {{QDialogButtonBox::Ok, QT_TRANSLATE_NOOP("NYXDialogs", "OK")},
               {QDialogButtonBox::Apply, QT_TRANSLATE_NOOP("NYXDialogs", "Apply")},
               {QDialogButtonBox::Cancel, QT_TRANSLATE_NOOP("NYXDialogs", "Cancel")},
               {QDialogButtonBox::Close, QT_TRANSLATE_NOOP("NYXDialogs", "Close")}};
  auto* const box = new QDialogButtonBox(buttons, &dialog);
  box->setObjectName("buttons");
  for (const auto& [which, text] : texts)
  {
    QPushButton* const button = box->button(which);
    if (!button) continue;
    button->setText(QCoreApplication::translate("NYXDialogs", text));
    button->setObjectName(QString(text).toLower() + "Button");
  }
  QObject::connect(box, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  return box;
}

void showWarning(QWidget* parent, const QString& title, const QString& text)
{
  QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, parent);
  box.setObjectName("warningDialog");
  box.setTextFormat(Qt::PlainText);
  box.exec();
}
