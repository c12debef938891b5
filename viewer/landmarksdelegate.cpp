#include "viewer/landmarksdelegate.h"

#include "viewer/viewercanvasgl.h"

#include <cmath>

LandmarksDelegate::LandmarksDelegate(ViewerCanvasGL& canvas, QObject* parent) : QObject(parent), _canvas(canvas) {}

void LandmarksDelegate::setActive(bool isActive)
{
  _isActive = isActive;
  if (isActive)
    _canvas.setClickFunction([this](const QPoint& point) { addAt(point); });
  else
    _canvas.setClickFunction(nullptr);
}

void LandmarksDelegate::addAt(const QPoint& point)
{
  const auto hit = _canvas.pick(point);
  if (!hit) return;
  _landmarks.push_back(hit->point);
  show();
}

void LandmarksDelegate::remove(int landmark)
{
  _landmarks.erase(_landmarks.begin() + landmark);
  show();
}

void LandmarksDelegate::clear()
{
  _landmarks.clear();
  show();
}

void LandmarksDelegate::scale(double factor)
{
  for (ViewerCamera::Point& landmark : _landmarks)
    for (auto& coordinate : landmark) coordinate *= factor;
  show();
}

void LandmarksDelegate::show()
{
  _canvas.setLandmarks(_landmarks);
  emit landmarksChanged();
}

QString LandmarksDelegate::toText(const QString& unit) const
{
  QString text =
      tr("Landmark") + QString("\tX (%1)\tY (%1)\tZ (%1)\t").arg(unit) + tr("Distance (%1)").arg(unit) + "\n";
  for (std::size_t i = 0; i < _landmarks.size(); ++i)
  {
    const ViewerCamera::Point& p = _landmarks[i];
    text += QString("%1\t%2\t%3\t%4\t").arg(i + 1).arg(p[0]).arg(p[1]).arg(p[2]);
    if (i > 0)
    {
      const ViewerCamera::Point& q = _landmarks[i - 1];
      text += QString::number(std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]));
    }
    text += "\n";
  }
  return text;
}
