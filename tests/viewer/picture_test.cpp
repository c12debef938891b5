// Known scenes from known places: silhouettes, what hides what, orientation, and how transparent surfaces mix.
#include "model/pose.h"
#include "scene_pictures.h"
#include "viewer/painters/voxelmatrixpaintergl.h"

#include <cmath>

namespace
{
constexpr Rgb red = {255, 0, 0};
constexpr Rgb green = {0, 255, 0};
constexpr Rgb blue = {0, 0, 255};
constexpr Rgb black = {0, 0, 0};

/// Three bars along the axes from the corner (0, 0, 0), and a small box at the far end so that the scene's box is the
/// cube [0, 10]^3.
class Axes : public ScenePictures
{
protected:
  Axes()
  {
    addBox({1, 0, 0}, {10, 1, 1}, red);
    addBox({0, 1, 0}, {1, 10, 1}, green);
    addBox({0, 0, 1}, {1, 1, 10}, blue);
    addBox({9, 9, 9}, {10, 10, 10}, {255, 255, 0});
  }
  /// What is drawn at a point of the scene.
  Rgb colorAt(const Picture& picture, const ViewerCamera::Point& point) const
  {
    const ViewerCamera::Point place = scene.camera().project(point, picture.width, picture.height);
    return picture.at(static_cast<int>(place[0]), picture.height - 1 - static_cast<int>(place[1]));
  }
};
} // namespace

TEST_F(Axes, PointAsTheStandardPosesSay)
{
  // Where the middles of the bars are seen from the middle of the picture: to the right and upwards; 0 within a bar's
  // width is none of both.
  const struct
  {
    Pose pose;
    std::array<int, 2> x, y, z;
  } cases[] = {
      {Pose::canonicalPose1(), {-1, 0}, {0, 1}, {0, 0}},        // turned by 180 degrees about Y
      {Pose::canonicalPose2(), {0, 0}, {0, 1}, {1, 0}},         // z to the right, x away from the viewer
      {Pose::canonicalPose3(), {1, 0}, {0, 0}, {0, -1}},        // y to the viewer, z downwards
      {Pose::reverseCanonicalPose1(), {1, 0}, {0, 1}, {0, 0}},  // as the axes are drawn on paper
      {Pose::reverseCanonicalPose2(), {0, 0}, {0, 1}, {-1, 0}}, // x to the viewer
      {Pose::reverseCanonicalPose3(), {1, 0}, {0, 0}, {0, 1}},  // z upwards
  };
  constexpr int side = 300;
  const double perPixel = scene.camera().lengthPerPixel(side, side);
  for (const auto& c : cases)
  {
    SCOPED_TRACE(&c - cases);
    scene.camera().setPose(c.pose);
    scene.setDirty();
    const Picture picture = draw(side, side);
    // All bars begin at the corner of the cube that is at (-5, -5, -5) from the middle.
    const auto seen = [&](const Rgb& color)
    {
      std::array<double, 3> sum = {0, 0, 0};
      for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
          if (picture.at(x, y) == color) sum = {sum[0] + x + 0.5, sum[1] + side - y - 0.5, sum[2] + 1};
      return sum;
    };
    const std::array<std::array<int, 2>, 3> expected = {c.x, c.y, c.z};
    const std::array colors = {red, green, blue};
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
      const auto [sx, sy, count] = seen(colors[axis]);
      if (count == 0) continue; // it points away and lies behind another one
      const double length = (expected[axis][0] != 0 || expected[axis][1] != 0) ? 9 : 1;
      EXPECT_NEAR(count * perPixel * perPixel, length, 0.08 * length + 0.05) << "area, axis " << axis;
      // the bar's middle is 5.5 along its axis and half its width along the others, all from the corner
      ViewerCamera::Point middle = {0.5, 0.5, 0.5};
      middle[axis] = 5.5;
      const ViewerCamera::Point place = scene.camera().project(middle, side, side);
      EXPECT_NEAR(sx / count, place[0], 1) << "axis " << axis;
      EXPECT_NEAR(sy / count, place[1], 1) << "axis " << axis;
      ViewerCamera::Point corner = scene.camera().project({0.5, 0.5, 0.5}, side, side);
      const auto direction = [&](std::size_t k) { return std::lround((place[k] - corner[k]) * perPixel / 5); };
      EXPECT_EQ(direction(0), expected[axis][0]) << "axis " << axis;
      EXPECT_EQ(direction(1), expected[axis][1]) << "axis " << axis;
    }
  }
}

