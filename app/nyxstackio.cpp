#include "app/nyxstackio.h"

#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxeventbatch.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxproposedfilename.h"
#include "app/core/nyxsettings.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxbackups.h"
#include "app/nyxdialogs.h"
#include "app/nyximagefiles.h"
#include "app/nyxnames.h"
#include "app/nyxnewstackdialog.h"
#include "app/nyxnumberbox.h"
#include "app/nyxpluginrun.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstackerrordialog.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "model/io/stackwriterwarnings.h"
#include "model/stackcreation.h"
#include "model/stackslice.h"
#include "model/storabletext.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationwindow.h"
#include "slice/image/nyxfiledialog.h"
#include "slice/image/nyxplaintext.h"
#include "slice/image/nyxprogressrun.h"
#include "viewer/nyxrenderingvideo.h"
#include "viewer/nyxrenderingwindow.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace
{
constexpr int maxNumWarnings = 8; // that fit a message box
constexpr double leastSpacing = 1e-4, greatestSpacing = 1e6;

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
  box.setObjectName("warningDialog");
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(plainText(message.details));
  box.setDefaultButton(message.preferred);
  return box.exec();
}

/// The channel to take, none when the user cancels.
std::optional<int> chooseChannel(QWidget* parent, int numChannels)
{
  if (numChannels < 2) return 0;
  QInputDialog dialog(parent);
  dialog.setObjectName("channelDialog");
  dialog.setWindowTitle(QCoreApplication::translate("NYXStackIO", "Channel"));
  dialog.setLabelText(QCoreApplication::translate("NYXStackIO", "Channel, from 1 to %1:").arg(numChannels));
  dialog.setInputMode(QInputDialog::IntInput);
  dialog.setIntRange(1, numChannels);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.intValue() - 1;
}

/// The open stack of a file, whatever links lead to it; nullptr when it is not open.
NYXStack* stackOfFile(const QString& file)
{
  const QString canonical = QFileInfo(file).canonicalFilePath();
  const NYXStackServer& server = NYXStackServer::server();
  for (int i = 0; i < server.getNumStacks(); ++i)
  {
    const QString& other = server.getStack(i).getFilename();
    if (!other.isEmpty() && !canonical.isEmpty() && QFileInfo(other).canonicalFilePath() == canonical)
      return &server.getStack(i);
  }
  return nullptr;
}

/// The properties of a stack without slices, or with slices in the unit of the calibration, that gets it as default.
NYXStackProperties withCalibration(const NYXStack& stack, const PixelCalibration& calibration)
{
  NYXStackProperties properties(stack);
  const int scale = stack.getLengthUnit().getScale() - calibration.getLengthUnit().getScale();
  const auto factor = static_cast<float>(std::pow(10.0, scale));
  properties.defaultRelativePosition *= factor;
  properties.defaultSliceThickness *= factor;
  properties.defaultPixelCalibration = calibration;
  return properties;
}

QString withStackSuffix(const QString& filename)
{
  return QString::fromStdString(StackReader::withSuffix(filename.toStdString()));
}

/// In all windows: a drawing that is not finished would be lost without a question.
void finishTools(const NYXStack& stack)
{
  for (QWidget* widget : QApplication::topLevelWidgets())
  {
    const auto* const window = qobject_cast<NYXRootWindow*>(widget);
    if (window != nullptr && window->mediator().currentStack() == &stack) window->mediator().finishTool();
  }
}

/// What was recorded until now is encoded.
void finishVideo(const NYXStack& stack)
{
  const NYXRenderingWindow* const window = NYXRenderingWindow::find(stack);
  if (window != nullptr && window->video().isRecording()) window->video().stopVideo();
}

/// Asks in all windows what is to become of a registration that was not applied; later it could not be saved any more.
/// \return whether the stack may be closed
bool confirmRegistrations(const NYXStack& stack)
{
  return std::ranges::all_of(QApplication::topLevelWidgets(),
                             [&](QWidget* widget)
                             {
                               const auto* const window = qobject_cast<NYXRegistrationWindow*>(widget);
                               return window == nullptr || window->mediator().getStack() != &stack ||
                                      window->mediator().confirmLeaving();
                             });
}
} // namespace

