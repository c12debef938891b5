// The mouse, the wheel, the panel and the motions beside the formulas that they stand for.
#include "model/pose.h"
#include "viewer/painters/trimeshpaintergl.h"
#include "viewer/viewercanvasgl.h"
#include "viewer/viewermediator.h"
#include "viewer/viewerposepanel.h"
#include "viewer/viewerrandommotion.h"
#include "viewer/viewerspinningmotion.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

namespace
{
std::shared_ptr<const TriMesh<float>> unitCube()
{
  auto mesh = std::make_shared<TriMesh<float>>(3);
  mesh->cube();
  return mesh;
}

/// A canvas of 400 x 300 pixels on a green cube, with its panel.
class Canvas : public testing::Test
{
protected:
  Canvas() : painter(unitCube())
  {
    painter.setMaterial({{0, 255, 0}, 255, 0});
    painter.setName("cube");
    canvas.addPainter(&painter);
    canvas.updateBoundingBox();
    canvas.resize(400, 300);
    canvas.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&canvas));
  }
  ~Canvas() override
  {
    canvas.removePainters();
    canvas.makeCurrent(); // the painter goes before the canvas
  }

  void drag(const QPoint& moved, Qt::KeyboardModifiers modifiers, Qt::MouseButton button = Qt::LeftButton)
  {
    const QPoint start(200, 150);
    QTest::mousePress(&canvas, button, modifiers, start);
    QMouseEvent move(QEvent::MouseMove, start + moved, canvas.mapToGlobal(start + moved), Qt::NoButton, button,
                     modifiers);
    QApplication::sendEvent(&canvas, &move);
    QTest::mouseRelease(&canvas, button, modifiers, start + moved);
  }
  void turnWheel(int delta)
  {
    QWheelEvent event(QPointF(200, 150), canvas.mapToGlobal(QPoint(200, 150)), {}, {0, delta}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas, &event);
  }

  ViewerCanvasGL canvas;
  TriMeshPainterGL painter;
  ViewerPosePanel panel;
  ViewerMediator mediator{canvas, panel, nullptr};
};

bool isPressedOnly(const QSignalSpy& spy, const Pose& pose)
{
  return spy.isEmpty() && pose.getXRotation() == 0 && pose.getZoom() == 100;
}
} // namespace

TEST_F(Canvas, MapsTheMouseByItsModifiers)
{
  QSignalSpy changed(&canvas, &ViewerCanvasGL::poseChanged);
  QTest::mousePress(&canvas, Qt::LeftButton, {}, {10, 10});
  QTest::mouseRelease(&canvas, Qt::LeftButton, {}, {10, 10});
  QTest::mouseDClick(&canvas, Qt::LeftButton, {}, {30, 30});
  EXPECT_TRUE(isPressedOnly(changed, canvas.getPose()));
  drag({0, 40}, Qt::NoModifier);
  EXPECT_NEAR(canvas.getPose().getXRotation(), 10, 1e-3); // 0.25 * dy
  EXPECT_EQ(changed.size(), 1);
  canvas.resetPose();
  drag({-20, 0}, Qt::NoModifier);
  EXPECT_NEAR(canvas.getPose().getYRotation(), -5, 1e-3);
  canvas.resetPose();
  drag({30, 7}, Qt::ShiftModifier);
  EXPECT_NEAR(canvas.getPose().getZRotation(), 30, 1e-3);
  canvas.resetPose();
  drag({40, 0}, Qt::ControlModifier);
  EXPECT_FLOAT_EQ(canvas.camera().getZoom(), 1 + 3 * 40.F / 400);
  canvas.resetPose();
  drag({20, 30}, Qt::AltModifier);
  EXPECT_FLOAT_EQ(canvas.camera().getXTranslation(), -20.F / 400);
  EXPECT_FLOAT_EQ(canvas.camera().getYTranslation(), 30.F / 300);
}

TEST_F(Canvas, OtherCombinationsOnlyRepaint)
{
  QSignalSpy changed(&canvas, &ViewerCanvasGL::poseChanged);
  drag({40, 40}, Qt::ShiftModifier | Qt::ControlModifier);
  drag({40, 40}, Qt::NoModifier, Qt::RightButton);
  drag({40, 40}, Qt::MetaModifier);
  EXPECT_TRUE(isPressedOnly(changed, canvas.getPose()));
}

