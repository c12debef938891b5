// The camera beside the formulas that it stands for, written out by other means.
#include "model/pose.h"
#include "numeric/maths.h"
#include "numeric/randomgenerator.h"
#include "viewer/scene/viewercamera.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace
{
using Point = ViewerCamera::Point;
using Matrix4 = ViewerCamera::Matrix4;
using Rotation = ViewerCamera::Rotation;

constexpr double degree = std::numbers::pi / 180;

/// A camera on the box from (0, 0, 0) to (2, 4, 4): its half diagonal is 3, its centre (1, 2, 2).
ViewerCamera cameraOnBox()
{
  ViewerCamera camera;
  camera.setBoundingBox(BoundingBox<float>({0, 0, 0}, {2, 4, 4}));
  return camera;
}

/// A vector turned about an axis, by the formula of Rodrigues.
Point turned(const Point& v, const Point& axis, double degrees)
{
  const double c = std::cos(degrees * degree), s = std::sin(degrees * degree);
  const double dot = v[0] * axis[0] + v[1] * axis[1] + v[2] * axis[2];
  Point result;
  for (std::size_t i = 0; i < 3; ++i)
  {
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    result[i] = v[i] * c + (axis[j] * v[k] - axis[k] * v[j]) * s + axis[i] * dot * (1 - c);
  }
  return result;
}

Point turnedByPose(const Point& v, const std::array<float, 3>& angles)
{
  return turned(turned(turned(v, {0, 0, 1}, angles[2]), {0, 1, 0}, angles[1]), {1, 0, 0}, angles[0]);
}

void expectNear(const Point& a, const Point& b, double tolerance)
{
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(a[i], b[i], tolerance) << "coordinate " << i;
}

Point clip(const Matrix4& m, const Point& eye)
{
  double h[4];
  for (std::size_t i = 0; i < 4; ++i) h[i] = m[i] * eye[0] + m[4 + i] * eye[1] + m[8 + i] * eye[2] + m[12 + i];
  return {h[0] / h[3], h[1] / h[3], h[2] / h[3]};
}
} // namespace

TEST(ViewerCamera, TakesSizeAndCentreFromTheBox)
{
  ViewerCamera camera = cameraOnBox();
  EXPECT_FLOAT_EQ(camera.getSceneSize(), 3);
  EXPECT_EQ(camera.getSceneCenter(), (std::array<float, 3>{1, 2, 2}));
  camera.setBoundingBoxScaling(2);
  EXPECT_FLOAT_EQ(camera.getSceneSize(), 6);
  camera.setBoundingBox(BoundingBox<float>(3));
  EXPECT_FLOAT_EQ(camera.getSceneSize(), 2); // of an empty scene 1, scaled
  camera.setBoundingBox(BoundingBox<float>({5, 5, 5}, {5, 5, 5}));
  EXPECT_FLOAT_EQ(camera.getSceneSize(), 2);
  camera.setBoundingBoxScaling(std::numeric_limits<float>::quiet_NaN());
  EXPECT_FLOAT_EQ(camera.getSceneSize(), 1);
}

TEST(ViewerCamera, MakesTheViewportASquareThatOverflowsTheShorterSide)
{
  const auto expect = [](int width, int height, int x, int y, int side)
  {
    const SquareViewport viewport = SquareViewport::around(width, height);
    EXPECT_EQ(viewport.x, x);
    EXPECT_EQ(viewport.y, y);
    EXPECT_EQ(viewport.side, side);
  };
  expect(800, 400, 0, -200, 800); // cut at top and bottom
  expect(300, 500, -100, 0, 500);
  expect(64, 64, 0, 0, 64);
}

