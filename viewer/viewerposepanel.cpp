#include "viewer/viewerposepanel.h"

#include "model/pose.h"
#include "slice/image/nyxdecimalbox.h"
#include "slice/image/nyxintegerbox.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <cmath>

namespace
{
constexpr int strengthSteps = 10; // of the slider for 1

float hundredth(const QSpinBox& box)
{
  return static_cast<float>(box.value()) / 100;
}

/// The name by which tests and assistive programs know a control.
template <class Control> Control* named(Control* control, const char* name, const QString& toolTip)
{
  control->setObjectName(name);
  control->setToolTip(toolTip);
  return control;
}

template <class Box, class Value> void showValue(Box& box, Value value)
{
  const QSignalBlocker blocker(box);
  box.setValue(value);
}
} // namespace

ViewerPosePanel::ViewerPosePanel(QWidget* parent) : QWidget(parent)
{
  setObjectName("posePanel");
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(createPoseGroup());
  layout->addWidget(createViewGroup());
  layout->addWidget(createLightGroup());
  layout->addStretch();
  setPose(Pose());
  setProjection({});
  setBackground({});
}

QDoubleSpinBox* ViewerPosePanel::addAngle(QFormLayout& form, const QString& label, const char* name, int axis)
{
  auto* const box = named(new NYXDecimalBox(this), name, tr("Rotation of the scene in degrees"));
  box->setRange(-180, 180);
  box->setDecimals(1);
  box->setSingleStep(5);
  box->setWrapping(true);
  box->setSuffix(tr(" °"));
  box->setKeyboardTracking(false);
  form.addRow(label, box);
  connect(box, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
          [this, axis](double angle)
          {
            _angles[axis] = static_cast<float>(angle);
            emit rotationChanged(_angles[0], _angles[1], _angles[2]);
          });
  return box;
}

QSpinBox* ViewerPosePanel::addTranslation(QFormLayout& form, const QString& label, const char* name)
{
  auto* const box = named(new NYXIntegerBox(this), name, tr("Shift of the view in percent of the scene's size"));
  box->setRange(-10000, 10000);
  box->setSuffix(tr(" %"));
  box->setKeyboardTracking(false);
  form.addRow(label, box);
  connect(box, qOverload<int>(&QSpinBox::valueChanged), this,
          [this] { emit translationChanged(hundredth(*_translation[0]), hundredth(*_translation[1])); });
  return box;
}

QSpinBox* ViewerPosePanel::addPercentage(QFormLayout& form, const QString& label, const char* name, int least, int most)
{
  auto* const box = named(new NYXIntegerBox(this), name, {});
  box->setRange(least, most);
  box->setSingleStep(5);
  box->setSuffix(tr(" %"));
  box->setKeyboardTracking(false);
  form.addRow(label, box);
  return box;
}

QWidget* ViewerPosePanel::createPoseGroup()
{
  auto* const group = new QGroupBox(tr("Pose"), this);
  auto* const form = new QFormLayout(group);
  _rotation[0] = addAngle(*form, tr("Rotation X"), "xRotation", 0);
  _rotation[1] = addAngle(*form, tr("Rotation Y"), "yRotation", 1);
  _rotation[2] = addAngle(*form, tr("Rotation Z"), "zRotation", 2);
  _translation[0] = addTranslation(*form, tr("Shift X"), "xTranslation");
  _translation[1] = addTranslation(*form, tr("Shift Y"), "yTranslation");
  _zoom = addPercentage(*form, tr("Zoom"), "zoom", qRound(100 * ViewerCamera::minZoom),
                        qRound(100 * ViewerCamera::maxZoom));
  _zoom->setToolTip(tr("100 % shows the whole scene"));
  connect(_zoom, qOverload<int>(&QSpinBox::valueChanged), this, [this] { emit zoomChanged(hundredth(*_zoom)); });
  return group;
}

QWidget* ViewerPosePanel::createViewGroup()
{
  auto* const group = new QGroupBox(tr("View"), this);
  auto* const form = new QFormLayout(group);
  _scaling = addPercentage(*form, tr("Scene size"), "boundingBoxScaling", 10, 1000);
  _scaling->setToolTip(tr("Size of what is seen in percent of the bounding box; less cuts off what is near and far"));
  _scaling->setValue(100);
  connect(_scaling, qOverload<int>(&QSpinBox::valueChanged), this,
          [this] { emit boundingBoxScalingChanged(hundredth(*_scaling)); });
  _projectionType = named(new QComboBox(this), "projectionType", tr("Whether what is far away looks smaller"));
  _projectionType->addItems({tr("Orthographic"), tr("Perspective")});
  form->addRow(tr("Projection"), _projectionType);
  _perspectiveStrength = named(new QSlider(Qt::Horizontal, this), "perspectiveStrength",
                               tr("Strength of the perspective: the nearer the eye, the stronger"));
  _perspectiveStrength->setRange(0, qRound(ProjectionGL::mostStrength * strengthSteps));
  form->addRow(tr("Perspective"), _perspectiveStrength);
  _backgroundType = named(new QComboBox(this), "backgroundType", tr("How the background is filled"));
  _backgroundType->addItems({tr("Uniform"), tr("Linear gradient"), tr("Radial gradient")});
  form->addRow(tr("Background"), _backgroundType);
  _backgroundButton = named(new QPushButton(tr("Color..."), this), "backgroundColor", tr("Color of the background"));
  form->addRow(QString(), _backgroundButton);
  connect(_projectionType, qOverload<int>(&QComboBox::currentIndexChanged), this,
          &ViewerPosePanel::processProjectionTypeChange);
  connect(_perspectiveStrength, &QSlider::valueChanged, this, &ViewerPosePanel::processPerspectiveStrengthChange);
  connect(_backgroundType, qOverload<int>(&QComboBox::currentIndexChanged), this,
          &ViewerPosePanel::processBackgroundTypeChange);
  connect(_backgroundButton, &QPushButton::clicked, this, &ViewerPosePanel::runBackgroundColorDialog);
  return group;
}

