#include "viewer/viewerrandommotion.h"

ViewerRandomMotion::ViewerRandomMotion(QObject* parent, unsigned int seed) : ViewerMotion(parent), _random(seed) {}

void ViewerRandomMotion::step()
{
  for (int axis = 0; axis < 3; ++axis)
  {
    if (_random.uniformLF(0, 1) < flipProbability) _signs[axis] = -_signs[axis];
    _rotation[axis] = turned(_rotation[axis], _signs[axis] * getMotionAngle());
  }
  emit rotationChanged(_rotation[0], _rotation[1], _rotation[2]);
}
