// From the models of a stack to their painters: each rendering mode, caps, hidden items, properties.
#include "geometry/reconstruction/stackreconstruction.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "model/model.h"
#include "numeric/progresssubject.h"
#include "scene_pictures.h"
#include "tests/support/stacks.h"
#include "viewer/painters/curvestackpaintergl.h"
#include "viewer/painters/quadmeshpaintergl.h"
#include "viewer/painters/verticespaintergl.h"
#include "viewer/scene/modelpainters.h"
#include "viewer/scene/shownstack.h"
#include "viewer/scene/sliceimages.h"
#include "viewer/scene/stackpainters.h"

namespace
{
/// Five slices with a square contour of 20 x 20 pixels each.
class StackPictures : public ScenePictures
{
protected:
  StackPictures()
  {
    stack.setDefaultRelativePosition(5);
    for (int k = 0; k < 5; ++k) addItem(model, addSlice(stack, 100, 100), {{40, 40}, {60, 40}, {60, 60}, {40, 60}});
    model.getProperties().setQuadMeshWidth(40);
    model.getProperties().setQuadMeshHeight(9);
  }
  ModelGeometry geometryOf(RenderingMode mode)
  {
    model.getProperties().setRenderingMode(mode);
    const ShownStack shown = copyShown(stack, {&model});
    ProgressSubject subject;
    return modelGeometry(*shown.stack->getModel(0), StackReconstruction<float>(*shown.stack), subject);
  }

  Stack stack;
  Model& model = addModel(stack, "tube", MPrimitive::Polygon);
};
} // namespace

TEST_F(StackPictures, EachModeHasItsGeometryAndPainter)
{
  const struct
  {
    RenderingMode mode;
    int numTriangles;
    MeshStyle style;
  } cases[] = {
      {RenderingMode::Dot, 0, {}},
      {RenderingMode::Curve, 0, {}},
      {RenderingMode::Wireframe, 2 * 40 * 8, MeshStyle::Lines},
      {RenderingMode::Surface, 2 * 40 * 8, MeshStyle::Surface},
      {RenderingMode::TriangularMesh, 2 * 4 * 4, MeshStyle::Lines},
      {RenderingMode::TriangularSurface, 2 * 4 * 4, MeshStyle::Surface},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(ModelProperties::toString(c.mode));
    const ModelGeometry geometry = geometryOf(c.mode);
    EXPECT_EQ(geometry.problem, "");
    EXPECT_EQ(geometry.levels->getNumLevels(), 5);
    EXPECT_EQ(geometry.surface ? geometry.surface->getNumTriangles() : 0, c.numTriangles);
    const auto painter = createPainter(geometry, 1);
    ASSERT_NE(painter, nullptr);
    EXPECT_EQ(painter->getName(), "tube");
    EXPECT_EQ(dynamic_cast<VerticesPainterGL*>(painter.get()) != nullptr, c.mode == RenderingMode::Dot);
    EXPECT_EQ(dynamic_cast<CurveStackPainterGL*>(painter.get()) != nullptr, c.mode == RenderingMode::Curve);
    const auto* const mesh = dynamic_cast<TriMeshPainterGL*>(painter.get());
    EXPECT_TRUE(mesh == nullptr || mesh->getStyle() == c.style);
    EXPECT_NEAR(painter->boundingBox().getMaximum()[2], 20, 1e-4);
    EXPECT_NEAR(painter->boundingBox().getMaximum()[0], 10, 1e-4);
  }
}

