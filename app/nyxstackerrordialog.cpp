#include "app/nyxstackerrordialog.h"

#include "app/nyxdialogs.h"
#include "app/nyxnames.h"
#include "slice/image/nyxdialogsize.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

NYXStackErrorDialog::NYXStackErrorDialog(const QString& filename, const QStringList& log, bool isOpened,
                                         QWidget* parent)
  : QDialog(parent)
{
  setObjectName("stackErrorDialog");
  setWindowTitle(QCoreApplication::translate("NYXStackErrorDialog", "Stack file messages"));

  auto* banner = new QLabel("In " + filename + ":", this);
  banner->setObjectName("banner");
  banner->setTextFormat(Qt::PlainText);
  banner->setTextInteractionFlags(Qt::TextSelectableByMouse);
  banner->setWordWrap(true);
  auto* lines = new QPlainTextEdit(log.join('\n'), this);
  lines->setObjectName("log");
  lines->setReadOnly(true);
  auto* consequence =
      new QLabel(isOpened ? QCoreApplication::translate(
                                "NYXStackErrorDialog",
                                "The stack is opened without these parts; saving asks before it replaces the file.")
                          : QCoreApplication::translate("NYXStackErrorDialog", "The stack is not opened."),
                 this);
  consequence->setObjectName("consequence");
  consequence->setWordWrap(true);
  auto* buttons = createButtonBox(QDialogButtonBox::Close, *this);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(banner);
  layout->addWidget(lines, 1);
  layout->addWidget(consequence);
  layout->addWidget(buttons);
  nameParts(*this);
  rememberSize(*this, 90, 16);
}