TEST_F(Canvas, TheWheelZoomsWithinItsLimits)
{
  turnWheel(120);
  EXPECT_FLOAT_EQ(canvas.camera().getZoom(), 1 - 120.F / 800);
  turnWheel(-240);
  EXPECT_FLOAT_EQ(canvas.camera().getZoom(), 1 + 120.F / 800);
  for (int n = 0; n < 20; ++n) turnWheel(120);
  EXPECT_FLOAT_EQ(canvas.camera().getZoom(), 0.01F);
  for (int n = 0; n < 60; ++n) turnWheel(-120);
  EXPECT_FLOAT_EQ(canvas.camera().getZoom(), 5);
}

TEST_F(Canvas, PanelAndCanvasShowTheSame)
{
  drag({0, 40}, Qt::NoModifier);
  EXPECT_NEAR(panel.findChild<QDoubleSpinBox*>("xRotation")->value(), 10, 0.05);
  panel.findChild<QDoubleSpinBox*>("yRotation")->setValue(45);
  EXPECT_FLOAT_EQ(canvas.getPose().getYRotation(), 45);
  panel.findChild<QSpinBox*>("xTranslation")->setValue(-30);
  EXPECT_FLOAT_EQ(canvas.camera().getXTranslation(), -0.3F);
  panel.findChild<QSpinBox*>("zoom")->setValue(250);
  EXPECT_FLOAT_EQ(canvas.camera().getZoom(), 2.5F);
  panel.findChild<QSpinBox*>("boundingBoxScaling")->setValue(200);
  EXPECT_NEAR(canvas.camera().getSceneSize(), std::sqrt(3.0), 1e-5);
  panel.findChild<QSpinBox*>("ambientLight")->setValue(55);
  panel.findChild<QSpinBox*>("diffuseLight")->setValue(0);
  EXPECT_EQ(canvas.camera().getLights().ambient, 55);
  EXPECT_EQ(canvas.camera().getLights().diffuse, 0);
  panel.findChild<QComboBox*>("projectionType")->setCurrentIndex(1);
  EXPECT_EQ(canvas.camera().getProjection().type, ProjectionGL::Perspective);
  panel.findChild<QComboBox*>("backgroundType")->setCurrentIndex(0);
  EXPECT_EQ(canvas.getBackground().type, BackgroundGL::Uniform);
  canvas.setRotation(270, 33.333F, 10); // the boxes show -90 and 33.3
  EXPECT_NEAR(panel.findChild<QDoubleSpinBox*>("xRotation")->value(), -90, 1e-6);
  panel.findChild<QDoubleSpinBox*>("zRotation")->setValue(20);
  EXPECT_EQ(canvas.camera().getRotation(), (std::array{270.F, 33.333F, 20.F}));
  Pose dark;
  canvas.setPose(dark); // leaves the lights alone
  EXPECT_EQ(panel.findChild<QSpinBox*>("ambientLight")->value(), 55);
}

TEST_F(Canvas, SnapshotsHaveTheirSizesAndBackgrounds)
{
  canvas.setBackground({BackgroundGL::Uniform, {10, 20, 30}});
  canvas.toggleAxes();
  canvas.setScaleBar(false);
  const QImage shown = canvas.uncroppedSnapshot();
  EXPECT_EQ(shown.size(), QSize(400, 300));
  EXPECT_EQ(shown.pixelColor(1, 1), QColor(10, 20, 30));
  EXPECT_GT(shown.pixelColor(200, 150).green(), 150);
  const QImage large = canvas.snapshot(3, true);
  EXPECT_EQ(large.size(), QSize(1200, 900));
  EXPECT_EQ(large.pixelColor(1, 1).alpha(), 0);
  EXPECT_EQ(large.pixelColor(600, 450).alpha(), 255);
  const QImage cropped = canvas.croppedSnapshot();
  const double side = 1 / canvas.camera().lengthPerPixel(400, 300); // of the cube
  EXPECT_NEAR(cropped.width(), side, 1.5);
  EXPECT_NEAR(cropped.height(), side, 1.5);
  EXPECT_EQ(ViewerCanvasGL::cropImage(large).width(), ViewerCanvasGL::cropImage(canvas.snapshot(3, false)).width());
  QImage empty(5, 4, QImage::Format_RGB32);
  empty.fill(Qt::red);
  EXPECT_EQ(ViewerCanvasGL::cropImage(empty).size(), QSize(5, 4));
  canvas.setBackground({BackgroundGL::LinearGradient, {10, 20, 30}});
  EXPECT_EQ(canvas.croppedSnapshot().size(), cropped.size());
}

