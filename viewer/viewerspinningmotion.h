#pragma once

#include "viewer/viewermotion.h"

/// Turns about one axis by the motion angle per step.
class ViewerSpinningMotion : public ViewerMotion
{
  Q_OBJECT

public:
  explicit ViewerSpinningMotion(QObject* parent = nullptr) : ViewerMotion(parent) {}

  /// 0 for X, 1 for Y (at first), 2 for Z: the pose's angle that grows.
  void setAxis(int axis) { _axis = qBound(0, axis, 2); }
  int getAxis() const { return _axis; }

public slots:
  void step() override;

private:
  int _axis = 1;
};
