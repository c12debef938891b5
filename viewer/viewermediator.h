#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>

#include <functional>

class LandmarksDelegate;
class QAction;
class ViewerCanvasGL;
class ViewerMotion;
class ViewerPosePanel;
class ViewerRandomMotion;
class ViewerSpinningMotion;

/// Wires the canvas and the pose panel, and owns the motions and the actions that change the view.
class ViewerMediator : public QObject
{
  Q_OBJECT

public:
  ViewerMediator(ViewerCanvasGL& canvas, ViewerPosePanel& panel, QObject* parent);

  /// The six standard poses, keys 1 to 6, and the reset of the pose.
  const QList<QAction*>& poseActions() const { return _poseActions; }
  /// What is drawn around the scene.
  const QList<QAction*>& displayActions() const { return _displayActions; }
  const QList<QAction*>& motionActions() const { return _motionActions; }
  QAction& centerAction() const { return *_center; }
  QAction& landmarksAction() const { return *_pickLandmarks; }
  ViewerSpinningMotion& spinningMotion() const { return *_spinningMotion; }
  ViewerRandomMotion& randomMotion() const { return *_randomMotion; }
  LandmarksDelegate& landmarks() const { return *_landmarks; }

public slots:
  void toggleSpinningMotion();
  void toggleRandomMotion();
  /// Degrees per step, of both motions.
  void setRandomMotionAngle(int degrees);
  /// Milliseconds between steps, of both motions.
  void setMotionTimeout(int milliseconds);
  void runRandomMotionAngleDialog();
  void runRandomMotionTimeoutDialog();

signals:
  void messageShown(const QString& text);

private:
  QAction* createAction(const QString& text, const QString& toolTip, const char* icon, const QKeySequence& shortcut,
                        const std::function<void()>& slot);
  QAction* createToggle(const QString& text, const QString& toolTip, const char* icon, bool isOn,
                        const std::function<void()>& slot);
  void createPoseActions();
  void createDisplayActions();
  void createMotionActions();
  void connectPanel();
  void connectMotion(ViewerMotion& motion, QAction& action);
  void toggle(ViewerMotion& motion, ViewerMotion& other);
  void centerUnderCursor();

  ViewerCanvasGL& _canvas;
  ViewerPosePanel& _panel;
  ViewerSpinningMotion* _spinningMotion;
  ViewerRandomMotion* _randomMotion;
  LandmarksDelegate* _landmarks;
  QList<QAction*> _poseActions;
  QList<QAction*> _displayActions;
  QList<QAction*> _motionActions;
  QAction* _center;
  QAction* _pickLandmarks;
};