TEST_F(Canvas, PicksAndCentresOnTheSurface)
{
  const auto hit = canvas.pick({200, 150});
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->painter->getName(), "cube");
  EXPECT_NEAR(hit->point[2], 1, 1e-3);
  const ViewerCamera::Point p = canvas.unProject({200, 150}, 0.5F);
  EXPECT_NEAR(p[2], 0.5, 1e-6); // the middle of the depths
  EXPECT_FALSE(canvas.centerOn({2, 2}));
  const QPoint corner(200 + 90, 150 - 90);
  const auto before = canvas.pick(corner);
  ASSERT_TRUE(before);
  EXPECT_TRUE(canvas.centerOn(corner));
  const auto after = canvas.pick({200, 150});
  ASSERT_TRUE(after);
  for (std::size_t axis = 0; axis < 2; ++axis) EXPECT_NEAR(after->point[axis], before->point[axis], 0.01);
}

TEST(ViewerMotions, TurnByTheirAngles)
{
  ViewerSpinningMotion spin;
  QSignalSpy turned(&spin, &ViewerMotion::rotationChanged);
  spin.setRotation(10, 175, 20);
  spin.setMotionAngle(10);
  spin.step();
  EXPECT_EQ(turned.last(), (QVariantList{10.F, -175.F, 20.F})); // 185 - 360
  spin.setAxis(0);
  spin.setMotionAngle(-200);
  spin.step();
  EXPECT_EQ(turned.last().at(0).toFloat(), 170);
  EXPECT_FALSE(spin.isActive());
  spin.toggle();
  EXPECT_TRUE(spin.isActive());
  spin.setActive(false);
  EXPECT_FALSE(spin.isActive());
}

TEST(ViewerMotions, RandomMotionFlipsOnceInAThousandSteps)
{
  ViewerRandomMotion motion(nullptr, 5);
  motion.setMotionAngle(3);
  constexpr int numSteps = 100000;
  float last[3] = {0, 0, 0};
  int signs[3] = {1, 1, 1}, numFlips = 0, numSimultaneous = 0;
  QObject::connect(&motion, &ViewerMotion::rotationChanged,
                   [&](float x, float y, float z)
                   {
                     const float angles[] = {x, y, z};
                     int flips = 0;
                     for (int axis = 0; axis < 3; ++axis)
                     {
                       EXPECT_LE(std::abs(angles[axis]), 180);
                       const float step = std::remainder(angles[axis] - last[axis], 360.F);
                       EXPECT_NEAR(std::abs(step), 3, 1e-3);
                       flips += (step > 0 ? 1 : -1) != signs[axis];
                       signs[axis] = step > 0 ? 1 : -1;
                       last[axis] = angles[axis];
                     }
                     numFlips += flips;
                     numSimultaneous += flips > 1;
                   });
  for (int n = 0; n < numSteps; ++n) motion.step();
  EXPECT_NEAR(numFlips, 300, 5 * std::sqrt(300.0)); // three directions
  EXPECT_LE(numSimultaneous, 5);                    // each on its own
}

TEST_F(Canvas, MotionsGoOnFromThePoseThatIsShown)
{
  canvas.setRotation(30, 40, 50);
  mediator.setRandomMotionAngle(7);
  mediator.spinningMotion().step();
  EXPECT_FLOAT_EQ(canvas.getPose().getYRotation(), 47);
  EXPECT_FLOAT_EQ(canvas.getPose().getXRotation(), 30);
  mediator.setMotionTimeout(1);
  mediator.toggleRandomMotion();
  EXPECT_TRUE(mediator.motionActions()[1]->isChecked());
  EXPECT_TRUE(QTest::qWaitFor([this] { return canvas.getPose().getXRotation() > 40; }));
  mediator.toggleSpinningMotion();
  EXPECT_FALSE(mediator.randomMotion().isActive());
  mediator.toggleSpinningMotion();
}
