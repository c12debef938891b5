#include "app/core/actions/nyxposeinsertiondeletionaction.h"

#include "app/core/nyxstack.h"

NYXPoseInsertionDeletionAction::NYXPoseInsertionDeletionAction(NYXStack& stack, std::unique_ptr<Pose> pose)
  : NYXStackAction(stack), _mode(Insertion), _pose(pose.get()), _owned(std::move(pose))
{
  _pose->setStack(&stack);
}

NYXPoseInsertionDeletionAction::NYXPoseInsertionDeletionAction(Pose& pose)
  : NYXStackAction(openStack(pose.getStack(), "NYXPoseInsertionDeletionAction::NYXPoseInsertionDeletionAction(Pose&)")),
    _mode(Deletion),
    _pose(&pose)
{
}

NYXPoseInsertionDeletionAction::~NYXPoseInsertionDeletionAction() = default;

void NYXPoseInsertionDeletionAction::apply()
{
  _place = _mode == Insertion ? getStack().getNumPoses() : getStack().findPose(_pose);
  _mode == Insertion ? putIn() : takeOut();
  NYXStackAction::apply();
}

void NYXPoseInsertionDeletionAction::revert()
{
  _mode == Insertion ? takeOut() : putIn();
  NYXStackAction::revert();
}

void NYXPoseInsertionDeletionAction::putIn()
{
  getStack().insertPose(_owned.get(), _place);
  static_cast<void>(_owned.release()); // it belongs to the stack
}

void NYXPoseInsertionDeletionAction::takeOut()
{
  getStack().removePose(_place);
  _owned.reset(_pose);
}

QString NYXPoseInsertionDeletionAction::description(bool isDetailed) const
{
  const QString text = _mode == Insertion ? tr("Pose creation") : tr("Pose deletion");
  return isDetailed ? text + ": " + QString::fromStdString(_pose->getName()) : text;
}

void NYXPoseInsertionDeletionAction::postEvents()
{
  if (_owned)
    post(NYXPoseDeleteEvent(*_pose));
  else
    post(NYXPoseCreateEvent(*_pose));
}

bool NYXPoseInsertionDeletionAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXPoseInsertionDeletionAction&>(other);
  return _pose == action._pose && _mode == action._mode;
}
