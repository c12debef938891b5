#include "viewer/viewermediator.h"

#include "model/pose.h"
#include "viewer/landmarksdelegate.h"
#include "viewer/viewercanvasgl.h"
#include "viewer/viewerposepanel.h"
#include "viewer/viewerrandommotion.h"
#include "viewer/viewerspinningmotion.h"

#include <QAction>
#include <QCursor>
#include <QIcon>
#include <QInputDialog>

namespace
{
constexpr int largestMotionAngle = 90;
constexpr int longestTimeout = 999; // of three digits, between which no sign can stand
} // namespace

ViewerMediator::ViewerMediator(ViewerCanvasGL& canvas, ViewerPosePanel& panel, QObject* parent)
  : QObject(parent),
    _canvas(canvas),
    _panel(panel),
    _spinningMotion(new ViewerSpinningMotion(this)),
    _randomMotion(new ViewerRandomMotion(this)),
    _landmarks(new LandmarksDelegate(canvas, this))
{
  createPoseActions();
  createDisplayActions();
  createMotionActions();
  connectPanel();
  _panel.setPose(_canvas.getPose());
  _panel.setProjection(_canvas.camera().getProjection());
  _panel.setBackground(_canvas.getBackground());
}

QAction* ViewerMediator::createAction(const QString& text, const QString& toolTip, const char* icon,
                                      const QKeySequence& shortcut, const std::function<void()>& slot)
{
  auto* const action = new QAction(text, this);
  action->setObjectName(text);
  if (*icon != 0) action->setIcon(QIcon(QString(":/icons/%1.svg").arg(icon)));
  action->setShortcut(shortcut);
  action->setStatusTip(toolTip);
  action->setToolTip(shortcut.isEmpty() ? toolTip : toolTip + " (" + shortcut.toString(QKeySequence::NativeText) + ")");
  if (slot) connect(action, &QAction::triggered, this, slot);
  return action;
}

QAction* ViewerMediator::createToggle(const QString& text, const QString& toolTip, const char* icon, bool isOn,
                                      const std::function<void()>& slot)
{
  QAction* const action = createAction(text, toolTip, icon, {}, slot);
  action->setCheckable(true);
  action->setChecked(isOn);
  return action;
}

void ViewerMediator::createPoseActions()
{
  const struct
  {
    QString text, toolTip;
    void (ViewerCanvasGL::*apply)();
  } poses[] = {
      {tr("View from behind"), tr("Look at the first slice from behind, X to the left"),
       &ViewerCanvasGL::setStandardPose1},
      {tr("View from the left"), tr("Look along X, Z to the right"), &ViewerCanvasGL::setStandardPose2},
      {tr("View from above"), tr("Look along Y from above, Z downwards"), &ViewerCanvasGL::setStandardPose3},
      {tr("View from the front"), tr("Look at the slices as they were drawn"), &ViewerCanvasGL::setRevStandardPose1},
      {tr("View from the right"), tr("Look against X, Z to the left"), &ViewerCanvasGL::setRevStandardPose2},
      {tr("View from below"), tr("Look along Y from below, Z upwards"), &ViewerCanvasGL::setRevStandardPose3},
  };
  for (const auto& pose : poses)
  {
    _poseActions.append(
        createAction(pose.text, pose.toolTip, "", QKeySequence(Qt::Key_1 + _poseActions.size()), nullptr));
    connect(_poseActions.last(), &QAction::triggered, &_canvas, pose.apply);
  }
  _poseActions.append(createAction(tr("Reset pose"), tr("Show the whole scene without rotation"), "resetpose",
                                   QKeySequence("R"), [this] { _canvas.resetPose(); }));
}

void ViewerMediator::createDisplayActions()
{
  _displayActions = {
      createToggle(tr("Bounding box"), tr("Show the box around all models"), "boundingbox", _canvas.hasBoundingBox(),
                   [this] { _canvas.toggleBoundingBox(); }),
      createToggle(tr("Scale bar"), tr("Show a bar with its length"), "ruler", _canvas.hasScaleBar(),
                   [this] { _canvas.toggleScaleBar(); }),
      createToggle(tr("Axes"), tr("Show the directions of the axes"), "axes", _canvas.hasAxes(),
                   [this] { _canvas.toggleAxes(); }),
  };
  _center = createAction(tr("Center on surface"), tr("Move the surface under the cursor into the middle"), "",
                         QKeySequence("C"), [this] { centerUnderCursor(); });
  _pickLandmarks = createToggle(tr("Landmarks"), tr("Mark points of surfaces by clicks"), "landmarks", false,
                                [this]
                                {
                                  _landmarks->setActive(_pickLandmarks->isChecked());
                                  if (_pickLandmarks->isChecked())
                                    emit messageShown(tr("Click on a surface to mark a point of it"));
                                });
}