TEST(ViewerCamera, TurnsAboutXThenYThenZ)
{
  RandomGenerator random(7);
  for (int n = 0; n < 50; ++n)
  {
    ViewerCamera camera = cameraOnBox();
    const auto angle = [&random] { return static_cast<float>(random.uniformLF(-180, 180)); };
    camera.setRotation(angle(), angle(), angle());
    const Point p = {3, -1, 7};
    expectNear(camera.toEye(p), turnedByPose({p[0] - 1, p[1] - 2, p[2] - 2}, camera.getRotation()), 1e-6);
    const auto angles = Maths::decomposeRotationMatrix3D(camera.rotationMatrix());
    ViewerCamera again = cameraOnBox();
    again.setRotation(static_cast<float>(angles[0]), static_cast<float>(angles[1]), static_cast<float>(angles[2]));
    expectNear(again.toEye(p), camera.toEye(p), 1e-5);
  }
}

TEST(ViewerCamera, DecomposesAlsoWhereTwoAxesFallTogether)
{
  for (const float y : {90.F, -90.F})
    for (const float z : {0.F, 25.F})
    {
      ViewerCamera camera, again;
      camera.setRotation(40, y, z);
      const auto angles = Maths::decomposeRotationMatrix3D(camera.rotationMatrix());
      EXPECT_NEAR(angles[1], y, 1e-4);
      EXPECT_EQ(angles[2], 0);
      again.setRotation(static_cast<float>(angles[0]), static_cast<float>(angles[1]), 0);
      expectNear(again.toEye({1, 2, 3}), camera.toEye({1, 2, 3}), 1e-5);
    }
}

TEST(ViewerCamera, DragsAboutTheAxesOfThePicture)
{
  ViewerCamera camera;
  camera.setRotation(20, -35, 60);
  const Point p = {1, 2, 3}, seen = camera.toEye(p);
  camera.combineXYRotation(8, 0);
  expectNear(camera.toEye(p), turned(seen, {1, 0, 0}, 2), 1e-5);
  const Point after = camera.toEye(p);
  camera.combineXYRotation(0, -40);
  expectNear(camera.toEye(p), turned(after, {0, 1, 0}, -10), 1e-5);
  const Point last = camera.toEye(p);
  camera.combineZRotation(15); // a whole degree per pixel
  expectNear(camera.toEye(p), turned(last, {0, 0, 1}, 15), 1e-5);
}

TEST(ViewerCamera, KeepsTheZoomInItsLimits)
{
  ViewerCamera camera;
  camera.zoomBy(50, 600);
  EXPECT_FLOAT_EQ(camera.getZoom(), 1 + 3 * 50.F / 600);
  camera.wheel(120);
  EXPECT_FLOAT_EQ(camera.getZoom(), 1 + 3 * 50.F / 600 - 120.F / 800);
  for (int n = 0; n < 100; ++n) camera.wheel(120);
  EXPECT_FLOAT_EQ(camera.getZoom(), 0.01F);
  camera.zoomBy(100000, 10);
  EXPECT_FLOAT_EQ(camera.getZoom(), 5);
  camera.setZoom(-std::numeric_limits<float>::infinity());
  EXPECT_FLOAT_EQ(camera.getZoom(), 0.01F);
  camera.setZoom(std::numeric_limits<float>::quiet_NaN());
  EXPECT_FLOAT_EQ(camera.getZoom(), 1);
}

TEST(ViewerCamera, PansBySharesOfTheWindow)
{
  ViewerCamera camera;
  camera.pan(30, 20, 600, 400);
  EXPECT_FLOAT_EQ(camera.getXTranslation(), -0.05F);
  EXPECT_FLOAT_EQ(camera.getYTranslation(), 0.05F);
}

TEST(ViewerCamera, ProjectsTheBordersOfTheFrustum)
{
  for (const bool isPerspective : {false, true})
  {
    ViewerCamera camera = cameraOnBox();
    camera.setProjection({isPerspective ? ProjectionGL::Perspective : ProjectionGL::Orthographic, 4});
    camera.setTranslation(0.5F, -0.25F);
    camera.setZoom(2);
    const double d = isPerspective ? 9 : 0; // (7 - 4) * 3
    const double near = d - 3, far = d + 3;
    const Matrix4 m = camera.projectionMatrix();
    expectNear(clip(m, {1.5 - 1.5, -0.75 - 1.5, -near}), {-1, -1, -1}, 1e-12);
    expectNear(clip(m, {1.5 + 1.5, -0.75 + 1.5, -near}), {1, 1, -1}, 1e-12);
    EXPECT_NEAR(clip(m, {0, 0, -far})[2], 1, 1e-12);
    const Point c = {1, 2, 2};
    expectNear(camera.toEye(c), {0, 0, -d}, 1e-12);
    const Matrix4 v = camera.modelViewMatrix();
    expectNear(
        {v[0] + 2 * v[4] + 2 * v[8] + v[12], v[1] + 2 * v[5] + 2 * v[9] + v[13], v[2] + 2 * v[6] + 2 * v[10] + v[14]},
        {0, 0, -d}, 1e-6);
  }
}

