#include "viewer/nyxrenderingwindow.h"

#include "app/core/actions/nyxsliceaction.h"
#include "app/core/errortext.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxproposedfilename.h"
#include "app/core/nyxstack.h"
#include "geometry/outputfile.h"
#include "model/model.h"
#include "model/stackslice.h"
#include "slice/image/nyxfiledialog.h"
#include "viewer/landmarksdelegate.h"
#include "viewer/nyxcreatevideodialog.h"
#include "viewer/nyxrenderingvideo.h"
#include "viewer/nyxsceneimages.h"
#include "viewer/nyxscenemodels.h"
#include "viewer/nyxsnapshotdialog.h"
#include "viewer/nyxsurfaceexportdialog.h"
#include "viewer/viewercanvasgl.h"
#include "viewer/viewermediator.h"
#include "viewer/viewerrandommotion.h"

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSpinBox>
#include <QStatusBar>

namespace
{
constexpr int messageMilliseconds = 5000;
}

NYXRenderingWindow* NYXRenderingWindow::find(const NYXStack& stack)
{
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (auto* const window = qobject_cast<NYXRenderingWindow*>(widget);
        window != nullptr && &window->_stack == &stack && !window->_isClosed)
      return window;
  return nullptr;
}

NYXRenderingWindow& NYXRenderingWindow::showFor(NYXStack& stack, int slice)
{
  NYXRenderingWindow* window = find(stack);
  if (window == nullptr) window = new NYXRenderingWindow(stack, slice);
  window->show();
  window->raise();
  window->activateWindow();
  return *window;
}

NYXRenderingWindow::~NYXRenderingWindow()
{
  NYXEventServer::detach(*this);
  delete _video;
  delete _models; // before the canvas, which holds what the painters keep
  delete _images;
}

void NYXRenderingWindow::showTitle()
{
  setWindowTitle(tr("Mirelo 3D - %1").arg(_stack.displayName()));
}

void NYXRenderingWindow::showMessage(const QString& text)
{
  _statusBar->showMessage(text, messageMilliseconds);
}

void NYXRenderingWindow::followModels()
{
  connect(_models, &NYXSceneModels::runningChanged, this,
          [this](bool isRunning)
          {
            _progress->setValue(0);
            _progress->setVisible(isRunning);
            _cancel->setVisible(isRunning);
            if (isRunning) _statusBar->showMessage(tr("Reconstructing models..."));
          });
  connect(_models, &NYXSceneModels::progressChanged, _progress,
          [this](double share) { _progress->setValue(qRound(share * _progress->maximum())); });
  connect(_models, &NYXSceneModels::updated, this, &NYXRenderingWindow::showProblems);
  connect(_models, &NYXSceneModels::updated, _images, &NYXSceneImages::addPainters);
  connect(_models, &NYXSceneModels::modelsChanged, this, &NYXRenderingWindow::showEmptyNote);
  connect(_models, &NYXSceneModels::unitChanged, &_mediator->landmarks(), &LandmarksDelegate::scale);
  connect(_models, &NYXSceneModels::unitChanged, this, [this] { refreshImages(&_stack); });
  connect(_images, &NYXSceneImages::imagesChanged, this, &NYXRenderingWindow::showEmptyNote);
  connect(_cancel, &QPushButton::clicked, _models, &NYXSceneModels::cancel);
}

void NYXRenderingWindow::showProblems(const QString& error)
{
  int numProblems = 0;
  for (int i = 0; i < _stack.getNumModels(); ++i) numProblems += !_models->problemOf(*_stack.getModel(i)).isEmpty();
  if (!error.isEmpty())
    _statusBar->showMessage(error);
  else if (_models->isStale() && !_models->isRunning())
    _statusBar->showMessage(tr("Reconstruction canceled; Rebuild shows the models as they are"));
  else if (numProblems > 0)
    _statusBar->showMessage(
        tr("%n models are not drawn as they should be; the list of models says why", nullptr, numProblems));
  else
    _statusBar->clearMessage(); // for the hint
  showEmptyNote();
}

/// Which models have nothing to show, and why, when nothing is drawn.
void NYXRenderingWindow::showEmptyNote()
{
  bool isEmpty = true;
  for (const PainterGL<float>* painter : _canvas->getPainters()) isEmpty = isEmpty && !painter->isVisible();
  _emptyNote->setVisible(isEmpty && !_models->isRunning());
  if (!isEmpty) return;
  QStringList lines = {_stack.getNumModels() == 0 ? tr("The stack has no models yet") : tr("Nothing to show")};
  for (int i = 0; i < _stack.getNumModels() && i < 10; ++i)
  {
    const Model& model = *_stack.getModel(i);
    const QString problem = _models->isShown(model) ? _models->problemOf(model) : tr("it is hidden");
    if (!problem.isEmpty()) lines.append(QString::fromStdString(model.getName()) + ": " + problem);
  }
  _emptyNote->setText(lines.join('\n'));
  _emptyNote->adjustSize();
  _emptyNote->move((_canvas->width() - _emptyNote->width()) / 2, (_canvas->height() - _emptyNote->height()) / 2);
}

void NYXRenderingWindow::setCurrentSlice(int slice)
{
  if (slice >= 0) _slice->setValue(slice + 1);
}

void NYXRenderingWindow::rebuild()
{
  _models->rebuild();
}

void NYXRenderingWindow::warn(const QString& title, const QString& text)
{
  QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, this);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

