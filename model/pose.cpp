#include "model/pose.h"

#include "model/stack.h"
#include "model/storabletext.h"

namespace
{
Pose turned(int xRotation, int yRotation)
{
  Pose pose;
  pose.setXRotation(xRotation);
  pose.setYRotation(yRotation);
  return pose;
}
} // namespace

Pose Pose::canonicalPose1()
{
  return turned(0, 180);
}

Pose Pose::canonicalPose2()
{
  return turned(0, 90);
}

Pose Pose::canonicalPose3()
{
  return turned(90, 0);
}

Pose Pose::reverseCanonicalPose2()
{
  return turned(0, -90);
}

Pose Pose::reverseCanonicalPose3()
{
  return turned(-90, 0);
}

void Pose::setName(const std::string& name)
{
  requireStorableName(name, "void Pose::setName(const std::string&)");
  _name = name;
}

void Pose::attach()
{
  if (_stack && _stack->findPose(this) < 0) _stack->addPose(this);
}

void Pose::detach()
{
  if (_stack) _stack->removePose(this);
}