/// False when the user cancelled, be it so late that the work is complete.
bool NYXStackIO::isDone(const QString& title, ProgressSubject& subject, const std::function<void()>& work) const
{
  return runWithProgress(_parent, title, subject, _statusBar, work) && !subject.isCancelled();
}

void NYXStackIO::showMessage(const QString& text, int milliseconds) const
{
  if (_statusBar != nullptr) _statusBar->showMessage(text, milliseconds);
}

QString NYXStackIO::chooseStackFile()
{
  NYXSettings& settings = NYXSettings::settings();
  NYXFileDialog dialog(_parent, "openStackDialog", tr("Open stack"));
  dialog.setNameFilter("*.sdf");
  dialog.setFileMode(QFileDialog::ExistingFile);
  if (settings.getOpenStackDialogSize().isValid()) dialog.resize(settings.getOpenStackDialogSize());
  const QStringList chosen = dialog.ask();
  settings.setOpenStackDialogSize(dialog.size());
  return chosen.value(0);
}

/// Says why the images of slices cannot be used. To be called while the error is being handled.
void NYXStackIO::showFormatError() const
{
  const QString reason = textOfCurrentError();
  QString filename;
  try
  {
    throw;
  }
  catch (const FileError& error)
  {
    filename = QString::fromStdString(error.getFilename());
  }
  catch (...) // names no file, as when the memory does not suffice
  {
  }
  warn(_parent,
       {tr("File format error"),
        filename.isEmpty() ? tr("The stack cannot be made.") : tr("%1 cannot be read.").arg(filename), reason});
}

/// The distance of neighbouring slices, which would all lie at one depth without one; none when the user cancels.
std::optional<float> NYXStackIO::askForSpacing(const LengthUnit& unit) const
{
  QDialog dialog(_parent);
  dialog.setObjectName("spacingDialog");
  dialog.setWindowTitle(tr("Slice spacing"));
  auto* const form = new QFormLayout(&dialog);
  form->addRow(new QLabel(tr("The images do not tell the distance between neighbouring slices."), &dialog));
  NYXNumberBox* const box = NYXNumberBox::addTo(*form, "spacing", tr("Distance"), tr("From a slice to the next one"));
  box->setRange(leastSpacing, greatestSpacing);
  box->setUnit(QString::fromStdString(unit.symbol()));
  box->setNumber(1);
  QDialogButtonBox* const buttons = createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  form->addRow(buttons);
  nameParts(dialog);
  box->selectAll();
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return static_cast<float>(box->getNumber());
}

void NYXStackIO::openNewStack(std::unique_ptr<NYXStack> stack, const QString& name)
{
  if (stack->getNumSlices() > 1 && stack->getDefaultSliceSpacing() == 0)
  {
    const std::optional<float> spacing = askForSpacing(stack->getLengthUnit());
    if (!spacing) return;
    stack->setDefaultSliceSpacing(*spacing);
  }
  if (isStorableName(name.toStdString())) stack->setName(name.toStdString());
  NYXStack& opened = NYXStackServer::server().addStack(std::move(stack));
  opened.setModified(true);
}

void NYXStackIO::newStack(const QStringList& proposed)
{
  NYXNewStackDialog dialog(_parent);
  dialog.addFiles(proposed);
  if (dialog.exec() != QDialog::Accepted) return;
  std::vector<std::string> files;
  for (const QString& file : dialog.getFiles()) files.push_back(file.toStdString());
  auto stack = std::make_unique<NYXStack>();
  ProgressSubject subject;
  const auto add = [&] { addImageFiles(*stack, files, dialog.usesFileCalibration(), subject); };
  try
  {
    if (!isDone(tr("New stack"), subject, add)) return;
    openNewStack(std::move(stack), QFileInfo(dialog.getFiles().first()).dir().dirName());
  }
  catch (...)
  {
    showFormatError();
  }
}

