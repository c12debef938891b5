#pragma once

#include "numeric/randomgenerator.h"
#include "viewer/viewermotion.h"

/// Turns about all axes, now and then in the other direction about one of them.
class ViewerRandomMotion : public ViewerMotion
{
  Q_OBJECT

public:
  static constexpr double flipProbability = 0.001; // per step and direction

  explicit ViewerRandomMotion(QObject* parent = nullptr, unsigned int seed = 1);

public slots:
  void step() override;

private:
  RandomGenerator _random;
  float _signs[3] = {1, 1, 1};
};
