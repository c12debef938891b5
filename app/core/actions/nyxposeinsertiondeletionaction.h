#pragma once

#include "app/core/actions/nyxstackaction.h"

#include <memory>

class Pose;

/// A pose comes into its stack or leaves it; the action owns it while it is out.
class NYXPoseInsertionDeletionAction : public NYXStackAction
{
public:
  enum Mode
  {
    Insertion,
    Deletion
  };

  /// Adds a pose at the end of the stack's list.
  NYXPoseInsertionDeletionAction(NYXStack& stack, std::unique_ptr<Pose> pose);
  /// Deletes a pose. \throw UsageError  the pose is in no open stack
  explicit NYXPoseInsertionDeletionAction(Pose& pose);
  ~NYXPoseInsertionDeletionAction() override;

  Pose& getPose() const { return *_pose; }
  Mode getMode() const { return _mode; }

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool touchesSlices() const override { return false; }

private:
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;
  void putIn();
  void takeOut();

  Mode _mode;
  Pose* _pose;
  int _place = -1; // in the stack's list
  std::unique_ptr<Pose> _owned;
};
