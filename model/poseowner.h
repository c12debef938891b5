#pragma once

#include <vector>

class Pose;

/// Ordered list of poses, which it does not delete.
class PoseOwner
{
public:
  virtual ~PoseOwner() = default;

  int getNumPoses() const { return static_cast<int>(_poses.size()); }
  /// Pose i. Unchecked.
  Pose* getPose(int i) const { return _poses[static_cast<std::size_t>(i)]; }
  /// Index of this very pose, -1 when absent.
  int findPose(const Pose* pose) const;
  void addPose(Pose* pose) { _poses.push_back(pose); }
  /// Inserts a pose before pose i. Unchecked.
  void insertPose(Pose* pose, int i) { _poses.insert(_poses.begin() + i, pose); }
  /// Takes pose i off the list. Unchecked.
  void removePose(int i) { _poses.erase(_poses.begin() + i); }
  /// Nothing happens when the pose is not listed.
  void removePose(const Pose* pose);

protected:
  PoseOwner() = default;
  PoseOwner(const PoseOwner&) = default;
  PoseOwner& operator=(const PoseOwner&) = default;

private:
  std::vector<Pose*> _poses;
};
