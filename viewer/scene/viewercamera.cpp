#include "viewer/scene/viewercamera.h"

#include "model/pose.h"
#include "numeric/maths.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{
using Rotation = ViewerCamera::Rotation;
using Point = ViewerCamera::Point;

constexpr float degreesPerPixel = 0.25F;
constexpr float zoomPerWidth = 3;
constexpr float wheelTurnsPerZoom = 800;

float finite(float value)
{
  return std::isfinite(value) ? value : 0;
}

Rotation product(const Rotation& a, const Rotation& b)
{
  Rotation c{};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      for (std::size_t k = 0; k < 3; ++k) c[3 * i + j] += a[3 * i + k] * b[3 * k + j];
  return c;
}

/// The rotation about a coordinate axis, counter-clockwise when it points to the viewer.
Rotation rotationAbout(std::size_t axis, double degrees)
{
  const double angle = degrees * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
  const std::size_t i = (axis + 1) % 3, j = (axis + 2) % 3;
  Rotation r{};
  r[4 * axis] = 1;
  r[4 * i] = r[4 * j] = c;
  r[3 * i + j] = -s;
  r[3 * j + i] = s;
  return r;
}

int hundredths(float value)
{
  return Maths::fround(100 * value);
}
} // namespace

SquareViewport SquareViewport::around(int width, int height)
{
  const int side = std::max(width, height);
  return {(width - side) / 2, (height - side) / 2, side};
}

void ViewerCamera::setBoundingBox(const BoundingBox<float>& box)
{
  _halfDiagonal = 1;
  _center = {0, 0, 0};
  if (box.isEmpty() || box.getSpace() != 3) return;
  float sides[3];
  for (int axis = 0; axis < 3; ++axis)
  {
    sides[axis] = box.getMaximum()[axis] - box.getMinimum()[axis];
    _center[static_cast<std::size_t>(axis)] = box.getMinimum()[axis] + sides[axis] / 2;
  }
  const float diagonal = std::hypot(sides[0], sides[1], sides[2]);
  if (diagonal > 0 && std::isfinite(diagonal)) _halfDiagonal = diagonal / 2;
}

void ViewerCamera::setBoundingBoxScaling(float scaling)
{
  _scaling = std::isfinite(scaling) ? std::max(scaling, minScaling) : 1;
}

void ViewerCamera::setRotation(float x, float y, float z)
{
  _rotation = {finite(x), finite(y), finite(z)};
}

void ViewerCamera::setTranslation(float x, float y)
{
  _xTranslation = finite(x);
  _yTranslation = finite(y);
}

void ViewerCamera::setZoom(float zoom)
{
  _zoom = std::isnan(zoom) ? 1 : std::clamp(zoom, minZoom, maxZoom);
}

void ViewerCamera::setProjection(const ProjectionGL& projection)
{
  _projection = projection;
  _projection.strength = std::clamp(finite(projection.strength), 0.F, ProjectionGL::mostStrength);
}

void ViewerCamera::setLights(const Lights& lights)
{
  _lights = {std::clamp(lights.ambient, 0, 100), std::clamp(lights.diffuse, 0, 100),
             std::clamp(lights.specular, 0, 100)};
}

Pose ViewerCamera::getPose() const
{
  Pose pose;
  pose.setXRotation(_rotation[0]);
  pose.setYRotation(_rotation[1]);
  pose.setZRotation(_rotation[2]);
  pose.setXTranslation(hundredths(_xTranslation));
  pose.setYTranslation(hundredths(_yTranslation));
  pose.setZoom(hundredths(_zoom));
  pose.setAmbientLight(_lights.ambient);
  pose.setDiffuseLight(_lights.diffuse);
  pose.setSpecularLight(_lights.specular);
  return pose;
}

void ViewerCamera::setPose(const Pose& pose)
{
  setRotation(pose.getXRotation(), pose.getYRotation(), pose.getZRotation());
  setTranslation(static_cast<float>(pose.getXTranslation()) / 100, static_cast<float>(pose.getYTranslation()) / 100);
  setZoom(static_cast<float>(pose.getZoom()) / 100);
  const Lights lights = {pose.getAmbientLight(), pose.getDiffuseLight(), pose.getSpecularLight()};
  if (lights != Lights{0, 0, 0}) setLights(lights);
}

void ViewerCamera::resetPose()
{
  setRotation(0, 0, 0);
  setTranslation(0, 0);
  setZoom(1);
}

void ViewerCamera::setRotationMatrix(const Rotation& rotation)
{
  const std::array<double, 3> angles = Maths::decomposeRotationMatrix3D(rotation);
  setRotation(static_cast<float>(angles[0]), static_cast<float>(angles[1]), static_cast<float>(angles[2]));
}

/// The new rotation comes after the others, so that its axes are those of the picture.
void ViewerCamera::combineXYRotation(float dy, float dx)
{
  const Rotation turn = product(rotationAbout(0, degreesPerPixel * dy), rotationAbout(1, degreesPerPixel * dx));
  setRotationMatrix(product(turn, rotationMatrix()));
}

void ViewerCamera::combineZRotation(float dx)
{
  setRotationMatrix(product(rotationAbout(2, dx), rotationMatrix()));
}

