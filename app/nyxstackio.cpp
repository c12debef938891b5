#include "app/nyxstackio.h"

#include "app/core/nyxpreferences.h"
#include "app/core/nyxsettings.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxbackups.h"
#include "app/nyxplaintext.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxstackerrordialog.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include <memory>

namespace
{
constexpr int maxNumWarnings = 8; // that fit a message box

QStringList toQStrings(const std::vector<std::string>& lines)
{
  QStringList strings;
  for (const std::string& line : lines) strings.append(QString::fromStdString(line));
  return strings;
}

/// What a message box says; names in it are shown word for word.
struct Message
{
  QString title;
  QString text;
  QString details;
  QMessageBox::StandardButtons buttons = QMessageBox::Ok;
  QMessageBox::StandardButton preferred = QMessageBox::Ok;
};

/// Shows a warning and gives the button that was pressed.
int warn(QWidget* parent, const Message& message)
{
  QMessageBox box(QMessageBox::Warning, message.title, message.text, message.buttons, parent);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(plainText(message.details));
  box.setDefaultButton(message.preferred);
  return box.exec();
}

QString withStackSuffix(const QString& filename)
{
  return QString::fromStdString(StackReader::withSuffix(filename.toStdString()));
}
} // namespace

void NYXStackIO::showMessage(const QString& text, int milliseconds) const
{
  if (_statusBar != nullptr) _statusBar->showMessage(text, milliseconds);
}

QString NYXStackIO::chooseStackFile()
{
  NYXSettings& settings = NYXSettings::settings();
  QFileDialog dialog(_parent, tr("Open stack"), settings.getInputDirectory(), "*.sdf");
  dialog.setObjectName("openStackDialog");
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFileMode(QFileDialog::ExistingFile);
  if (settings.getOpenStackDialogSize().isValid()) dialog.resize(settings.getOpenStackDialogSize());
  const bool isAccepted = dialog.exec() == QDialog::Accepted;
  settings.setOpenStackDialogSize(dialog.size());
  if (!isAccepted) return {};
  settings.setInputDirectory(dialog.directory().absolutePath());
  return dialog.selectedFiles().value(0);
}

void NYXStackIO::openStack()
{
  const QString filename = chooseStackFile();
  if (!filename.isEmpty()) openStack(filename);
}

void NYXStackIO::openStack(const QString& filename)
{
  if (filename.isEmpty())
  {
    warn(_parent, {tr("Error"), tr("Error: a stack file needs a name."), {}});
    return;
  }
  const QString file = QFileInfo(withStackSuffix(filename)).absoluteFilePath();
  auto stack = std::make_unique<NYXStack>();
  stack->setFilename(file);
  StackReader reader;
  if (_statusBar != nullptr) reader.addObserver(*_statusBar);
  reader.read(*stack, file.toStdString());

  if (reader.getNumFatalErrors() == 0 && !reader.hasReadStack())
  {
    warn(_parent, {tr("Error"), tr("Error: %1 is not a stack file: it holds no STACK statement.").arg(file), {}});
    return;
  }
  if (!reader.getLog().empty()) NYXStackErrorDialog(file, toQStrings(reader.getLog()), _parent).exec();
  if (reader.getNumFatalErrors() != 0) return;
  NYXStackServer::server().addStack(std::move(stack));
  NYXSettings::settings().addRecentFile(file);
}

void NYXStackIO::showWarnings(const QString& filename, const StackWriter& writer) const
{
  const QStringList lines = toQStrings(writer.getWarnings());
  if (lines.isEmpty()) return;
  warn(_parent, {tr("Saved with losses"), tr("%1 does not say all that the stack does.").arg(filename),
                 lines.mid(0, maxNumWarnings).join('\n')});
}

