#pragma once

#include "viewer/scene/backgroundgl.h"
#include "viewer/scene/projectiongl.h"
#include "viewer/scene/viewercamera.h"

#include <QColor>
#include <QWidget>

class Pose;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;

/// Numbers for the pose, projection, background and lights of the 3D view. Changes by the user are told by signals.
class ViewerPosePanel : public QWidget
{
  Q_OBJECT

public:
  explicit ViewerPosePanel(QWidget* parent = nullptr);

  ProjectionGL getProjection() const;
  BackgroundGL getBackground() const;

public slots:
  /// Show settings that were made elsewhere; nothing is emitted.
  void setPose(const Pose& pose);
  void setProjection(const ProjectionGL& projection);
  void setBackground(const BackgroundGL& background);
  void setBoundingBoxScaling(float scaling);

  void processProjectionTypeChange();
  void processPerspectiveStrengthChange();
  void processBackgroundTypeChange();
  void runBackgroundColorDialog();

signals:
  void rotationChanged(float x, float y, float z);
  void translationChanged(float x, float y);
  void zoomChanged(float zoom);
  void boundingBoxScalingChanged(float scaling);
  void ambientLightChanged(int level);
  void diffuseLightChanged(int level);
  void specularLightChanged(int level);
  void projectionChanged(const ProjectionGL& projection);
  void backgroundChanged(const BackgroundGL& background);

private:
  QDoubleSpinBox* addAngle(QFormLayout& form, const QString& label, const char* name, int axis);
  QSpinBox* addTranslation(QFormLayout& form, const QString& label, const char* name);
  QSpinBox* addPercentage(QFormLayout& form, const QString& label, const char* name, int least, int most);
  QWidget* createPoseGroup();
  QWidget* createViewGroup();
  QWidget* createLightGroup();
  void showBackgroundColor();

  QDoubleSpinBox* _rotation[3];
  float _angles[3] = {0, 0, 0}; // as they are, which the boxes round
  QSpinBox* _translation[2];
  QSpinBox* _zoom;
  QSpinBox* _scaling;
  QComboBox* _projectionType;
  QSlider* _perspectiveStrength;
  QComboBox* _backgroundType;
  QPushButton* _backgroundButton;
  QColor _backgroundColor;
  QSpinBox* _lights[3];
};
