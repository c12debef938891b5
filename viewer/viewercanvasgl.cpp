#include "viewer/viewercanvasgl.h"

#include "viewer/painters/framebuffergl.h"

#include <QGuiApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QSurfaceFormat>
#include <QToolTip>
#include <QWheelEvent>
#include <QtMath>

#include <algorithm>

namespace
{
constexpr int numSamples = 4;
}

ViewerCanvasGL::ViewerCanvasGL(QWidget* parent) : QOpenGLWidget(parent)
{
  qRegisterMetaType<Pose>();
  setObjectName("viewerCanvas");
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(160, 120);
  QSurfaceFormat wanted = format();
  wanted.setDepthBufferSize(24);
  wanted.setSamples(numSamples);
  setFormat(wanted);
  _scene.setLandmarksPainter(&_landmarks);
}

ViewerCanvasGL::~ViewerCanvasGL() = default;

void ViewerCanvasGL::addPainter(PainterGL<float>* painter)
{
  _scene.addPainter(*painter);
}

void ViewerCanvasGL::removePainter(PainterGL<float>* painter)
{
  _scene.removePainter(*painter);
}

void ViewerCanvasGL::removePainters()
{
  _scene.removePainters();
}

void ViewerCanvasGL::updateBoundingBox()
{
  _scene.updateBoundingBox();
  update();
}

void ViewerCanvasGL::setLandmarks(const std::vector<ViewerCamera::Point>& points)
{
  _landmarks.setPoints(points);
  update();
}

void ViewerCanvasGL::setClickFunction(ClickFunction function)
{
  _clickFunction = std::move(function);
  setCursor(_clickFunction ? Qt::CrossCursor : Qt::ArrowCursor);
}

void ViewerCanvasGL::initializeGL()
{
  initializeOpenGLFunctions();
  _scene.setDirty();
}

void ViewerCanvasGL::paintGL()
{
  const QSize size = pixelSize();
  _scene.paint(size.width(), size.height(), static_cast<float>(devicePixelRatioF()));
}

QSize ViewerCanvasGL::pixelSize() const
{
  const qreal ratio = devicePixelRatioF();
  return {qMax(1, qRound(width() * ratio)), qMax(1, qRound(height() * ratio))};
}

/// From the lower left, as OpenGL counts.
QPoint ViewerCanvasGL::pixelAt(const QPoint& point) const
{
  const qreal ratio = devicePixelRatioF();
  return {qFloor((point.x() + 0.5) * ratio), pixelSize().height() - 1 - qFloor((point.y() + 0.5) * ratio)};
}

ViewerCamera::Point ViewerCanvasGL::unProject(const QPoint& point, float depth) const
{
  const QPoint pixel = pixelAt(point);
  return camera().unProject({pixel.x() + 0.5, pixel.y() + 0.5, depth}, pixelSize().width(), pixelSize().height());
}

std::optional<SceneGL::Hit> ViewerCanvasGL::pick(const QPoint& point)
{
  const QPoint pixel = pixelAt(point);
  makeCurrent();
  const auto hit = _scene.pick(pixel.x(), pixel.y(), pixelSize().width(), pixelSize().height());
  doneCurrent();
  return hit;
}

bool ViewerCanvasGL::centerOn(const QPoint& point)
{
  const std::optional<SceneGL::Hit> hit = pick(point);
  if (!hit) return false;
  _scene.camera().centerOn(hit->point);
  showChangedPose();
  return true;
}

Pose ViewerCanvasGL::getPose() const
{
  return camera().getPose();
}