QWidget* ViewerPosePanel::createLightGroup()
{
  auto* const group = new QGroupBox(tr("Light"), this);
  auto* const form = new QFormLayout(group);
  _lights[0] = addPercentage(*form, tr("Ambient"), "ambientLight", 0, 100);
  _lights[0]->setToolTip(tr("Light from everywhere: makes shadows brighter"));
  _lights[1] = addPercentage(*form, tr("Diffuse"), "diffuseLight", 0, 100);
  _lights[1]->setToolTip(tr("Light from the viewer: brightens what faces it"));
  _lights[2] = addPercentage(*form, tr("Specular"), "specularLight", 0, 100);
  _lights[2]->setToolTip(tr("Strength of highlights"));
  const auto level = qOverload<int>(&QSpinBox::valueChanged);
  connect(_lights[0], level, this, &ViewerPosePanel::ambientLightChanged);
  connect(_lights[1], level, this, &ViewerPosePanel::diffuseLightChanged);
  connect(_lights[2], level, this, &ViewerPosePanel::specularLightChanged);
  return group;
}

ProjectionGL ViewerPosePanel::getProjection() const
{
  return {_projectionType->currentIndex() == 0 ? ProjectionGL::Orthographic : ProjectionGL::Perspective,
          static_cast<float>(_perspectiveStrength->value()) / strengthSteps};
}

BackgroundGL ViewerPosePanel::getBackground() const
{
  return {static_cast<BackgroundGL::Type>(_backgroundType->currentIndex()),
          {_backgroundColor.red(), _backgroundColor.green(), _backgroundColor.blue()}};
}

void ViewerPosePanel::setPose(const Pose& pose)
{
  const float angles[] = {pose.getXRotation(), pose.getYRotation(), pose.getZRotation()};
  for (int axis = 0; axis < 3; ++axis)
  {
    _angles[axis] = angles[axis];
    showValue(*_rotation[axis], std::remainder(double{angles[axis]}, 360.0));
  }
  showValue(*_translation[0], pose.getXTranslation());
  showValue(*_translation[1], pose.getYTranslation());
  showValue(*_zoom, pose.getZoom());
  const int lights[] = {pose.getAmbientLight(), pose.getDiffuseLight(), pose.getSpecularLight()};
  if (lights[0] == 0 && lights[1] == 0 && lights[2] == 0) return;
  for (int k = 0; k < 3; ++k) showValue(*_lights[k], lights[k]);
}

void ViewerPosePanel::setProjection(const ProjectionGL& projection)
{
  const QSignalBlocker typeBlocker(_projectionType), strengthBlocker(_perspectiveStrength);
  _projectionType->setCurrentIndex(projection.type == ProjectionGL::Orthographic ? 0 : 1);
  _perspectiveStrength->setValue(qRound(projection.strength * strengthSteps));
  _perspectiveStrength->setEnabled(projection.type == ProjectionGL::Perspective);
}

void ViewerPosePanel::setBackground(const BackgroundGL& background)
{
  const QSignalBlocker blocker(_backgroundType);
  _backgroundType->setCurrentIndex(static_cast<int>(background.type));
  _backgroundColor = QColor(background.color[0], background.color[1], background.color[2]);
  showBackgroundColor();
}

void ViewerPosePanel::showBackgroundColor()
{
  QPixmap pixmap(16, 16);
  pixmap.fill(_backgroundColor);
  _backgroundButton->setIcon(QIcon(pixmap));
}

void ViewerPosePanel::setBoundingBoxScaling(float scaling)
{
  showValue(*_scaling, qRound(100 * scaling));
}

void ViewerPosePanel::processProjectionTypeChange()
{
  _perspectiveStrength->setEnabled(_projectionType->currentIndex() != 0);
  emit projectionChanged(getProjection());
}

void ViewerPosePanel::processPerspectiveStrengthChange()
{
  emit projectionChanged(getProjection());
}

void ViewerPosePanel::processBackgroundTypeChange()
{
  emit backgroundChanged(getBackground());
}

void ViewerPosePanel::runBackgroundColorDialog()
{
  const QColor color =
      QColorDialog::getColor(_backgroundColor, this, tr("Background color"), QColorDialog::DontUseNativeDialog);
  if (!color.isValid()) return;
  _backgroundColor = color;
  showBackgroundColor();
  emit backgroundChanged(getBackground());
}