TEST_F(ScenePictures, NearBoxesHideFarOnes)
{
  addBox({0, 0, 0}, {4, 4, 1}, red);
  addBox({1, 1, 5}, {3, 3, 6}, green); // nearer to the viewer when nothing is turned
  for (const ProjectionGL projection : {ProjectionGL{}, ProjectionGL{ProjectionGL::Perspective, 3}})
  {
    scene.camera().setProjection(projection);
    scene.camera().setPose(Pose());
    scene.setDirty();
    EXPECT_EQ(draw(200, 200).at(100, 100), green);
    scene.camera().setPose(Pose::canonicalPose1());
    scene.setDirty();
    const Picture back = draw(200, 200);
    EXPECT_EQ(back.at(100, 100), red);
    for (std::size_t i = 0; i < back.pixels.size(); i += 4) EXPECT_EQ(back.pixels[i + 1], 0); // no green anywhere
  }
}

TEST_F(ScenePictures, SilhouettesHaveTheSizesOfBothProjections)
{
  addBox({0, 0, 0}, {2, 2, 2}, red);
  const double s = std::sqrt(3.0); // the scene size
  const auto sideOf = [this]
  {
    const auto [left, top, right, bottom] = draw(400, 400).extent();
    EXPECT_EQ(right - left, bottom - top);
    return right - left + 1;
  };
  EXPECT_NEAR(sideOf(), 2 / (2 * s) * 400, 1.01);
  scene.camera().setProjection({ProjectionGL::Perspective, 4});
  scene.setDirty();
  // The front face is 3 s - 1 from the eye, the near plane, whose borders are at s, 2 s.
  EXPECT_NEAR(sideOf(), 2 / (2 * s) * (2 * s) / (3 * s - 1) * 400, 1.01);
  scene.camera().setZoom(0.5F);
  scene.setDirty();
  EXPECT_NEAR(sideOf(), 2 / (4 * s) * (2 * s) / (3 * s - 1) * 400, 1.01);
}

TEST_F(ScenePictures, WideWindowsCutTheSquareAtTopAndBottom)
{
  addBox({0, 0, 0}, {6, 6, 6}, red);
  const Picture square = draw(400, 400), wide = draw(400, 200), high = draw(200, 400);
  for (int y = 0; y < 200; y += 7)
    for (int x = 0; x < 400; x += 7)
    {
      EXPECT_EQ(wide.at(x, y), square.at(x, y + 100));
      EXPECT_EQ(high.at(y, x), square.at(y + 100, x));
    }
}

TEST_F(ScenePictures, InsidesAreSeenWhereSurfacesAreOpenOrCut)
{
  addBox({0, 0, 0}, {4, 4, 4}, red);
  EXPECT_EQ(draw(200, 200).at(100, 100), red);
  scene.camera().setBoundingBoxScaling(0.3F); // the near plane lies inside, and the far wall behind the far plane
  scene.setDirty();
  EXPECT_EQ(draw(200, 200).at(100, 100), black);
  scene.camera().setPose(Pose::canonicalPose2());
  scene.camera().setRotation(0, 45, 0); // now an edge of the far walls is within, near a corner of the picture
  scene.camera().setBoundingBoxScaling(0.7F);
  scene.setDirty();
  EXPECT_EQ(draw(200, 200).at(30, 100), red);
  scene.camera().setPose(Pose());
  scene.camera().setBoundingBoxScaling(1);
  auto open = std::make_shared<TriMesh<float>>(painters[0]->getTriMesh());
  for (int i = 0; i < open->getNumTriangleSlots(); ++i) // without the side to the viewer
    if (open->getTriangleIndexes(i).getSize() == 3 && open->triangle(i).cog()[2] > 3.9F) open->removeTriangle(i);
  TriMeshPainterGL painter(open);
  painter.setMaterial({green, 255, 0});
  scene.removePainters();
  scene.addPainter(painter);
  scene.setDirty();
  EXPECT_EQ(draw(200, 200).at(100, 100), green);
  auto inward = std::make_shared<TriMesh<float>>(painters[0]->getTriMesh()); // drawn from both sides, too
  inward->flip();
  TriMeshPainterGL insideOut(inward);
  insideOut.setMaterial({blue, 255, 0});
  scene.removePainters();
  scene.addPainter(insideOut);
  EXPECT_EQ(draw(200, 200).at(100, 100), blue);
  scene.removePainters();
}

