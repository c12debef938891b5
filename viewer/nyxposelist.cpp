#include "viewer/nyxposelist.h"

#include "app/core/actions/nyxposeinsertiondeletionaction.h"
#include "app/core/errortext.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "model/pose.h"
#include "viewer/viewercanvasgl.h"

#include <QHBoxLayout>
#include <QInputDialog>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

NYXPoseList::NYXPoseList(NYXStack& stack, ViewerCanvasGL& canvas, QWidget* parent)
  : QWidget(parent), _stack(stack), _canvas(canvas), _list(new QListWidget(this))
{
  _list->setObjectName("poses");
  _list->setToolTip(tr("Saved poses; a double click applies one"));
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(_list, 1);
  auto* const buttons = new QHBoxLayout;
  layout->addLayout(buttons);
  buttons->addWidget(
      addButton(tr("Save pose"), tr("Save the pose that is shown in the stack"), &NYXPoseList::savePose));
  _apply = addButton(tr("Apply"), tr("Show the scene in the selected pose"), &NYXPoseList::applyPose);
  _delete = addButton(tr("Delete"), tr("Delete the selected pose; Undo restores it"), &NYXPoseList::deletePose);
  buttons->addWidget(_apply);
  buttons->addWidget(_delete);
  connect(_list, &QListWidget::itemDoubleClicked, this, &NYXPoseList::applyPose);
  connect(_list, &QListWidget::currentRowChanged, this, &NYXPoseList::updateButtons);
  NYXEventServer::attach(*this);
  refresh();
}

NYXPoseList::~NYXPoseList()
{
  NYXEventServer::detach(*this);
}

QPushButton* NYXPoseList::addButton(const QString& text, const QString& toolTip, void (NYXPoseList::*slot)())
{
  auto* const button = new QPushButton(text, this);
  button->setObjectName(text);
  button->setToolTip(toolTip);
  connect(button, &QPushButton::clicked, this, slot);
  return button;
}

void NYXPoseList::refresh()
{
  const int row = _list->currentRow();
  _list->clear();
  for (int i = 0; i < _stack.getNumPoses(); ++i) _list->addItem(QString::fromStdString(_stack.getPose(i)->getName()));
  _list->setCurrentRow(qMin(row, _list->count() - 1));
  updateButtons();
}

void NYXPoseList::updateButtons()
{
  _apply->setEnabled(currentPose() != nullptr);
  _delete->setEnabled(currentPose() != nullptr);
}

Pose* NYXPoseList::currentPose() const
{
  const int row = _list->currentRow();
  return row >= 0 && row < _stack.getNumPoses() ? _stack.getPose(row) : nullptr;
}

QString NYXPoseList::freeName() const
{
  for (int number = _stack.getNumPoses() + 1;; ++number)
    if (const QString name = tr("Pose %1").arg(number); _list->findItems(name, Qt::MatchExactly).isEmpty()) return name;
}

void NYXPoseList::savePose()
{
  bool isAccepted = false;
  const QString name =
      QInputDialog::getText(this, tr("Save pose"), tr("Name:"), QLineEdit::Normal, freeName(), &isAccepted);
  if (isAccepted && !name.isEmpty()) savePose(name);
}

bool NYXPoseList::savePose(const QString& name)
{
  auto pose = std::make_unique<Pose>(_canvas.getPose());
  try
  {
    pose->setName(name.toStdString());
  }
  catch (const Exception& error)
  {
    emit messageShown(errorText(error));
    return false;
  }
  _stack.history().pushStep(std::make_unique<NYXPoseInsertionDeletionAction>(_stack, std::move(pose)));
  _list->setCurrentRow(_list->count() - 1);
  return true;
}

void NYXPoseList::applyPose()
{
  if (const Pose* const pose = currentPose()) _canvas.setPose(*pose);
}

void NYXPoseList::deletePose()
{
  if (Pose* const pose = currentPose())
    _stack.history().pushStep(std::make_unique<NYXPoseInsertionDeletionAction>(*pose));
}

void NYXPoseList::poseCreateEvent(const NYXPoseCreateEvent& event)
{
  if (event.getPose().getStack() == &_stack) refresh();
}

void NYXPoseList::poseDeleteEvent(const NYXPoseDeleteEvent& event)
{
  if (event.getPose().getStack() == &_stack) refresh();
}
