#include "viewer/scene/scenegl.h"

#include "viewer/painters/framebuffergl.h"
#include "viewer/painters/stategl.h"

#include <algorithm>
#include <set>
#include <utility>

namespace
{
/// Distances towards the viewer of the corners of a box: the least and the greatest.
std::pair<double, double> depthRange(const BoundingBox<float>& box, const ViewerCamera& camera)
{
  const ViewerCamera::Rotation r = camera.rotationMatrix();
  double low = 0, high = 0;
  for (int axis = 0; axis < 3; ++axis)
  {
    const double factor = r[6 + static_cast<std::size_t>(axis)];
    const double a = factor * double{box.getMinimum()[axis]}, b = factor * double{box.getMaximum()[axis]};
    low += std::min(a, b);
    high += std::max(a, b);
  }
  return {low, high};
}

void merge(BoundingBox<float>& box, const BoundingBox<float>& other)
{
  if (other.isEmpty()) return;
  box.add(other.getMinimum());
  box.add(other.getMaximum());
}

/// A turn and the distance towards the viewer that it counts as.
using DepthTurn = std::pair<double, SceneGL::Turn>;

bool isDrawnTransparent(const SceneGL::Painter& painter)
{
  return painter.isVisible() && painter.isTransparent() && !painter.boundingBox().isEmpty();
}

void addFaceTurns(std::vector<DepthTurn>& turns, SceneGL::Painter& painter, const ViewerCamera& camera)
{
  const auto [far, near] = depthRange(painter.boundingBox(), camera);
  if (painter.hasFaces()) turns.push_back({far, {&painter, PaintPass::BackFaces}});
  turns.push_back({painter.hasFaces() ? near : (far + near) / 2, {&painter, PaintPass::FrontFaces}});
}

/// A turn for each part of the painter between two of the depths at which others have their turns.
void addLayerTurns(std::vector<DepthTurn>& turns, SceneGL::Painter& painter, const ViewerCamera& camera,
                   const std::vector<double>& depths)
{
  const auto [far, near] = depthRange(painter.boundingBox(), camera);
  std::set<double> cuts;
  for (const double depth : depths)
    if (far < depth && depth < near) cuts.insert(depth);
  double start = far;
  DepthRange range; // open at both ends of the whole, where rounding counts
  for (const double cut : cuts)
  {
    range.near = cut;
    turns.push_back({(start + cut) / 2, {&painter, PaintPass::FrontFaces, range}});
    range.far = start = cut;
  }
  range.near = DepthRange().near;
  turns.push_back({(start + near) / 2, {&painter, PaintPass::FrontFaces, range}});
}
} // namespace

void SceneGL::addPainter(Painter& painter)
{
  if (std::find(_painters.begin(), _painters.end(), &painter) == _painters.end()) _painters.push_back(&painter);
}

void SceneGL::removePainter(const Painter& painter)
{
  std::erase(_painters, &painter);
}

void SceneGL::removePainters()
{
  _painters.clear();
}

void SceneGL::updateBoundingBox()
{
  _box = BoundingBox<float>(3);
  for (const Painter* painter : _painters) merge(_box, painter->boundingBox());
  _boundingBoxPainter.setBox(_box);
  _camera.setBoundingBox(_box);
  _isProjectionDirty = true;
}

void SceneGL::applyProjection() const
{
  glMatrixMode(GL_PROJECTION);
  glLoadMatrixd(_camera.projectionMatrix().data());
  glMatrixMode(GL_MODELVIEW);
}

/// From the viewer's place, slightly from above; and, for what has no back, the same from the other side.
void SceneGL::applyLight()
{
  const ViewerCamera::Lights& lights = _camera.getLights();
  const auto set = [](GLenum light, GLenum parameter, int percent)
  {
    const GLfloat level = static_cast<float>(percent) / 100;
    const GLfloat color[] = {level, level, level, 1};
    glLightfv(light, parameter, color);
  };
  const GLfloat none[] = {0, 0, 0, 1}, front[] = {0, 0.2F, 1, 0}, back[] = {0, -0.2F, -1, 0};
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, none);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  for (const GLenum light : {GL_LIGHT0, GL_LIGHT1})
  {
    set(light, GL_AMBIENT, light == GL_LIGHT0 ? lights.ambient : 0);
    set(light, GL_DIFFUSE, lights.diffuse);
    set(light, GL_SPECULAR, lights.specular);
    glLightfv(light, GL_POSITION, light == GL_LIGHT0 ? front : back);
  }
  glEnable(GL_LIGHT0);
}

