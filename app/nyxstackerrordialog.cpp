#include "app/nyxstackerrordialog.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

NYXStackErrorDialog::NYXStackErrorDialog(const QString& filename, const QStringList& log, QWidget* parent)
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
  lines->setLineWrapMode(QPlainTextEdit::NoWrap);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(banner);
  layout->addWidget(lines, 1);
  layout->addWidget(buttons);
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 16);
}
