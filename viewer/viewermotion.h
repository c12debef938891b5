#pragma once

#include <QObject>
#include <QTimer>

/// Turns the scene by itself, step by step while it is active.
class ViewerMotion : public QObject
{
  Q_OBJECT

public:
  bool isActive() const { return _timer.isActive(); }
  /// Degrees per step.
  float getMotionAngle() const { return _motionAngle; }
  void setMotionAngle(float degrees) { _motionAngle = degrees; }
  /// Milliseconds between two steps.
  int getTimeout() const { return _timer.interval(); }
  void setTimeout(int milliseconds) { _timer.setInterval(qMax(1, milliseconds)); }
  /// The angles about X, Y and Z from which the next step goes on.
  void setRotation(float x, float y, float z);

public slots:
  void setActive(bool isActive);
  void toggle() { setActive(!isActive()); }
  virtual void step() = 0;

signals:
  void rotationChanged(float x, float y, float z);
  void activeChanged(bool isActive);

protected:
  explicit ViewerMotion(QObject* parent);
  /// An angle grown by an amount; above 180 it loses 360, below -180 it gains 360.
  static float turned(float angle, float degrees);

  float _rotation[3] = {0, 0, 0};

private:
  static constexpr int firstTimeout = 40;

  QTimer _timer;
  float _motionAngle = 1;
};
