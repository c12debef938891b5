#include "slice/nyxsliceeditwidgetmediatorsnakedelegate.h"

#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/nyxslicelocks.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyxplaintext.h"
#include "slice/image/nyxprogressrun.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsnakedialog.h"
#include "slice/nyxsnakerun.h"

#include <QKeyEvent>
#include <QMessageBox>
#include <QMetaObject>

#include <algorithm>

NYXSliceEditWidgetMediatorSnakeDelegate::NYXSliceEditWidgetMediatorSnakeDelegate(NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

NYXSliceEditWidgetMediatorSnakeDelegate::~NYXSliceEditWidgetMediatorSnakeDelegate() = default;

ModelItem* NYXSliceEditWidgetMediatorSnakeDelegate::selectedContour() const
{
  const std::vector<ModelItem*> items = slice().getSelectedItems();
  const auto contour = std::find_if(items.begin(), items.end(), [](const ModelItem* item) { return item->isClosed(); });
  return contour == items.end() ? nullptr : *contour;
}

void NYXSliceEditWidgetMediatorSnakeDelegate::activate()
{
  if (isActive() || !editMediator().isEditable()) return;
  ModelItem* const item = selectedContour();
  if (item == nullptr) return;
  if (!canvas().getImageProxy().hasImage())
  {
    QMessageBox::information(&editMediator().window(), tr("Run Snake"), missingImageText());
    return;
  }
  _item = item;
  NYXSliceEditWidgetMediatorDelegate::activate();
  const Model& model = *item->getModel();
  _dialog =
      new NYXSnakeDialog(model.hasSnakeConfig() ? model.getSnakeConfig() : SnakeConfig(), &editMediator().window());
  _dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(_dialog, &QDialog::accepted, this, &NYXSliceEditWidgetMediatorSnakeDelegate::apply);
  connect(_dialog, &QDialog::rejected, this, &NYXSliceEditWidgetMediatorSnakeDelegate::cancel);
  placeBeside(*item, *_dialog);
  _dialog->show();
}

void NYXSliceEditWidgetMediatorSnakeDelegate::deactivate()
{
  closeDialog();
  _item = nullptr;
  if (_moving) editCanvas().setExtraItem(nullptr);
  _moving.reset();
  NYXSliceEditWidgetMediatorDelegate::deactivate();
}

void NYXSliceEditWidgetMediatorSnakeDelegate::closeDialog()
{
  if (!_dialog) return;
  _dialog->disconnect(this);
  _dialog->close();
  _dialog = nullptr;
}

void NYXSliceEditWidgetMediatorSnakeDelegate::cancel()
{
  if (_run != nullptr) _run->subject().cancel();
  deactivate();
}

void NYXSliceEditWidgetMediatorSnakeDelegate::keyPressEvent(QKeyEvent& event)
{
  if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
    apply();
  else
    event.ignore();
}

void NYXSliceEditWidgetMediatorSnakeDelegate::apply()
{
  if (!isActive() || !_dialog) return;
  _item->getModel()->setSnakeConfig(_dialog->config());
  closeDialog();
  // The dialog is not yet done with its button, and the snake lets other events come.
  QMetaObject::invokeMethod(this, &NYXSliceEditWidgetMediatorSnakeDelegate::runSnake, Qt::QueuedConnection);
}

void NYXSliceEditWidgetMediatorSnakeDelegate::runSnake()
{
  if (!isActive() || _dialog || _run != nullptr) return; // given up meanwhile
  if (!canvas().getImageProxy().hasImage()) return deactivate();
  NYXSnakeRun snakeRun(_item->getModel()->getSnakeConfig(), stack(), *_item, canvas().getImageProxy().getImage());
  _moving = std::make_unique<ModelItem>(_item->getModel(), &slice());
  editCanvas().setExtraItem(_moving.get());
  const bool isDone = run(snakeRun) && isActive();
  if (isDone) pushResults(snakeRun);
  deactivate();
  if (isDone) tellResult(snakeRun);
}

bool NYXSliceEditWidgetMediatorSnakeDelegate::run(NYXSnakeRun& run)
{
  run.setObserver(
      [this](const Vertices<int>& vertices)
      {
        QMetaObject::invokeMethod(
            this, [this, vertices] { showMoving(vertices); }, Qt::QueuedConnection);
      });
  const NYXSliceLocks locks(editMediator(), run.slices());
  _run = &run;
  bool isDone = false;
  try
  {
    isDone = runWithProgress(&editMediator().window(), tr("Run Snake"), run.subject(), nullptr, [&run] { run.run(); });
  }
  catch (const Exception& error)
  {
    QMessageBox::warning(&editMediator().window(), tr("Error"), plainText(QString::fromStdString(error.getWhat())));
  }
  _run = nullptr;
  return isDone;
}

void NYXSliceEditWidgetMediatorSnakeDelegate::showMoving(const Vertices<int>& vertices)
{
  if (!_moving || _run == nullptr) return; // news of a run that has ended
  _moving->setVertices(vertices);
  canvas().update();
}

/// One step: of the slice, or of the stack when the snake went on to other slices.
void NYXSliceEditWidgetMediatorSnakeDelegate::pushResults(const NYXSnakeRun& run)
{
  const std::vector<Vertices<int>>& results = run.results();
  const std::vector<StackSlice*> slices = run.slices();
  std::vector<std::unique_ptr<NYXAction>> actions;
  for (std::size_t i = 0; i < results.size(); ++i)
  {
    if (i == 0)
    {
      actions.push_back(std::make_unique<NYXItemVerticesChangeAction>(*_item, results[i]));
      continue;
    }
    auto item = std::make_unique<ModelItem>(_item->getModel(), slices[i]);
    item->setVertices(results[i]);
    item->setClockwise(false);
    actions.push_back(std::make_unique<NYXItemCreationAction>(std::move(item)));
  }
  editMediator().pushStep(results.size() > 1 ? stack().history() : editMediator().history(), std::move(actions));
}

void NYXSliceEditWidgetMediatorSnakeDelegate::tellResult(const NYXSnakeRun& run)
{
  if (run.isUnfinished()) editMediator().showMessage(tr("The snake was still moving when its iterations were used up"));
  if (!run.isAborted() && !run.obstacle().empty())
    editMediator().showMessage(tr("The snake ended before slice %1, which is locked or has no image")
                                   .arg(QString::fromStdString(run.obstacle())));
  if (!run.isAborted()) return;
  QString text = "The snake has aborted. Suggestions:\n- change the original contour;\n- change the snake parameters.";
  if (!run.problem().empty()) text = QString::fromStdString(run.problem());
  if (!run.results().empty())
  {
    const std::string& slice = run.slices()[run.results().size()]->getName();
    text += "\n\n" + tr("It ended on slice %1; the contours before it are kept.").arg(QString::fromStdString(slice));
  }
  QMessageBox::warning(&editMediator().window(), tr("Run Snake"), plainText(text));
}