void SceneGL::applyModelView() const
{
  glMatrixMode(GL_MODELVIEW);
  glLoadMatrixd(_camera.modelViewMatrix().data());
}

void SceneGL::paintSurroundings(int width, int height, float pixelRatio)
{
  _boundingBoxPainter.setColor(_background.contrastingColor());
  _boundingBoxPainter.setPixelRatio(pixelRatio);
  if (_hasBoundingBox) _boundingBoxPainter.paint(PaintPass::Opaque);
  _scaleBarPainter.setColor(_background.contrastingColor());
  _scaleBarPainter.setView(width, height, _camera.lengthPerPixel(width, height), pixelRatio);
  if (_hasScaleBar && !_box.isEmpty()) _scaleBarPainter.paint(PaintPass::Opaque);
  _axesPainter.setView(width, height, pixelRatio, _camera.rotationMatrix());
  if (_hasAxes) _axesPainter.paint(PaintPass::Opaque);
}

void SceneGL::paint(int width, int height, float pixelRatio)
{
  const SquareViewport viewport = SquareViewport::around(width, height);
  glViewport(viewport.x, viewport.y, viewport.side, viewport.side);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  _background.paint();
  if (std::exchange(_isProjectionDirty, false)) applyProjection();
  if (std::exchange(_isLightDirty, false)) applyLight();
  applyModelView();
  paintSurroundings(width, height, pixelRatio);
  for (Painter* painter : _painters) painter->setPixelRatio(pixelRatio);
  // The scene size reaches from the near to the far plane.
  const PaintPass pass = _camera.getBoundingBoxScaling() < 1 ? PaintPass::OpaqueCut : PaintPass::Opaque;
  for (Painter* painter : _painters)
    if (painter->isVisible() && !painter->isTransparent()) painter->paint(pass);
  glDepthMask(GL_FALSE);
  glEnable(GL_BLEND);
  // The alpha of the picture adds up as the colours do, for pictures without background.
  glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  for (const Turn& turn : transparentTurns())
  {
    turn.painter->setDepthRange(turn.range);
    turn.painter->paint(turn.pass);
  }
  glDisable(GL_BLEND);
  glDepthMask(GL_TRUE);
  if (_landmarksPainter == nullptr) return;
  _landmarksPainter->setPixelRatio(pixelRatio);
  _landmarksPainter->paint(PaintPass::Opaque);
}

std::vector<SceneGL::Turn> SceneGL::transparentTurns() const
{
  std::vector<DepthTurn> turns;
  for (Painter* painter : _painters)
    if (isDrawnTransparent(*painter) && !painter->hasLayers()) addFaceTurns(turns, *painter, _camera);
  std::vector<double> depths;
  for (const DepthTurn& turn : turns) depths.push_back(turn.first);
  for (Painter* painter : _painters)
    if (isDrawnTransparent(*painter) && painter->hasLayers()) addLayerTurns(turns, *painter, _camera, depths);
  std::stable_sort(turns.begin(), turns.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<Turn> result;
  for (const auto& [depth, turn] : turns) result.push_back(turn);
  return result;
}

std::optional<SceneGL::Hit> SceneGL::pick(int x, int y, int width, int height)
{
  if (x < 0 || y < 0 || x >= width || y >= height) return std::nullopt;
  const FramebufferGL picture(width, height);
  const StateGL state(GL_ALL_ATTRIB_BITS);
  const SquareViewport viewport = SquareViewport::around(width, height);
  glViewport(viewport.x, viewport.y, viewport.side, viewport.side);
  applyProjection();
  applyModelView();
  glDisable(GL_DITHER);
  glDisable(GL_LIGHTING);
  glEnable(GL_DEPTH_TEST);
  glEnable(GL_SCISSOR_TEST);
  glScissor(x, y, 1, 1);
  glClearColor(0, 0, 0, 0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  for (std::size_t i = 0; i < _painters.size(); ++i)
  {
    const std::size_t number = i + 1;
    glColor3ub(static_cast<GLubyte>(number), static_cast<GLubyte>(number >> 8), static_cast<GLubyte>(number >> 16));
    if (_painters[i]->isVisible()) _painters[i]->paint(PaintPass::Picking);
  }
  const std::vector<std::uint8_t> color = picture.pixel(x, y);
  const std::size_t number =
      color[0] | static_cast<std::size_t>(color[1]) << 8 | static_cast<std::size_t>(color[2]) << 16;
  const ViewerCamera::Point place = {x + 0.5, y + 0.5, picture.depth(x, y)};
  if (number == 0 || number > _painters.size()) return std::nullopt;
  return Hit{_painters[number - 1], _camera.unProject(place, width, height)};
}