void NYXStackIO::newStackFromFile()
{
  NYXFileDialog dialog(_parent, "openImageStackDialog", tr("Open image stack"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setNameFilters({"Image stack: *.tif *.tiff *.TIF *.TIFF *.vm", "Confocal stack: *.lsm *.LSM"});
  dialog.rememberSize();
  const QStringList chosen = dialog.ask();
  if (!chosen.isEmpty()) newStackFromFile(chosen.first());
}

void NYXStackIO::newStackFromFile(const QString& filename)
{
  const std::string file = QFileInfo(filename).absoluteFilePath().toStdString();
  auto stack = std::make_unique<NYXStack>();
  try
  {
    ProgressSubject subject;
    // Finding the planes of a large file on a slow disk takes its time.
    const auto isRead = [&](const std::function<void()>& work)
    {
      const auto step = [&]
      {
        const ProgressStep reading(subject, tr("Reading %1").arg(QFileInfo(filename).fileName()).toStdString(), 1);
        work();
      };
      return isDone(tr("Open image stack"), subject, step);
    };
    int numChannels = 1;
    if (!isRead([&] { numChannels = numChannelsOf(file); })) return;
    const std::optional<int> channel = chooseChannel(_parent, numChannels);
    if (!channel || !isRead([&] { addPlanesOf(*stack, file, *channel); })) return;
    openNewStack(std::move(stack), QFileInfo(filename).completeBaseName());
  }
  catch (...)
  {
    showFormatError();
  }
}

void NYXStackIO::insertSlices(NYXStack& stack, int place)
{
  const QStringList chosen = chooseImageFiles(_parent, "*.tif *.TIF *.img");
  if (chosen.isEmpty()) return;
  std::vector<std::string> files;
  for (const QString& file : chosen) files.push_back(file.toStdString());
  ProgressSubject subject;
  NewSlices made;
  try
  {
    const auto make = [&] { made = makeSlices(stack, files, true, subject); };
    if (isDone(tr("Insert slice"), subject, make)) insertSlices(stack, std::move(made), place);
  }
  catch (...)
  {
    showFormatError();
  }
}

void NYXStackIO::insertSlices(NYXStack& stack, NewSlices made, int place) const
{
  const bool hadNeighbours = stack.getNumSlices() > 1;
  NYXStackProperties properties = withCalibration(stack, made.defaultCalibration);
  if (!hadNeighbours && stack.getNumSlices() + made.slices.size() > 1 && properties.defaultRelativePosition == 0)
  {
    const std::optional<float> spacing = askForSpacing(made.defaultCalibration.getLengthUnit());
    if (!spacing) return;
    properties.defaultRelativePosition = *spacing;
  }
  const NYXEventBatch batch;
  NYXActionStep step(stack.history());
  for (std::unique_ptr<StackSlice>& slice : made.slices)
    step.push(std::make_unique<NYXSliceInsertionDeletionAction>(stack, std::move(slice), place++));
  auto defaults = std::make_unique<NYXStackPropertiesAction>(stack, std::move(properties));
  if (!defaults->isNull()) step.push(std::move(defaults));
}

NYXStack* NYXStackIO::openStack()
{
  const QString filename = chooseStackFile();
  return filename.isEmpty() ? nullptr : openStack(filename);
}

NYXStack* NYXStackIO::openStack(const QString& filename)
{
  if (filename.isEmpty())
  {
    warn(_parent, {tr("Error"), tr("Error: a stack file needs a name."), {}});
    return nullptr;
  }
  const QString file = QFileInfo(withStackSuffix(filename)).absoluteFilePath();
  if (NYXStack* const open = stackOfFile(file))
  {
    showMessage(tr("%1 is open already").arg(file), 5000);
    return open;
  }
  if (QFileInfo::exists(filename) && !QFileInfo::exists(file)) // no name that the user gave is missing
  {
    warn(_parent,
         {tr("Error"), tr("Error: %1 is not a stack file.").arg(filename),
          tr("Stack files end in .sdf. \"New stack\" makes a stack of image files, \"New stack from file\" one of "
             "the planes of a file.")});
    return nullptr;
  }
  try
  {
    return readStack(file);
  }
  catch (...) // what the reader does not note in its log, as when the memory does not suffice
  {
    warn(_parent, {tr("Error"), tr("Error: %1 cannot be opened.").arg(file), textOfCurrentError()});
    return nullptr;
  }
}

NYXStack* NYXStackIO::readStack(const QString& file)
{
  auto stack = std::make_unique<NYXStack>();
  stack->setFilename(file);
  StackReader reader;
  const auto read = [&] { reader.read(*stack, file.toStdString()); };
  if (!isDone(tr("Opening stack"), reader, read))
  {
    showMessage(tr("Opening canceled"), 2000);
    return nullptr;
  }
  if (reader.getNumFatalErrors() == 0 && !reader.hasReadStack())
  {
    warn(_parent, {tr("Error"), tr("Error: %1 is not a stack file: it holds no STACK statement.").arg(file), {}});
    return nullptr;
  }
  if (!reader.getLog().empty())
    NYXStackErrorDialog(file, toQStrings(reader.getLog()), reader.getNumFatalErrors() == 0, _parent).exec();
  if (reader.getNumFatalErrors() != 0) return nullptr;
  stack->noteFile(reader.getLog().empty());
  NYXSettings::settings().addRecentFile(file);
  return &NYXStackServer::server().addStack(std::move(stack));
}

/// Losses that were accepted, or told at the last save, are not told again.
void NYXStackIO::showWarnings(NYXStack& stack, const QString& filename, const StackWriter& writer) const
{
  QStringList lines = toQStrings(writer.getWarnings());
  QStringList told = lines;
  for (const QString& known : stack.getAcceptedLosses() + stack.getToldWarnings()) lines.removeOne(known);
  for (const QString& later : lines.mid(maxNumWarnings)) told.removeOne(later); // at the next save
  stack.setToldWarnings(told);
  if (lines.isEmpty()) return;
  warn(_parent, {tr("Saved with losses"), tr("%1 does not say all that the stack does.").arg(filename),
                 lines.mid(0, maxNumWarnings).join('\n')});
}

NYXStackIO::Result NYXStackIO::write(NYXStack& stack, const QString& filename, QString& reason)
{
  try
  {
    StackWriter writer;
    // Backups move on only when the new file is complete: failed saves cost none of them.
    writer.setBeforeReplace([&] { makeBackups(filename, NYXPreferences::getMaxNumBackups()); });
    const auto write = [&] { writer.write(stack, filename.toStdString()); };
    if (!runWithProgress(_parent, tr("Saving stack"), writer, _statusBar, write)) return Result::Canceled;
    showWarnings(stack, filename, writer);
    return Result::Done;
  }
  catch (...)
  {
    reason = textOfCurrentError();
    return Result::Failed;
  }
}

/// Lengths that the file cannot hold in the stack's unit: asks once whether the stack is converted to a finer one.
/// False when the user cancels.
bool NYXStackIO::settleLosses(NYXStack& stack) const
{
  if (!stack.getAcceptedLosses().isEmpty()) return true;
  LengthLosses losses;
  try
  {
    losses = lengthLosses(stack);
  }
  catch (const ValueError&)
  {
    return true; // the writer will say why it refuses
  }
  if (losses.lines.empty()) return true;
  const QString unit = QString::fromStdString(stack.getLengthUnit().name());
  QMessageBox box(QMessageBox::Warning, tr("Saving stack"),
                  tr("Stack files hold two decimals of each length, fewer than this stack has in %1.").arg(unit),
                  QMessageBox::Cancel, _parent);
  box.setObjectName("lossesDialog");
  box.setTextFormat(Qt::PlainText);
  const QStringList lines = toQStrings(losses.lines);
  const int numMore = lines.size() - maxNumWarnings;
  box.setInformativeText(plainText(lines.mid(0, maxNumWarnings).join('\n') +
                                   (numMore > 0 ? tr("\nand %1 more").arg(numMore) : QString())));
  QAbstractButton* convert = nullptr;
  if (losses.keepingUnit)
    convert = box.addButton(tr("Convert to %1").arg(QString::fromStdString(losses.keepingUnit->name())),
                            QMessageBox::AcceptRole);
  const QAbstractButton* keep = box.addButton(tr("Keep %1, lose digits").arg(unit), QMessageBox::DestructiveRole);
  if (convert) box.setDefaultButton(qobject_cast<QPushButton*>(convert));
  box.exec();
  if (box.clickedButton() == keep)
  {
    stack.setAcceptedLosses(lines);
    return true;
  }
  if (!convert || box.clickedButton() != convert) return false;
  try
  {
    stack.history().pushStep(std::make_unique<NYXLengthUnitAction>(stack, losses.keepingUnit->getScale()));
  }
  catch (const Exception& error) // as for a locked slice
  {
    warn(_parent, {tr("Saving stack"), tr("The stack cannot be converted."), QString::fromStdString(error.getWhat())});
    return false;
  }
  return settleLosses(stack); // some digits no unit keeps
}

/// Asks before a save over a file of which something is not in the stack.
bool NYXStackIO::mayOverwrite(const NYXStack& stack, const QString& filename) const
{
  if (filename != stack.getFilename() || !QFileInfo::exists(filename)) return true;
  QString question;
  if (stack.hasFileChanged())
    question = tr("%1 has changed on disk since it was read or saved here.").arg(filename);
  else if (!stack.getFileState().wasReadWhole)
    question = tr("Not all of %1 could be read.").arg(filename);
  if (question.isEmpty()) return true;
  return warn(_parent, {tr("Saving stack"), question,
                        tr("Saving replaces it by what this window shows; the former file is kept as a backup if "
                           "backups are on."),
                        QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel}) == QMessageBox::Save;
}

bool NYXStackIO::saveTo(NYXStack& stack, const QString& filename)
{
  if (!mayOverwrite(stack, filename) || !settleLosses(stack)) return false;
  showMessage(tr("Saving ") + filename);
  QString reason;
  const Result result = write(stack, filename, reason);
  if (result == Result::Failed) warn(_parent, {tr("Error"), tr("Error: cannot write to ") + filename, reason});
  if (result != Result::Done)
  {
    showMessage(result == Result::Canceled ? tr("Saving canceled") : QString(), 2000);
    return false;
  }
  if (filename != stack.getFilename()) stack.setFilename(filename);
  stack.noteFile(true);
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
  const QFileInfo former(stack.getFilename());
  const bool isNew = stack.getFilename().isEmpty();
  NYXFileDialog dialog(_parent, "saveStackDialog", tr("Save stack as"), NYXFileDialog::Writing);
  dialog.setNameFilter("*.sdf");
  dialog.setDefaultSuffix("sdf");
  if (!isNew) dialog.setDirectory(former.path());
  dialog.selectFile(isNew ? proposedFileName(stack.displayName()) + ".sdf" : former.fileName());
  dialog.rememberSize();
  const QStringList chosen = dialog.ask();
  if (chosen.isEmpty()) return false;
  const QString file = withStackSuffix(chosen.first());
  return mayReplace(chosen.first(), file) && saveTo(stack, file);
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
  if (!mayOverwrite(stack, stack.getFilename()) || !settleLosses(stack)) return false;
  for (QString reason;;)
  {
    const Result result = write(stack, stack.getFilename(), reason);
    if (result != Result::Failed) return result == Result::Done;
    const int answer =
        warn(_parent, {tr("Write error"),
                       tr("Stack ") + stack.displayName() + tr(":\nCould not write file ") + stack.getFilename(),
                       reason, QMessageBox::Retry | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Retry});
    if (answer != QMessageBox::Retry) return answer == QMessageBox::Discard;
  }
}

bool NYXStackIO::closeStack(NYXStack& stack)
{
  finishTools(stack);
  if (!confirmRegistrations(stack)) return false;
  if (stack.isModified())
  {
    const int answer =
        warn(_parent, {tr("Closing stack..."), tr("Stack \"") + stack.displayName() + tr("\" has been modified."),
                       tr("Ignore closes it without saving: its changes since the last save are lost."),
                       QMessageBox::Save | QMessageBox::Ignore | QMessageBox::Cancel, QMessageBox::Save});
    if (answer != QMessageBox::Save && answer != QMessageBox::Ignore) return false;
    if (answer == QMessageBox::Save && !writeBeforeClosing(stack)) return false;
  }
  finishVideo(stack);
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