TEST_F(StackPictures, CapsSmoothingAndMaterialFollowTheModel)
{
  model.getProperties().setBeginCapFlag(true);
  model.getProperties().setEndCapFlag(true);
  const float closed = geometryOf(RenderingMode::TriangularSurface).surface->volume();
  EXPECT_NEAR(closed, 20 * 20 * 20, 1e-2);
  model.getProperties().setVertexSmoothing(5);
  const ModelGeometry smooth = geometryOf(RenderingMode::Surface);
  EXPECT_TRUE(smooth.surface->hasNormals());
  model.getProperties().setSurfaceOpacity(80);
  model.getProperties().setSurfaceShininess(9);
  model.getProperties().setEconomicRendering(true);
  model.getItemProperties().setColor(1, 2, 3);
  const auto painter = createPainter(geometryOf(RenderingMode::Surface), 1);
  const MaterialGL& material = dynamic_cast<TriMeshPainterGL&>(*painter).getMaterial();
  EXPECT_EQ(material.opacity, 80);
  EXPECT_EQ(material.shininess, 9);
  EXPECT_TRUE(material.isEconomic);
  EXPECT_EQ(material.color, (std::array<int, 3>{1, 2, 3}));
  EXPECT_TRUE(painter->isTransparent());
  ModelProperties other = model.getProperties();
  other.setSurfaceOpacity(255);
  EXPECT_FALSE(needsOtherGeometry(model.getProperties(), other));
  other.setQuadMeshWidth(41);
  EXPECT_TRUE(needsOtherGeometry(model.getProperties(), other));
}

TEST_F(StackPictures, HiddenItemsAreLeftOut)
{
  stack.getSlice(4)->getItems().front()->getProperties().setRenderingVisibility(false);
  EXPECT_EQ(geometryOf(RenderingMode::Curve).levels->getNumLevels(), 4);
  model.getItemProperties().setRenderingVisibility(false);
  stack.getSlice(0)->getItems().front()->getProperties().setRenderingVisibility(true); // says otherwise for itself
  const ModelGeometry one = geometryOf(RenderingMode::Surface);
  EXPECT_EQ(one.levels->getNumLevels(), 1);
  EXPECT_NE(one.problem, "");
  EXPECT_NE(createPainter(one, 1), nullptr); // its contour
  stack.getSlice(0)->getItems().front()->getProperties().clear();
  const ModelGeometry none = geometryOf(RenderingMode::Surface);
  EXPECT_EQ(none.problem, "there is nothing to show");
  EXPECT_EQ(createPainter(none, 1), nullptr);
}

TEST_F(StackPictures, TheCopyLiesWhereTheStackLies)
{
  stack.setInvertZAxis(true);
  stack.getSlice(2)->setRegistration(Registration(5, -3, 30.F));
  setPixelSize(*stack.getSlice(3), 2, 3);
  stack.getSlice(4)->setAbsolutePosition(77);
  const ShownStack shown = copyShown(stack, {&model});
  const StackReconstruction<double> original(stack), copy(*shown.stack);
  for (int k = 0; k < 5; ++k)
  {
    EXPECT_EQ(copy.getZMap()[k], original.getZMap()[k]);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(copy.getMap(k)[i], original.getMap(k)[i]);
  }
}

TEST_F(StackPictures, PointsBecomeSymbolsOfTheItemsProperties)
{
  Model& points = addModel(stack, "points", MPrimitive::Polypoint);
  addItem(points, *stack.getSlice(0), {{50, 50}});
  points.getItemProperties().setPointSize(4);
  const float unit = symbolSize(stack);
  EXPECT_NEAR(unit, 0.01 * std::sqrt(100.0 * 100 * 2 + 20 * 20), 1e-4);
  ProgressSubject subject;
  const auto painted = paintModels(copyShown(stack, {&points}), subject);
  ASSERT_EQ(painted.size(), 1u);
  const BoundingBox<float> box = painted[0].painter->boundingBox();
  EXPECT_NEAR(box.getMaximum()[0] - box.getMinimum()[0], 4 * unit, 1e-4);
}

