#include "app/nyxdialogs.h"

#include "app/nyxplaintext.h"

#include <QCoreApplication>
#include <QDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSettings>

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

QSize textSize(const QWidget& window, int numCharacters, int numLines)
{
  const QFontMetrics font = window.fontMetrics();
  return {font.averageCharWidth() * numCharacters, font.lineSpacing() * numLines};
}

void rememberSize(QDialog& dialog, int numCharacters, int numLines)
{
  const QString key = "dialogs/" + dialog.objectName() + "/size";
  const QSize first = textSize(dialog, numCharacters, numLines);
  const QSize last = QSettings().value(key).toSize();
  const QSize screen = QGuiApplication::primaryScreen()->availableSize();
  dialog.resize((last.isValid() ? last : first).boundedTo(screen).expandedTo(dialog.minimumSizeHint()));
  QObject::connect(&dialog, &QDialog::finished, &dialog, [&dialog, key] { QSettings().setValue(key, dialog.size()); });
}

void showWarning(QWidget* parent, const QString& title, const QString& text)
{
  QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, parent);
  box.setObjectName("warningDialog");
  box.setTextFormat(Qt::PlainText);
  box.exec();
}