bool NYXStackIO::write(NYXStack& stack, const QString& filename, QString& reason)
{
  try
  {
    StackWriter writer;
    if (_statusBar != nullptr) writer.addObserver(*_statusBar);
    // Backups move on only when the new file is complete: failed saves cost none of them.
    writer.setBeforeReplace([&] { makeBackups(filename, NYXPreferences::getMaxNumBackups()); });
    writer.write(stack, filename.toStdString());
    showWarnings(filename, writer);
    return true;
  }
  catch (const Exception& error)
  {
    reason = QString::fromStdString(error.getWhat());
    return false;
  }
}

bool NYXStackIO::saveTo(NYXStack& stack, const QString& filename)
{
  showMessage(tr("Saving ") + filename);
  QString reason;
  if (!write(stack, filename, reason))
  {
    warn(_parent, {tr("Error"), tr("Error: cannot write to ") + filename, reason});
    showMessage({});
    return false;
  }
  if (filename != stack.getFilename()) stack.setFilename(filename);
  stack.setModified(false);
  NYXSettings::settings().addRecentFile(filename);
  showMessage(tr("Saved ") + filename, 2000);
  return true;
}

bool NYXStackIO::saveStack(NYXStack& stack)
{
  return stack.getFilename().isEmpty() ? saveStackAs(stack) : saveTo(stack, stack.getFilename());
}

bool NYXStackIO::saveStackAs(NYXStack& stack)
{
  NYXSettings& settings = NYXSettings::settings();
  const QString proposal = stack.getFilename().isEmpty()
                               ? settings.getOutputDirectory() + "/" + stack.displayName() + ".sdf"
                               : stack.getFilename();
  QFileDialog dialog(_parent, tr("Save stack as"), QFileInfo(proposal).path(), "*.sdf");
  dialog.setObjectName("saveStackDialog");
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix("sdf");
  dialog.selectFile(QFileInfo(proposal).fileName());
  if (dialog.exec() != QDialog::Accepted) return false;
  settings.setOutputDirectory(dialog.directory().absolutePath());
  const QString chosen = dialog.selectedFiles().value(0);
  const QString file = withStackSuffix(chosen);
  return mayReplace(chosen, file) && saveTo(stack, file);
}

/// The dialog has asked about the file that was typed; asks about the one that the suffix makes of it.
bool NYXStackIO::mayReplace(const QString& typed, const QString& file) const
{
  if (file == typed || !QFileInfo::exists(file)) return true;
  return warn(_parent, {tr("Save stack as"),
                        tr("%1 exists already. Replace it?").arg(file),
                        {},
                        QMessageBox::Yes | QMessageBox::No,
                        QMessageBox::No}) == QMessageBox::Yes;
}

bool NYXStackIO::writeBeforeClosing(NYXStack& stack)
{
  if (stack.getFilename().isEmpty()) return saveStackAs(stack);
  for (QString reason; !write(stack, stack.getFilename(), reason);)
  {
    const int answer =
        warn(_parent, {tr("Write error"),
                       tr("Stack ") + stack.displayName() + tr(":\nCould not write file ") + stack.getFilename(),
                       reason, QMessageBox::Retry | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Retry});
    if (answer != QMessageBox::Retry) return answer == QMessageBox::Discard;
  }
  return true;
}

bool NYXStackIO::closeStack(NYXStack& stack)
{
  if (stack.isModified())
  {
    const int answer =
        warn(_parent, {tr("Closing stack..."), tr("Stack \"") + stack.displayName() + tr("\" has been modified."),
                       tr("Ignore closes it without saving: its changes since the last save are lost."),
                       QMessageBox::Save | QMessageBox::Ignore | QMessageBox::Cancel, QMessageBox::Save});
    if (answer != QMessageBox::Save && answer != QMessageBox::Ignore) return false;
    if (answer == QMessageBox::Save && !writeBeforeClosing(stack)) return false;
  }
  NYXStackServer::server().removeStack(stack);
  return true;
}

bool NYXStackIO::closeAll()
{
  NYXStackServer& server = NYXStackServer::server();
  while (server.getNumStacks() > 0)
  {
    if (!closeStack(server.getStack(server.getNumStacks() - 1))) return false;
  }
  return true;
}