QImage ViewerCanvasGL::snapshot(int scale, bool isTransparent)
{
  const QSize size = pixelSize() * scale;
  const BackgroundGL background = _scene.getBackground();
  if (isTransparent) _scene.setBackground({BackgroundGL::None, background.color});
  makeCurrent();
  std::vector<std::uint8_t> pixels;
  try
  {
    const FramebufferGL picture(size.width(), size.height(), numSamples);
    _scene.paint(size.width(), size.height(), static_cast<float>(devicePixelRatioF() * scale));
    pixels = picture.pixels(isTransparent);
  }
  catch (...)
  {
    doneCurrent();
    _scene.setBackground(background);
    throw;
  }
  doneCurrent();
  _scene.setBackground(background);
  const QImage image(pixels.data(), size.width(), size.height(), 4 * size.width(), QImage::Format_RGBA8888);
  return image.convertToFormat(isTransparent ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}

int ViewerCanvasGL::largestScale()
{
  makeCurrent();
  const int largest = FramebufferGL::largestSize();
  doneCurrent();
  return qMax(1, largest / qMax(pixelSize().width(), pixelSize().height()));
}

namespace
{
/// The box of the pixels for which a condition holds.
QRect boxOf(const QImage& image, const std::function<bool(QRgb)>& isInside)
{
  QRect box;
  for (int y = 0; y < image.height(); ++y)
  {
    const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    const auto* const end = line + image.width();
    const auto* const first = std::find_if(line, end, isInside);
    if (first == end) continue;
    const auto* last = end;
    while (!isInside(last[-1])) --last;
    box = box.united(QRect(static_cast<int>(first - line), y, static_cast<int>(last - first), 1));
  }
  return box;
}
} // namespace

QImage ViewerCanvasGL::cropImage(const QImage& image)
{
  if (image.isNull()) return image;
  const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
  const QRgb border = pixels.pixel(0, 0);
  const auto differs = [&](QRgb pixel) { return qAlpha(border) == 0 ? qAlpha(pixel) > 0 : pixel != border; };
  const QRect box = boxOf(pixels, differs);
  return box.isEmpty() ? image : image.copy(box);
}

/// What is drawn shows in a picture without background, whatever the background is.
QImage ViewerCanvasGL::croppedSnapshot(int scale, bool isTransparent)
{
  const QImage drawn = snapshot(scale, true);
  const QImage image = isTransparent ? drawn : snapshot(scale, false);
  const QRect box = boxOf(drawn, [](QRgb pixel) { return qAlpha(pixel) > 0; });
  return box.isEmpty() ? image : image.copy(box);
}

void ViewerCanvasGL::showChangedPose()
{
  _scene.setProjectionDirty();
  emit poseChanged(getPose());
  update();
}

void ViewerCanvasGL::setProjection(const ProjectionGL& projection)
{
  _scene.camera().setProjection(projection);
  _scene.setProjectionDirty();
  update();
}

void ViewerCanvasGL::setBackground(const BackgroundGL& background)
{
  _scene.setBackground(background);
  update();
}

void ViewerCanvasGL::changeLights(const std::function<void(ViewerCamera::Lights&)>& change)
{
  ViewerCamera::Lights lights = camera().getLights();
  change(lights);
  _scene.camera().setLights(lights);
  _scene.setLightDirty();
  emit poseChanged(getPose());
  update();
}

void ViewerCanvasGL::setAmbientLight(int level)
{
  changeLights([level](ViewerCamera::Lights& lights) { lights.ambient = level; });
}

void ViewerCanvasGL::setDiffuseLight(int level)
{
  changeLights([level](ViewerCamera::Lights& lights) { lights.diffuse = level; });
}

void ViewerCanvasGL::setSpecularLight(int level)
{
  changeLights([level](ViewerCamera::Lights& lights) { lights.specular = level; });
}

void ViewerCanvasGL::setTranslation(float x, float y)
{
  _scene.camera().setTranslation(x, y);
  showChangedPose();
}

void ViewerCanvasGL::setZoom(float zoom)
{
  _scene.camera().setZoom(zoom);
  showChangedPose();
}

void ViewerCanvasGL::setRotation(float x, float y, float z)
{
  _scene.camera().setRotation(x, y, z);
  showChangedPose();
}

void ViewerCanvasGL::setBoundingBoxScaling(float scaling)
{
  _scene.camera().setBoundingBoxScaling(scaling);
  showChangedPose();
}

void ViewerCanvasGL::setPose(const Pose& pose)
{
  _scene.camera().setPose(pose);
  _scene.setLightDirty();
  showChangedPose();
}

void ViewerCanvasGL::resetPose()
{
  _scene.camera().resetPose();
  showChangedPose();
}

void ViewerCanvasGL::setStandardPose1()
{
  setPose(Pose::canonicalPose1());
}

void ViewerCanvasGL::setStandardPose2()
{
  setPose(Pose::canonicalPose2());
}

void ViewerCanvasGL::setStandardPose3()
{
  setPose(Pose::canonicalPose3());
}

void ViewerCanvasGL::setRevStandardPose1()
{
  setPose(Pose::reverseCanonicalPose1());
}

void ViewerCanvasGL::setRevStandardPose2()
{
  setPose(Pose::reverseCanonicalPose2());
}

void ViewerCanvasGL::setRevStandardPose3()
{
  setPose(Pose::reverseCanonicalPose3());
}

void ViewerCanvasGL::toggleBoundingBox()
{
  _scene.setBoundingBoxVisible(!_scene.hasBoundingBox());
  update();
}

void ViewerCanvasGL::toggleScaleBar()
{
  setScaleBar(!_scene.hasScaleBar());
}

void ViewerCanvasGL::toggleAxes()
{
  _scene.setAxesVisible(!_scene.hasAxes());
  update();
}

void ViewerCanvasGL::setScaleBar(bool isVisible)
{
  _scene.setScaleBarVisible(isVisible);
  update();
}

void ViewerCanvasGL::setUnit(const QString& unit)
{
  _scene.setUnit(unit.toStdString());
  update();
}

bool ViewerCanvasGL::event(QEvent* event)
{
  if (event->type() != QEvent::ToolTip) return QOpenGLWidget::event(event);
  const auto* const help = static_cast<QHelpEvent*>(event);
  const std::optional<SceneGL::Hit> hit = pick(help->pos());
  if (hit && !hit->painter->getName().empty())
    QToolTip::showText(help->globalPos(), QString::fromStdString(hit->painter->getName()).toHtmlEscaped(), this);
  else
    QToolTip::hideText();
  return true;
}

void ViewerCanvasGL::mousePressEvent(QMouseEvent* event)
{
  _lastPosition = event->pos();
  _isMoved = false;
}

void ViewerCanvasGL::mouseMoveEvent(QMouseEvent* event)
{
  const QPoint moved = event->pos() - _lastPosition;
  _lastPosition = event->pos();
  _isMoved = _isMoved || !moved.isNull();
  if (event->buttons() == Qt::LeftButton)
    drag(static_cast<float>(moved.x()), static_cast<float>(moved.y()), event->modifiers());
  else
    update();
}

void ViewerCanvasGL::drag(float dx, float dy, Qt::KeyboardModifiers modifiers)
{
  ViewerCamera& camera = _scene.camera();
  if (modifiers == Qt::NoModifier)
    camera.combineXYRotation(dy, dx);
  else if (modifiers == Qt::ShiftModifier)
    camera.combineZRotation(dx);
  else if (modifiers == Qt::ControlModifier)
    camera.zoomBy(dx, width());
  else if (modifiers == Qt::AltModifier)
    camera.pan(dx, dy, width(), height());
  else
    return update();
  showChangedPose();
}

void ViewerCanvasGL::mouseReleaseEvent(QMouseEvent* event)
{
  if (event->button() == Qt::LeftButton && !_isMoved && _clickFunction) _clickFunction(event->pos());
}

void ViewerCanvasGL::wheelEvent(QWheelEvent* event)
{
  _scene.camera().wheel(event->angleDelta().y());
  showChangedPose();
  event->accept();
}
