#include "random_user.h"

#include "app/nyxnumberbox.h"
#include "tests/support/temporaryfolder.h"
#include "window_test_support.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace
{
template <class Widget> void replaceText(Widget& widget, const QString& text)
{
  widget.selectAll();
  QTest::keyClicks(&widget, text);
}
} // namespace

void RandomUser::useDialog(QDialog& dialog)
{
  if (auto* const box = qobject_cast<QMessageBox*>(&dialog)) return box->reject();
  if (auto* const files = qobject_cast<QFileDialog*>(&dialog)) return chooseFile(*files);
  for (int i = below(12); i > 0; --i) changeSomething(dialog);
  for (int i = 0; i < 3 && dialog.isVisible(); ++i) click(dialog, QStringList{"OK", "Apply", "Cancel"}[below(3)]);
  if (dialog.isVisible()) dialog.reject();
}

/// An image or a stack that is there, or a new file.
void RandomUser::chooseFile(QFileDialog& dialog)
{
  dialog.setDirectory(_folder);
  if (dialog.acceptMode() == QFileDialog::AcceptSave)
    dialog.selectFile(QString("new-%1").arg(below(5)));
  else if (dialog.nameFilters().join(' ').contains("*.sdf"))
    dialog.selectFile("specimen.sdf");
  else
    dialog.selectFile(QString("slice-00%1.tif").arg(below(10)));
  static_cast<QDialog&>(dialog).accept();
}

void RandomUser::changeSomething(const QWidget& window)
{
  const QList<QWidget*> parts = window.findChildren<QWidget*>();
  if (parts.isEmpty()) return;
  QWidget* const part = parts[below(parts.size())];
  if (!part->isEnabled() || !part->isVisible()) return;
  if (auto* const number = qobject_cast<NYXNumberBox*>(part))
    replaceText(*number, QString::number(below(2000) / 10.));
  else if (auto* const line = qobject_cast<QLineEdit*>(part); line && !line->isReadOnly())
    replaceText(*line, QString("n%1").arg(++_numNames));
  else if (qobject_cast<QPlainTextEdit*>(part))
    QTest::keyClicks(part, "note");
  else if (auto* const choice = qobject_cast<QComboBox*>(part))
    QTest::keyClick(choice, below(2) == 0 ? Qt::Key_Down : Qt::Key_Up);
  else if (auto* const box = qobject_cast<QCheckBox*>(part))
    box->click();
  else if (auto* const list = qobject_cast<QTreeView*>(part); list && list->model()->rowCount() > 0)
    list->setCurrentIndex(list->model()->index(below(list->model()->rowCount()), 0));
  else if (auto* const button = qobject_cast<QPushButton*>(part))
    if (QStringList{"New", "Delete", "Up", "Down"}.contains(button->text())) button->click();
  QApplication::processEvents();
}

QString copyExample(const TemporaryFolder& folder)
{
  std::filesystem::copy(std::filesystem::path(MIRELO_EXAMPLE).parent_path(), folder.file(""),
                        std::filesystem::copy_options::overwrite_existing | std::filesystem::copy_options::recursive);
  return QString::fromStdString(folder.file("specimen.sdf"));
}
