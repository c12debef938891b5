#include "scene_pictures.h"

#include "viewer/painters/framebuffergl.h"

#include <algorithm>

#ifdef __SANITIZE_ADDRESS__
/// What the libraries of OpenGL lose when the context unloads them cannot be told from ours.
extern "C" const char* __asan_default_options()
{
  return "detect_leaks=0";
}
#endif

namespace
{
std::size_t offset(const Picture& picture, int x, int y)
{
  return 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) + static_cast<std::size_t>(x));
}
} // namespace

Rgb Picture::at(int x, int y) const
{
  const std::size_t i = offset(*this, x, y);
  return {pixels[i], pixels[i + 1], pixels[i + 2]};
}

int Picture::alphaAt(int x, int y) const
{
  return pixels[offset(*this, x, y) + 3];
}

std::array<int, 4> Picture::extent() const
{
  std::array<int, 4> box = {width, height, -1, -1};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      if (at(x, y) != Rgb{0, 0, 0})
        box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x), std::max(box[3], y)};
  return box;
}

int Picture::numColored() const
{
  int count = 0;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) count += at(x, y) != Rgb{0, 0, 0};
  return count;
}

ScenePictures::ScenePictures()
{
  scene.setBackground({BackgroundGL::Uniform, {0, 0, 0}});
  scene.setScaleBarVisible(false);
  scene.setAxesVisible(false);
  scene.camera().setLights({100, 0, 0});
}

TriMeshPainterGL& ScenePictures::addBox(const Vector<float>& low, const Vector<float>& high, const Rgb& color,
                                        float opacity)
{
  auto mesh = std::make_shared<TriMesh<float>>(3);
  mesh->cube();
  mesh->scale(high - low);
  mesh->translate(low);
  mesh->computeNormals();
  painters.push_back(std::make_unique<TriMeshPainterGL>(mesh));
  painters.back()->setMaterial({color, opacity, 0});
  scene.addPainter(*painters.back());
  scene.updateBoundingBox();
  return *painters.back();
}

Picture ScenePictures::draw(int width, int height, int numSamples, float pixelRatio)
{
  const FramebufferGL picture(width, height, numSamples);
  scene.paint(width, height, pixelRatio);
  return {width, height, picture.pixels(scene.getBackground().type == BackgroundGL::None)};
}