void ViewerCamera::zoomBy(float dx, int width)
{
  setZoom(_zoom + zoomPerWidth * dx / static_cast<float>(width));
}

void ViewerCamera::pan(float dx, float dy, int width, int height)
{
  setTranslation(_xTranslation - dx / static_cast<float>(width), _yTranslation + dy / static_cast<float>(height));
}

void ViewerCamera::wheel(int delta)
{
  setZoom(_zoom - static_cast<float>(delta) / wheelTurnsPerZoom);
}

/// In perspective the borders are those of the near plane.
void ViewerCamera::centerOn(const Point& point)
{
  const Point eye = toEye(point);
  const double scale = _projection.type == ProjectionGL::Perspective ? frustum().near / -eye[2] : 1;
  const double size = getSceneSize();
  setTranslation(static_cast<float>(eye[0] * scale / size), static_cast<float>(eye[1] * scale / size));
}

ViewerCamera::Rotation ViewerCamera::rotationMatrix() const
{
  return product(product(rotationAbout(0, _rotation[0]), rotationAbout(1, _rotation[1])),
                 rotationAbout(2, _rotation[2]));
}

double ViewerCamera::eyeDistance() const
{
  return _projection.type == ProjectionGL::Perspective ? (7 - double{_projection.strength}) * getSceneSize() : 0;
}

ViewerCamera::Frustum ViewerCamera::frustum() const
{
  const double size = getSceneSize(), h = size / _zoom, d = eyeDistance();
  const double x = _xTranslation * size, y = _yTranslation * size;
  return {x - h, x + h, y - h, y + h, d - size, d + size};
}

ViewerCamera::Matrix4 ViewerCamera::projectionMatrix() const
{
  const auto [left, right, bottom, top, near, far] = frustum();
  Matrix4 m{};
  const double width = right - left, height = top - bottom, depth = far - near;
  if (_projection.type == ProjectionGL::Perspective)
  {
    m[0] = 2 * near / width;
    m[5] = 2 * near / height;
    m[8] = (right + left) / width;
    m[9] = (top + bottom) / height;
    m[10] = -(far + near) / depth;
    m[11] = -1;
    m[14] = -2 * far * near / depth;
    return m;
  }
  m[0] = 2 / width;
  m[5] = 2 / height;
  m[10] = -2 / depth;
  m[12] = -(right + left) / width;
  m[13] = -(top + bottom) / height;
  m[14] = -(far + near) / depth;
  m[15] = 1;
  return m;
}

ViewerCamera::Matrix4 ViewerCamera::modelViewMatrix() const
{
  const Rotation r = rotationMatrix();
  const Point shift = toEye({0, 0, 0});
  Matrix4 m{};
  for (std::size_t i = 0; i < 3; ++i)
  {
    for (std::size_t j = 0; j < 3; ++j) m[4 * j + i] = r[3 * i + j];
    m[12 + i] = shift[i];
  }
  m[15] = 1;
  return m;
}

double ViewerCamera::lengthPerPixel(int width, int height) const
{
  const Frustum f = frustum();
  const double side = SquareViewport::around(width, height).side;
  return (f.right - f.left) / side * (_projection.type == ProjectionGL::Perspective ? eyeDistance() / f.near : 1);
}

ViewerCamera::Point ViewerCamera::toEye(const Point& point) const
{
  const Rotation r = rotationMatrix();
  Point eye = {0, 0, -eyeDistance()};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) eye[i] += r[3 * i + j] * (point[j] - double{_center[j]});
  return eye;
}

ViewerCamera::Point ViewerCamera::project(const Point& point, int width, int height) const
{
  const Matrix4 m = projectionMatrix();
  const Point eye = toEye(point);
  const SquareViewport viewport = SquareViewport::around(width, height);
  const auto row = [&](std::size_t i) { return m[i] * eye[0] + m[4 + i] * eye[1] + m[8 + i] * eye[2] + m[12 + i]; };
  const double w = row(3);
  const auto pixel = [&](std::size_t i, int begin) { return begin + (row(i) / w + 1) / 2 * viewport.side; };
  return {pixel(0, viewport.x), pixel(1, viewport.y), (row(2) / w + 1) / 2};
}

ViewerCamera::Point ViewerCamera::unProject(const Point& place, int width, int height) const
{
  const Frustum f = frustum();
  const SquareViewport viewport = SquareViewport::around(width, height);
  const bool isPerspective = _projection.type == ProjectionGL::Perspective;
  const double z =
      isPerspective ? -f.far * f.near / (f.far - place[2] * (f.far - f.near)) : -f.near - place[2] * (f.far - f.near);
  const double scale = isPerspective ? -z / f.near : 1;
  const auto across = [&](double pixel, int begin, double low, double high)
  { return (low + (pixel - begin) / viewport.side * (high - low)) * scale; };
  const Point eye = {across(place[0], viewport.x, f.left, f.right), across(place[1], viewport.y, f.bottom, f.top),
                     z + eyeDistance()};
  const Rotation r = rotationMatrix();
  Point point = {_center[0], _center[1], _center[2]};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) point[i] += r[3 * j + i] * eye[j];
  return point;
}