TEST_F(ScenePictures, TranslationMovesThePictureByTheSceneSize)
{
  addBox({0, 0, 0}, {2, 2, 2}, red);
  const std::array<int, 4> before = draw(400, 400).extent();
  scene.camera().setTranslation(0.2F, -0.1F); // the frame goes to the right and down
  scene.setDirty();
  const std::array<int, 4> after = draw(400, 400).extent();
  EXPECT_NEAR(before[0] - after[0], 40, 1);
  EXPECT_NEAR(before[1] - after[1], 20, 1);
}

TEST_F(ScenePictures, NestedTransparentSurfacesMixFromBackToFront)
{
  // Each box has two walls of opacity 1/2 across the line of view; the order of adding does not matter.
  const auto mixed = [](const Rgb& under, const Rgb& over)
  {
    Rgb result;
    for (std::size_t i = 0; i < 3; ++i) result[i] = (under[i] + over[i]) / 2;
    return result;
  };
  const Rgb expected = mixed(mixed(mixed(mixed(black, red), green), green), red);
  for (const bool isOuterFirst : {true, false})
  {
    scene.removePainters();
    if (isOuterFirst) addBox({0, 0, 0}, {6, 6, 6}, red, 127.5F);
    addBox({2, 2, 2}, {4, 4, 4}, green, 127.5F);
    if (!isOuterFirst) addBox({0, 0, 0}, {6, 6, 6}, red, 127.5F);
    const Rgb seen = draw(200, 200).at(100, 103);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(seen[i], expected[i], 3) << i;
  }
}

TEST_F(ScenePictures, TransparentTurnsGoFromFarToNear)
{
  TriMeshPainterGL& inner = addBox({2, 2, 2}, {4, 4, 4}, red, 100);
  TriMeshPainterGL& outer = addBox({0, 0, 0}, {6, 6, 6}, red, 100);
  TriMeshPainterGL& behind = addBox({0, 0, -9}, {6, 6, -5}, red, 100);
  using Turn = SceneGL::Turn;
  const std::vector<Turn> expected = {{&behind, PaintPass::BackFaces}, {&behind, PaintPass::FrontFaces},
                                      {&outer, PaintPass::BackFaces},  {&inner, PaintPass::BackFaces},
                                      {&inner, PaintPass::FrontFaces}, {&outer, PaintPass::FrontFaces}};
  EXPECT_EQ(scene.transparentTurns(), expected);
  inner.setVisible(false);
  EXPECT_EQ(scene.transparentTurns().size(), 4u);
}

TEST_F(ScenePictures, PicturesWithoutBackgroundKeepTheColoursOfWhatIsInThem)
{
  scene.setBackground({BackgroundGL::None, {0, 0, 0}});
  addBox({0, 0, 0}, {2, 2, 2}, {200, 100, 50}, 127.5F);
  const Picture picture = draw(100, 100);
  EXPECT_EQ(picture.alphaAt(2, 2), 0);
  EXPECT_NEAR(picture.alphaAt(50, 52), 255 * 0.75, 2); // two walls
  EXPECT_NEAR(picture.at(50, 52)[0], 200, 3);
  EXPECT_NEAR(picture.at(50, 52)[1], 100, 3);
}

TEST_F(ScenePictures, PickingFindsPainterAndPoint)
{
  TriMeshPainterGL& box = addBox({0, 0, 0}, {2, 2, 2}, red, 10); // also what is transparent
  TriMeshPainterGL& hidden = addBox({0, 0, 5}, {2, 2, 6}, green);
  hidden.setVisible(false);
  const std::vector<std::uint8_t> before = draw(200, 200).pixels;
  const auto hit = scene.pick(100, 100, 200, 200);
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->painter, &box);
  EXPECT_NEAR(hit->point[2], 2, 1e-3);
  EXPECT_NEAR(hit->point[0], 1, 0.05);
  EXPECT_FALSE(scene.pick(3, 3, 200, 200));
  EXPECT_FALSE(scene.pick(-1, 500, 200, 200));
  EXPECT_EQ(draw(200, 200).pixels, before); // nothing of it stays
}

