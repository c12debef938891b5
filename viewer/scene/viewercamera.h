#pragma once

#include "geometry/boundingbox.h"
#include "viewer/scene/projectiongl.h"

#include <array>

class Pose;

/// A square part of the window or picture, in pixels from its lower left.
struct SquareViewport
{
  int x;
  int y;
  int side;

  /// As large as the longer side, centred, so that it overflows the shorter one.
  static SquareViewport around(int width, int height);
};

/// Where a scene is seen from: its size and centre, the pose and the projection, and the strengths of the light.
///
/// The scene size is half the diagonal of the box around the scene, times a scaling. Matrices are those of OpenGL: the
/// element in row i and column j is number 4 j + i.
class ViewerCamera
{
public:
  using Point = std::array<double, 3>;
  using Matrix4 = std::array<double, 16>;
  using Rotation = std::array<double, 9>; ///< rows one after the other

  static constexpr float minZoom = 0.01F;
  static constexpr float maxZoom = 5;
  static constexpr float minScaling = 0.01F;

  /// Strengths of the ambient, diffuse and specular light in percent.
  struct Lights
  {
    int ambient = 20;
    int diffuse = 75;
    int specular = 40;

    bool operator==(const Lights&) const = default;
  };

  /// Size and centre of the scene; of an empty box 1 and the origin.
  void setBoundingBox(const BoundingBox<float>& box);
  void setBoundingBoxScaling(float scaling);
  float getBoundingBoxScaling() const { return _scaling; }
  float getSceneSize() const { return _halfDiagonal * _scaling; }
  const std::array<float, 3>& getSceneCenter() const { return _center; }

  /// Angles about X, Y and Z in degrees; what is not finite counts as 0.
  const std::array<float, 3>& getRotation() const { return _rotation; }
  void setRotation(float x, float y, float z);
  /// In units of the scene size.
  float getXTranslation() const { return _xTranslation; }
  float getYTranslation() const { return _yTranslation; }
  void setTranslation(float x, float y);
  float getZoom() const { return _zoom; }
  /// Brings the zoom into its limits.
  void setZoom(float zoom);
  const ProjectionGL& getProjection() const { return _projection; }
  void setProjection(const ProjectionGL& projection);
  const Lights& getLights() const { return _lights; }
  void setLights(const Lights& lights);

  /// A pose counts its translation in hundredths of the scene size and its zoom in percent. One whose lights are all 0
  /// leaves the lights alone.
  Pose getPose() const;
  void setPose(const Pose& pose);
  /// No translation, no rotation and zoom 1.
  void resetPose();

  /// Turns the scene about axes of the picture: to the right, upwards and towards the viewer. By displacements of the
  /// mouse in pixels: a quarter of a degree for each, about the viewing axis a whole one.
  void combineXYRotation(float dy, float dx);
  void combineZRotation(float dx);
  /// Displacements of the mouse in a window of a width and height.
  void zoomBy(float dx, int width);
  void pan(float dx, float dy, int width, int height);
  /// The wheel's turn in eighths of a degree.
  void wheel(int delta);
  /// Pans so that a point of the scene comes into the middle of the picture.
  void centerOn(const Point& point);

  Rotation rotationMatrix() const;
  /// Distance of the eye from the scene's centre; 0 without perspective.
  double eyeDistance() const;
  Matrix4 projectionMatrix() const;
  Matrix4 modelViewMatrix() const;
  /// The length of a pixel of the picture at the depth of the scene's centre.
  double lengthPerPixel(int width, int height) const;

  /// A point as the viewer has it: x to the right, y upwards, z towards the viewer.
  Point toEye(const Point& point) const;
  /// The place of a point in the picture: x and y in pixels from the lower left, and its depth from 0 to 1.
  Point project(const Point& point, int width, int height) const;
  /// The point of the scene at such a place.
  Point unProject(const Point& place, int width, int height) const;

private:
  /// Borders of what is seen, at the near plane, and the distances of the near and the far plane.
  struct Frustum
  {
    double left, right, bottom, top, near, far;
  };

  Frustum frustum() const;
  void setRotationMatrix(const Rotation& rotation);

  float _halfDiagonal = 1;
  float _scaling = 1;
  std::array<float, 3> _center = {0, 0, 0};
  std::array<float, 3> _rotation = {0, 0, 0};
  float _xTranslation = 0;
  float _yTranslation = 0;
  float _zoom = 1;
  ProjectionGL _projection;
  Lights _lights;
};