TEST(ViewerCamera, FindsThePointUnderAPixel)
{
  RandomGenerator random(11);
  for (const ProjectionGL projection : {ProjectionGL{}, ProjectionGL{ProjectionGL::Perspective, 5}})
    for (int n = 0; n < 20; ++n)
    {
      ViewerCamera camera = cameraOnBox();
      camera.setProjection(projection);
      camera.setRotation(static_cast<float>(random.uniformLF(-180, 180)), 33, -70);
      camera.setTranslation(0.2F, -0.1F);
      camera.setZoom(1.7F);
      const Point p = {random.uniformLF(0, 2), random.uniformLF(0, 4), random.uniformLF(0, 4)};
      const Point place = camera.project(p, 640, 480);
      expectNear(camera.unProject(place, 640, 480), p, 1e-6);
      camera.centerOn(p);
      const Point middle = camera.project(p, 640, 480);
      EXPECT_NEAR(middle[0], 320, 1e-3);
      EXPECT_NEAR(middle[1], 240, 1e-3);
    }
}

TEST(ViewerCamera, MeasuresPixelsAtTheCentre)
{
  for (const ProjectionGL projection : {ProjectionGL{}, ProjectionGL{ProjectionGL::Perspective, 2}})
  {
    ViewerCamera camera = cameraOnBox();
    camera.setProjection(projection);
    const Point a = camera.project({1, 2, 2}, 500, 300), b = camera.project({1.5, 2, 2}, 500, 300);
    EXPECT_NEAR((b[0] - a[0]) * camera.lengthPerPixel(500, 300), 0.5, 1e-9);
  }
}

TEST(ViewerCamera, ExchangesPoses)
{
  Pose pose;
  pose.setXRotation(12.5F);
  pose.setYRotation(-90);
  pose.setXTranslation(-7);
  pose.setYTranslation(130);
  pose.setZoom(250);
  ViewerCamera camera;
  const ViewerCamera::Lights before = camera.getLights();
  camera.setPose(pose);
  EXPECT_EQ(camera.getLights(), before); // all 0 in the pose
  EXPECT_FLOAT_EQ(camera.getXTranslation(), -0.07F);
  EXPECT_FLOAT_EQ(camera.getYTranslation(), 1.3F);
  EXPECT_FLOAT_EQ(camera.getZoom(), 2.5F);
  pose.setDiffuseLight(60);
  camera.setPose(pose);
  EXPECT_EQ(camera.getLights(), (ViewerCamera::Lights{0, 60, 0}));
  const Pose taken = camera.getPose();
  EXPECT_EQ(taken.getXRotation(), 12.5F);
  EXPECT_EQ(taken.getYRotation(), -90);
  EXPECT_EQ(taken.getXTranslation(), -7);
  EXPECT_EQ(taken.getYTranslation(), 130);
  EXPECT_EQ(taken.getZoom(), 250);
  EXPECT_EQ(taken.getDiffuseLight(), 60);
  camera.resetPose();
  EXPECT_EQ(camera.getPose().getZoom(), 100);
  EXPECT_EQ(camera.getPose().getYTranslation(), 0);
  EXPECT_EQ(camera.getRotation(), (std::array<float, 3>{0, 0, 0}));
  pose.setZoom(100000);
  camera.setPose(pose);
  EXPECT_FLOAT_EQ(camera.getZoom(), 5);
}