void ViewerMediator::createMotionActions()
{
  _motionActions = {
      createToggle(tr("Spin"), tr("Turn the scene about its Y axis"), "spin", false,
                   [this] { toggleSpinningMotion(); }),
      createToggle(tr("Random motion"), tr("Turn the scene about all axes"), "randommotion", false,
                   [this] { toggleRandomMotion(); }),
      createAction(tr("Motion angle..."), tr("Set by how much motions turn the scene with each step"), "", {},
                   [this] { runRandomMotionAngleDialog(); }),
      createAction(tr("Motion timeout..."), tr("Set the time between two steps of motions"), "", {},
                   [this] { runRandomMotionTimeoutDialog(); }),
  };
  connectMotion(*_spinningMotion, *_motionActions[0]);
  connectMotion(*_randomMotion, *_motionActions[1]);
}

/// A motion goes on from the pose that is shown, whoever changed it.
void ViewerMediator::connectMotion(ViewerMotion& motion, QAction& action)
{
  connect(&motion, &ViewerMotion::rotationChanged, &_canvas, &ViewerCanvasGL::setRotation);
  connect(&motion, &ViewerMotion::activeChanged, &action, &QAction::setChecked);
  connect(&_canvas, &ViewerCanvasGL::poseChanged, &motion,
          [&motion](const Pose& pose)
          { motion.setRotation(pose.getXRotation(), pose.getYRotation(), pose.getZRotation()); });
}

void ViewerMediator::connectPanel()
{
  connect(&_canvas, &ViewerCanvasGL::poseChanged, &_panel, &ViewerPosePanel::setPose);
  connect(&_panel, &ViewerPosePanel::rotationChanged, &_canvas, &ViewerCanvasGL::setRotation);
  connect(&_panel, &ViewerPosePanel::translationChanged, &_canvas, &ViewerCanvasGL::setTranslation);
  connect(&_panel, &ViewerPosePanel::zoomChanged, &_canvas, &ViewerCanvasGL::setZoom);
  connect(&_panel, &ViewerPosePanel::boundingBoxScalingChanged, &_canvas, &ViewerCanvasGL::setBoundingBoxScaling);
  connect(&_panel, &ViewerPosePanel::ambientLightChanged, &_canvas, &ViewerCanvasGL::setAmbientLight);
  connect(&_panel, &ViewerPosePanel::diffuseLightChanged, &_canvas, &ViewerCanvasGL::setDiffuseLight);
  connect(&_panel, &ViewerPosePanel::specularLightChanged, &_canvas, &ViewerCanvasGL::setSpecularLight);
  connect(&_panel, &ViewerPosePanel::projectionChanged, &_canvas, &ViewerCanvasGL::setProjection);
  connect(&_panel, &ViewerPosePanel::backgroundChanged, &_canvas, &ViewerCanvasGL::setBackground);
}

/// One motion at a time.
void ViewerMediator::toggle(ViewerMotion& motion, ViewerMotion& other)
{
  other.setActive(false);
  motion.toggle();
}

void ViewerMediator::toggleSpinningMotion()
{
  toggle(*_spinningMotion, *_randomMotion);
}

void ViewerMediator::toggleRandomMotion()
{
  toggle(*_randomMotion, *_spinningMotion);
}

void ViewerMediator::setRandomMotionAngle(int degrees)
{
  for (ViewerMotion* motion : {static_cast<ViewerMotion*>(_spinningMotion), static_cast<ViewerMotion*>(_randomMotion)})
    motion->setMotionAngle(static_cast<float>(qBound(1, degrees, largestMotionAngle)));
}

void ViewerMediator::setMotionTimeout(int milliseconds)
{
  _spinningMotion->setTimeout(milliseconds);
  _randomMotion->setTimeout(milliseconds);
}

void ViewerMediator::runRandomMotionAngleDialog()
{
  bool isAccepted = false;
  const int angle =
      QInputDialog::getInt(&_canvas, tr("Motion angle"), tr("Degrees per step:"),
                           qRound(_randomMotion->getMotionAngle()), 1, largestMotionAngle, 1, &isAccepted);
  if (isAccepted) setRandomMotionAngle(angle);
}

void ViewerMediator::runRandomMotionTimeoutDialog()
{
  bool isAccepted = false;
  const int timeout = QInputDialog::getInt(&_canvas, tr("Motion timeout"), tr("Milliseconds between steps:"),
                                           _randomMotion->getTimeout(), 1, longestTimeout, 10, &isAccepted);
  if (isAccepted) setMotionTimeout(timeout);
}

void ViewerMediator::centerUnderCursor()
{
  if (!_canvas.centerOn(_canvas.mapFromGlobal(QCursor::pos())))
    emit messageShown(tr("There is no surface under the cursor to center on"));
}