TEST_F(ScenePictures, VolumesLieWhereTheSlicesLie)
{
  auto voxels = std::make_shared<VoxelMatrix<unsigned char>>(20, 30, 3);
  voxels->setZeros();
  for (int k = 0; k < 3; ++k) (*voxels)(4, 25, k) = 255; // row 4, column 25
  Stack stack;
  stack.setDefaultRelativePosition(5);
  for (int k = 0; k < 3; ++k)
  {
    StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
    slice.setImageSource(ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<unsigned char>>(voxels), k));
    if (k == 1) slice.setRegistration(Registration(7, -2, 90));
    if (k == 2) slice.setAbsolutePosition(15); // leaves a gap, filled by the nearest slices
  }
  const StackReconstruction<float> reconstruction(stack);
  ProgressSubject subject;
  const auto painter = createStackVolume(stack, VoxelMatrixPainterGL::Cloud, subject);
  painter->setOpacity(255);
  EXPECT_NEAR(painter->boundingBox().getMinimum()[2], -2.5, 1e-4);
  EXPECT_NEAR(painter->boundingBox().getMaximum()[2], 17.5, 1e-4);
  scene.addPainter(*painter);
  scene.updateBoundingBox();
  const Picture picture = draw(600, 600);
  for (int k = 0; k < 3; ++k)
  {
    const Vector<float>& m = reconstruction.getMap(k);
    const double x = m[0] * 25 + m[1] * 4 + m[2], y = m[3] * 25 + m[4] * 4 + m[5];
    const auto place = scene.camera().project({x, y, reconstruction.getZMap()[k]}, 600, 600);
    EXPECT_GT(picture.at(static_cast<int>(place[0]), 599 - static_cast<int>(place[1]))[0], 150) << "slice " << k;
  }
  EXPECT_LT(picture.numColored(), 3 * 600); // nothing else
  scene.removePainters();
}

TEST_F(ScenePictures, VolumesOfLargeImagesHaveTheExtentOfTheImages)
{
  auto voxels = std::make_shared<VoxelMatrix<unsigned char>>(301, 700, 3);
  voxels->setZeros();
  Stack stack;
  stack.setDefaultRelativePosition(5);
  for (int k = 0; k < 3; ++k)
    stack.addSlice(std::make_unique<StackSlice>())
        .setImageSource(ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<unsigned char>>(voxels), k));
  ProgressSubject subject;
  const auto painter = createStackVolume(stack, VoxelMatrixPainterGL::OrthogonalSlices, subject);
  const Vector<float> size = painter->boundingBox().getMaximum() - painter->boundingBox().getMinimum();
  EXPECT_NEAR(size[0], 700, 1e-2);
  EXPECT_NEAR(size[1], 301, 1e-2);
  EXPECT_NEAR(size[2], 15, 1e-4);
}

TEST_F(ScenePictures, SlicesOfAVolumeAreOpaqueWhereTheImagesAreBlack)
{
  auto voxels = std::make_shared<VoxelMatrix<unsigned char>>(40, 40, 1);
  voxels->setZeros();
  Stack stack;
  StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
  slice.setImageSource(ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<unsigned char>>(voxels), 0));
  slice.setRegistration(Registration(0, 0, 45)); // leaves the corners of the volume without image
  ProgressSubject subject;
  const auto painter = createStackVolume(stack, VoxelMatrixPainterGL::OrthogonalSlices, subject);
  scene.setBackground({BackgroundGL::None, {0, 0, 0}});
  scene.addPainter(*painter);
  scene.updateBoundingBox();
  const Picture picture = draw(300, 300);
  const auto alphaAt = [&](double x, double y)
  {
    const auto place = scene.camera().project({x, y, 0}, 300, 300);
    return picture.alphaAt(static_cast<int>(place[0]), 299 - static_cast<int>(place[1]));
  };
  for (const double x : {-15., -2., 9., 20.}) EXPECT_EQ(alphaAt(x, 1), 255) << x;
  EXPECT_EQ(alphaAt(-24, 24), 0);
  scene.removePainters();
}

TEST_F(StackPictures, ReconstructionStopsWhenItIsCancelled)
{
  struct Canceller : ProgressObserver
  {
    Canceller(ProgressSubject& s, std::string step) : subject(s), lastStep(std::move(step)) {}
    void started(const std::string& message) override
    {
      if (message == lastStep) subject.cancel();
    }
    void progressed(double) override {}
    void finished() override {}
    ProgressSubject& subject;
    std::string lastStep;
  };
  model.getProperties().setVertexSmoothing(1000);
  for (const char* step : {"Reconstructing models...", "Smoothing surfaces..."})
  {
    ProgressSubject subject;
    Canceller canceller(subject, step);
    subject.addObserver(canceller);
    EXPECT_THROW(paintModels(copyShown(stack, {&model}), subject), Cancelled) << step;
  }
}
