// Frame times of a 3D scene of many meshes, and the time that filling its buffers takes: no display is needed.
//
//   scene_frames [MESHES] [TRIANGLES_EACH] [SAMPLES] [OPACITY]
//
// The meshes are balls on a cubic grid, one painter for each; every frame is turned and read to its end.

#include "viewer/painters/framebuffergl.h"
#include "viewer/painters/trimeshpaintergl.h"
#include "viewer/scene/offscreencontext.h"
#include "viewer/scene/scenegl.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <numbers>

namespace
{
constexpr int width = 800;
constexpr int height = 600;
constexpr int numFrames = 40;

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A ball of `numRings` rings of twice as many vertices, and two poles.
TriMesh<float> ball(int numRings, const float* center, float radius)
{
  const int numColumns = 2 * numRings;
  BufferVector<float> coordinates;
  BufferVector<int> indexes;
  const auto add = [&](float x, float y, float z) {
    coordinates.insert(coordinates.end(), {center[0] + radius * x, center[1] + radius * y, center[2] + radius * z});
  };
  add(0, 0, -1);
  for (int i = 1; i <= numRings; ++i)
    for (int j = 0; j < numColumns; ++j)
    {
      const float u = std::numbers::pi_v<float> * (static_cast<float>(i) / static_cast<float>(numRings + 1) - 0.5F);
      const float v = 2 * std::numbers::pi_v<float> * static_cast<float>(j) / static_cast<float>(numColumns);
      add(std::cos(u) * std::cos(v), std::cos(u) * std::sin(v), std::sin(u));
    }
  add(0, 0, 1);
  const auto at = [=](int i, int j) { return 1 + (i - 1) * numColumns + j % numColumns; };
  const int last = 1 + numRings * numColumns;
  for (int j = 0; j < numColumns; ++j)
  {
    indexes.insert(indexes.end(), {0, at(1, j + 1), at(1, j)});
    for (int i = 1; i < numRings; ++i)
      indexes.insert(indexes.end(),
                     {at(i, j), at(i, j + 1), at(i + 1, j + 1), at(i, j), at(i + 1, j + 1), at(i + 1, j)});
    indexes.insert(indexes.end(), {last, at(numRings, j), at(numRings, j + 1)});
  }
  return TriMesh<float>(3, std::move(coordinates), std::move(indexes));
}

std::vector<std::shared_ptr<const TriMesh<float>>> balls(int count, int numTriangles)
{
  const int numRings = std::max(1, static_cast<int>(std::lround(std::sqrt(numTriangles / 4.0))));
  const int side = std::max(1, static_cast<int>(std::ceil(std::cbrt(count))));
  std::vector<std::shared_ptr<const TriMesh<float>>> meshes;
  for (int n = 0; n < count; ++n)
  {
    const float center[] = {static_cast<float>(n % side), static_cast<float>(n / side % side),
                            static_cast<float>(n / side / side)};
    meshes.push_back(std::make_shared<TriMesh<float>>(ball(numRings, center, 0.4F)));
  }
  return meshes;
}

std::vector<std::unique_ptr<TriMeshPainterGL>>
paintersOf(const std::vector<std::shared_ptr<const TriMesh<float>>>& meshes, float opacity)
{
  std::vector<std::unique_ptr<TriMeshPainterGL>> painters;
  for (const auto& mesh : meshes)
  {
    painters.push_back(std::make_unique<TriMeshPainterGL>(mesh));
    painters.back()->setMaterial({{200, 120, 60}, opacity, 32});
  }
  return painters;
}

double frameMilliseconds(SceneGL& scene, int frame)
{
  scene.camera().setRotation(20, static_cast<float>(9 * frame), 0);
  scene.setProjectionDirty();
  const Clock::time_point start = Clock::now();
  scene.paint(width, height, 1);
  glFinish();
  return millisecondsSince(start);
}
} // namespace

int main(int argc, char** argv)
{
  const auto argument = [&](int i, int otherwise) { return argc > i ? std::atoi(argv[i]) : otherwise; };
  const OffscreenContext context;
  const auto meshes = balls(argument(1, 1000), argument(2, 1000));
  long numTriangles = 0;
  for (const auto& mesh : meshes) numTriangles += mesh->getNumTriangles();

  SceneGL scene;
  const FramebufferGL picture(width, height, argument(3, 0));
  const Clock::time_point start = Clock::now();
  const auto painters = paintersOf(meshes, static_cast<float>(argument(4, 255)));
  for (const auto& painter : painters) scene.addPainter(*painter);
  scene.updateBoundingBox();
  const double built = millisecondsSince(start);
  const double first = frameMilliseconds(scene, 0);
  std::vector<double> times;
  for (int frame = 1; frame <= numFrames; ++frame) times.push_back(frameMilliseconds(scene, frame));
  std::sort(times.begin(), times.end());
  std::cout << meshes.size() << " meshes, " << numTriangles << " triangles: normals and painters " << built
            << " ms, first frame with its uploads " << first << " ms, then median " << times[numFrames / 2]
            << " ms, best " << times.front() << " ms, worst " << times.back() << " ms\n"
            << glGetString(GL_RENDERER) << "\n";
}
