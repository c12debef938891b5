#include "model/poseowner.h"

#include <algorithm>

int PoseOwner::findPose(const Pose* pose) const
{
  const auto found = std::find(_poses.begin(), _poses.end(), pose);
  return found == _poses.end() ? -1 : static_cast<int>(found - _poses.begin());
}

void PoseOwner::removePose(const Pose* pose)
{
  if (const int i = findPose(pose); i >= 0) removePose(i);
}
