#pragma once

#include "model/pose.h"
#include "viewer/painters/landmarkspaintergl.h"
#include "viewer/scene/scenegl.h"

#include <QImage>
#include <QMetaType>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPoint>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

Q_DECLARE_METATYPE(Pose)

/// Draws painters in 3D and lets the mouse turn, zoom and pan them.
///
/// Dragging with the left button turns about the axes of the picture; with Shift about the viewing axis; Ctrl zooms,
/// Alt pans. The wheel zooms.
class ViewerCanvasGL : public QOpenGLWidget, protected QOpenGLFunctions
{
  Q_OBJECT

public:
  explicit ViewerCanvasGL(QWidget* parent = nullptr);
  ~ViewerCanvasGL() override;

  /// Painters are borrowed, and drawn in the order in which they were added. One that was drawn is destroyed while the
  /// canvas's context is current.
  void addPainter(PainterGL<float>* painter);
  void removePainter(PainterGL<float>* painter);
  void removePainters();
  const std::vector<PainterGL<float>*>& getPainters() const { return _scene.getPainters(); }
  /// To be called when painters came, went or changed their boxes.
  void updateBoundingBox();

  const ViewerCamera& camera() const { return _scene.camera(); }
  const BackgroundGL& getBackground() const { return _scene.getBackground(); }
  /// What is marked by numbers; a click puts another mark where there is a surface while the function is set.
  std::vector<ViewerCamera::Point> getLandmarks() const { return _landmarks.getPoints(); }
  void setLandmarks(const std::vector<ViewerCamera::Point>& points);
  using ClickFunction = std::function<void(const QPoint&)>;
  /// Gets clicks of the left button; nullptr: nobody.
  void setClickFunction(ClickFunction function);

  /// The point of the scene at a point of the widget, at a depth from 0 to 1.
  ViewerCamera::Point unProject(const QPoint& point, float depth) const;
  /// The painter and the point of the scene that are seen at a point of the widget.
  std::optional<SceneGL::Hit> pick(const QPoint& point);
  /// Pans so that the surface at a point of the widget comes into the middle. \return false without a surface there
  bool centerOn(const QPoint& point);

  Pose getPose() const;
  bool hasBoundingBox() const { return _scene.hasBoundingBox(); }
  bool hasScaleBar() const { return _scene.hasScaleBar(); }
  bool hasAxes() const { return _scene.hasAxes(); }

  /// The picture as it is on the screen, or cropped to what is drawn in front of the background.
  QImage snapshot(bool cropped) { return cropped ? croppedSnapshot() : snapshot(1, false); }
  QImage croppedSnapshot() { return croppedSnapshot(1, false); }
  QImage uncroppedSnapshot() { return snapshot(false); }
  /// The picture at a multiple of the widget's size, with a transparent background on request.
  /// \throw MathError  the graphics system cannot draw so large a picture
  QImage snapshot(int scale, bool isTransparent);
  /// The largest multiple that the graphics system can draw.
  int largestScale();
  /// That picture cropped to what is drawn in front of the background.
  QImage croppedSnapshot(int scale, bool isTransparent);
  /// A frame for a video.
  QImage saveImage() { return snapshot(1, false); }
  /// The part of a picture within which pixels differ from its border: from that of the upper left corner, or from what
  /// is transparent. A picture without such pixels stays as it is.
  static QImage cropImage(const QImage& image);

public slots:
  void setProjection(const ProjectionGL& projection);
  void setBackground(const BackgroundGL& background);
  /// In percent.
  void setAmbientLight(int level);
  void setDiffuseLight(int level);
  void setSpecularLight(int level);
  /// In units of the scene size.
  void setTranslation(float x, float y);
  void setZoom(float zoom);
  /// About X, Y and Z, in degrees.
  void setRotation(float x, float y, float z);
  void setBoundingBoxScaling(float scaling);
  void setPose(const Pose& pose);
  void resetPose();
  void setStandardPose1();
  void setStandardPose2();
  void setStandardPose3();
  void setRevStandardPose1();
  void setRevStandardPose2();
  void setRevStandardPose3();
  void toggleBoundingBox();
  void toggleScaleBar();
  void toggleAxes();
  void setScaleBar(bool isVisible);
  /// The symbol of the unit of length.
  void setUnit(const QString& unit);

signals:
  void poseChanged(const Pose& pose);

protected:
  void initializeGL() override;
  void paintGL() override;
  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent*) override {}
  void wheelEvent(QWheelEvent* event) override;

private:
  QSize pixelSize() const;
  QPoint pixelAt(const QPoint& point) const;
  void drag(float dx, float dy, Qt::KeyboardModifiers modifiers);
  void changeLights(const std::function<void(ViewerCamera::Lights&)>& change);
  void showChangedPose();

  SceneGL _scene;
  LandmarksPainterGL _landmarks;
  ClickFunction _clickFunction;
  QPoint _lastPosition;
  bool _isMoved = false;
};
