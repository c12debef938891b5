#include "viewer/viewerspinningmotion.h"

void ViewerSpinningMotion::step()
{
  _rotation[_axis] = turned(_rotation[_axis], getMotionAngle());
  emit rotationChanged(_rotation[0], _rotation[1], _rotation[2]);
}