bool NYXRenderingWindow::saveSnapshot(const QString& filename, int scale, bool isTransparent, bool isCropped)
{
  try
  {
    const QImage image =
        isCropped ? _canvas->croppedSnapshot(scale, isTransparent) : _canvas->snapshot(scale, isTransparent);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG"))
      throw FileWriteError("bool NYXRenderingWindow::saveSnapshot(...)", "Cannot make a PNG picture");
    OutputFile file(QFile::encodeName(filename).toStdString(), true, "bool NYXRenderingWindow::saveSnapshot(...)");
    file.stream().write(bytes.constData(), bytes.size());
    file.commit();
  }
  catch (...)
  {
    warn(tr("Snapshot"), handledErrorText());
    return false;
  }
  showMessage(tr("Saved %1").arg(filename));
  return true;
}

void NYXRenderingWindow::takeSnapshot()
{
  const QSize size = _canvas->size() * _canvas->devicePixelRatioF();
  NYXSnapshotDialog dialog(size, qMin(_canvas->largestScale(), 16), this);
  if (dialog.exec() != QDialog::Accepted) return;
  NYXFileDialog files(this, "snapshotFileDialog", tr("Save snapshot"), NYXFileDialog::Writing);
  files.setNameFilter("*.png");
  files.selectFile(proposedFileName(_stack.displayName()) + ".png");
  files.rememberSize();
  const QStringList chosen = files.ask();
  if (!chosen.isEmpty()) saveSnapshot(chosen.first(), dialog.scale(), dialog.isTransparent(), dialog.isCropped());
}

void NYXRenderingWindow::recordVideo()
{
  if (_video->isRecording()) return _video->stopVideo();
  _record->setChecked(false);
  if (!_video->checkEncoder()) return;
  NYXCreateVideoDialog dialog(this);
  if (dialog.exec() != QDialog::Accepted) return;
  const NYXVideoSettings settings = dialog.settings();
  if (QFileInfo::exists(settings.output) && !confirmOverwrite({QFile::encodeName(settings.output).toStdString()}))
    return;
  if (settings.isCircular) _mediator->randomMotion().setActive(false); // the scene turns in one way only
  _video->startVideo(settings);
}

bool NYXRenderingWindow::confirmOverwrite(const std::vector<std::string>& filenames)
{
  const auto count = static_cast<int>(filenames.size());
  QString text = tr("%1 exists.").arg(QFile::decodeName(filenames.front().c_str()));
  if (count > 1) text += " " + tr("So do %n others.", nullptr, count - 1);
  QMessageBox box(QMessageBox::Question, tr("File exists"),
                  text + "\n" + (count > 1 ? tr("Replace them?") : tr("Replace it?")), QMessageBox::Cancel, this);
  box.setTextFormat(Qt::PlainText);
  const QPushButton* const replace = box.addButton(tr("Replace"), QMessageBox::AcceptRole);
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  return box.clickedButton() == static_cast<const QAbstractButton*>(replace);
}

void NYXRenderingWindow::stackCloseEvent(const NYXStackCloseEvent& event)
{
  if (&event.getStack() != &_stack) return;
  hide();
  delete this; // nothing of it may outlive the stack
}

void NYXRenderingWindow::stackNameEvent(const NYXStackNameEvent&)
{
  showTitle();
}

void NYXRenderingWindow::stackFileNameEvent(const NYXStackFileNameEvent&)
{
  showTitle();
}

void NYXRenderingWindow::refreshImages(const Stack* stack)
{
  if (stack != &_stack) return;
  _slice->setRange(1, qMax(1, _stack.getNumSlices()));
  const bool isUnitShown = _models->unit() == QString::fromStdString(_stack.getLengthUnit().symbol());
  if (isUnitShown) _images->refresh(); // else they follow with the models
}

void NYXRenderingWindow::stackRegistrationEvent(const NYXStackRegistrationEvent& event)
{
  refreshImages(&event.getStack());
}

void NYXRenderingWindow::stackSliceSpacingEvent(const NYXStackSliceSpacingEvent& event)
{
  refreshImages(&event.getStack());
}

void NYXRenderingWindow::stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event)
{
  refreshImages(&event.getStack());
}

void NYXRenderingWindow::sliceSpacingEvent(const NYXSliceSpacingEvent& event)
{
  refreshImages(event.getSlice().getStack());
}

void NYXRenderingWindow::sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event)
{
  refreshImages(event.getSlice().getStack());
}

void NYXRenderingWindow::sliceNameEvent(const NYXSliceNameEvent& event)
{
  if (event.getSlice().getStack() == &_stack) _images->renameSlice(event.getSlice());
}

/// Other changes of slices have events of their own.
void NYXRenderingWindow::processSliceAction(NYXSliceAction& action)
{
  if (action.changesPlaces()) refreshImages(&action.getStack());
}

void NYXRenderingWindow::closeEvent(QCloseEvent* event)
{
  if (_video->isRecording()) _video->stopVideo();
  event->accept();
  _isClosed = true;
  deleteLater();
}

void NYXRenderingWindow::moveEvent(QMoveEvent* event)
{
  QWidget::moveEvent(event);
  if (_isPlaced && isVisible()) QSettings().setValue("renderingWindow/pos", pos());
}

void NYXRenderingWindow::resizeEvent(QResizeEvent* event)
{
  QWidget::resizeEvent(event);
  showEmptyNote();
  if (_isPlaced && isVisible()) QSettings().setValue("renderingWindow/size", size());
}
