#include "viewer/viewermotion.h"

ViewerMotion::ViewerMotion(QObject* parent) : QObject(parent)
{
  _timer.setInterval(firstTimeout);
  connect(&_timer, &QTimer::timeout, this, &ViewerMotion::step);
}

void ViewerMotion::setRotation(float x, float y, float z)
{
  _rotation[0] = x;
  _rotation[1] = y;
  _rotation[2] = z;
}

void ViewerMotion::setActive(bool isActive)
{
  if (isActive == this->isActive()) return;
  isActive ? _timer.start() : _timer.stop();
  emit activeChanged(isActive);
}

float ViewerMotion::turned(float angle, float degrees)
{
  angle += degrees;
  if (angle > 180) return angle - 360;
  return angle < -180 ? angle + 360 : angle;
}