TEST_F(ScenePictures, CloudsShowEachVoxelInPlace)
{
  VoxelMatrix<unsigned char> volume(4, 6, 8);
  volume.setZeros();
  volume(3, 1, 2) = 255;
  const VolumePlacement placement{{0, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 0, 2}};
  for (const auto mode : {VoxelMatrixPainterGL::Cloud, VoxelMatrixPainterGL::OrthogonalSlices})
  {
    VoxelMatrixPainterGL painter(volume, placement, mode);
    painter.setOpacity(255);
    painter.setSlices(3, 1, 2);
    scene.removePainters();
    scene.addPainter(painter);
    scene.updateBoundingBox();
    EXPECT_FLOAT_EQ(scene.getBoundingBox().getMaximum()[2], 15);
    for (const Pose& pose : {Pose(), Pose::canonicalPose1(), Pose::canonicalPose2(), Pose::canonicalPose3()})
    {
      scene.camera().setPose(pose);
      scene.setDirty();
      const Picture picture = draw(300, 300);
      const ViewerCamera::Point place = scene.camera().project({1, -3, 4}, 300, 300);
      const Rgb color = picture.at(static_cast<int>(place[0]), 299 - static_cast<int>(place[1]));
      EXPECT_GT(color[0], 150) << "mode " << mode;
    }
    scene.removePainters();
  }
}

TEST_F(ScenePictures, BordersOfImagesInSlicesKeepTheirGrey)
{
  for (const int size : {20, 600}) // also where voxels are drawn as blocks
  {
    SCOPED_TRACE(size);
    VoxelMatrix<unsigned char> volume(size, size, 1);
    volume.setZeros();
    for (int i = 0; i < size; ++i)
      for (int j = 0; j < size; ++j)
        if (i + j > size) volume(i, j, 0) = 200;
    VoxelMatrixPainterGL painter(volume, {}, VoxelMatrixPainterGL::OrthogonalSlices);
    scene.addPainter(painter);
    scene.updateBoundingBox();
    const Picture picture = draw(500, 500);
    int numGrey = 0;
    for (int y = 0; y < picture.height; ++y)
      for (int x = 0; x < picture.width; ++x)
      {
        const int grey = picture.at(x, y)[0];
        ASSERT_TRUE(grey == 0 || grey >= 198) << grey << " at " << x << ' ' << y;
        numGrey += grey > 0;
      }
    const auto [left, top, right, bottom] = picture.extent();
    EXPECT_NEAR(numGrey, (right - left) * (bottom - top) / 2, 0.06 * (right - left) * (bottom - top));
    scene.removePainters();
  }
}

TEST_F(ScenePictures, CloudsVeilTransparentSurfacesInThemAsOpaqueOnes)
{
  VoxelMatrix<unsigned char> volume(16, 16, 16);
  volume.fill(255);
  VoxelMatrixPainterGL cloud(volume, {}, VoxelMatrixPainterGL::Cloud);
  cloud.setOpacity(40);
  TriMeshPainterGL& surface = addBox({4, 4, 4}, {11, 11, 11}, red);
  scene.addPainter(cloud);
  scene.updateBoundingBox();
  for (const auto& [x, y] : {std::pair{0, 0}, std::pair{5, 8}, std::pair{0, 180}, std::pair{90, 0}})
  {
    scene.camera().setRotation(static_cast<float>(x), static_cast<float>(y), 0);
    scene.setDirty();
    surface.setMaterial({red, 255});
    const Rgb opaque = draw(200, 200).at(100, 100);
    EXPECT_GT(opaque[1], 60); // of the cloud in front
    EXPECT_LT(opaque[1], 230);
    surface.setMaterial({red, 254});
    EXPECT_NEAR(draw(200, 200).at(100, 100)[1], opaque[1], 25) << x << ' ' << y; // one layer is 25
  }
  scene.removePainters();
}

/// The last blocks of voxels that are drawn as one are not whole: what is in the others stays in its place.
TEST_F(ScenePictures, LargeVolumesKeepTheirExtent)
{
  constexpr int size = 301;
  VoxelMatrix<unsigned char> volume(1, size, 1);
  volume.setZeros();
  volume(0, size - 1, 0) = 255; // the last block alone is bright
  const VolumePlacement placement{{0, 0, 0}, {1, 0, 0}, {0, -20, 0}, {0, 0, 1}};
  VoxelMatrixPainterGL painter(volume, placement, VoxelMatrixPainterGL::OrthogonalSlices);
  EXPECT_EQ(painter.boundingBox().getMaximum()[0], size - 0.5F);
  scene.addPainter(painter);
  scene.updateBoundingBox();
  scene.camera().setZoom(5);
  scene.camera().centerOn({size - 1.0, 0, 0});
  const Picture picture = draw(600, 600);
  const auto brightness = [&](double column)
  {
    const auto place = scene.camera().project({column, 0, 0}, 600, 600);
    return picture.at(static_cast<int>(place[0]), 300)[0];
  };
  EXPECT_LT(brightness(298.9), 100); // the block goes from 299.5 to 301.5
  EXPECT_GT(brightness(300.1), 150);
  scene.removePainters();
}
