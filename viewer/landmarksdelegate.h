#pragma once

#include "viewer/scene/viewercamera.h"

#include <QObject>
#include <QString>

#include <vector>

class ViewerCanvasGL;

/// Marks points of surfaces by clicks while it is active.
class LandmarksDelegate : public QObject
{
  Q_OBJECT

public:
  LandmarksDelegate(ViewerCanvasGL& canvas, QObject* parent);

  bool isActive() const { return _isActive; }
  const std::vector<ViewerCamera::Point>& getLandmarks() const { return _landmarks; }
  /// A line for each landmark: its number, its coordinates, and the distance from the one before; separated by tabs,
  /// under titles with the unit of length.
  QString toText(const QString& unit) const;

public slots:
  void setActive(bool isActive);
  /// Unchecked.
  void remove(int landmark);
  void clear();
  /// Follows a scene whose lengths have become others.
  void scale(double factor);

signals:
  void landmarksChanged();

private:
  void addAt(const QPoint& point);
  void show();

  ViewerCanvasGL& _canvas;
  bool _isActive = false;
  std::vector<ViewerCamera::Point> _landmarks;
};
