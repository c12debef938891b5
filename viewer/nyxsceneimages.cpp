#include "viewer/nyxsceneimages.h"

#include "app/core/nyxstack.h"
#include "model/stackslice.h"
#include "numeric/progresssubject.h"
#include "slice/image/nyxprogressrun.h"
#include "viewer/errortext.h"
#include "viewer/scene/shownstack.h"
#include "viewer/viewercanvasgl.h"

#include <QSignalBlocker>

#include <chrono>

namespace
{
float opacityOf(int percent)
{
  return static_cast<float>(qBound(0, percent, 100)) * 2.55F;
}

/// What is read of a slice's image in a thread of its own.
struct PlaneReading
{
  ShownStack shown;
  int slice = 0;
  std::unique_ptr<ImagePlanePainterGL> plane;
  QString problem;

  void run()
  {
    try
    {
      ProgressSubject subject;
      plane = createSlicePlane(*shown.stack, slice, subject);
    }
    catch (const Exception& error)
    {
      problem = errorText(error);
    }
    catch (const std::bad_alloc&)
    {
      problem = NYXSceneImages::tr("There is not enough memory for the image");
    }
  }
};
} // namespace

NYXSceneImages::NYXSceneImages(NYXStack& stack, ViewerCanvasGL& canvas, QObject* parent)
  : QObject(parent), _stack(stack), _canvas(canvas)
{
}

NYXSceneImages::~NYXSceneImages()
{
  const QSignalBlocker blocker(this);
  dropPlane();
  dropVolume();
}

void NYXSceneImages::addPainters()
{
  if (_plane) _canvas.addPainter(_plane.get());
  if (_volume) _canvas.addPainter(_volume.get());
  _canvas.updateBoundingBox();
  emit imagesChanged();
}

void NYXSceneImages::setSlice(int slice)
{
  if (slice == _slice) return;
  _slice = slice;
  if (_isPlaneShown) readPlane();
}

void NYXSceneImages::showPlane(bool isShown)
{
  if (isShown == _isPlaneShown) return;
  _isPlaneShown = isShown;
  isShown ? readPlane() : dropPlane();
}

void NYXSceneImages::setPlaneOpacity(int percent)
{
  _planeOpacity = percent;
  if (_plane) _plane->setOpacity(opacityOf(percent));
  _canvas.update();
}

void NYXSceneImages::setCloudOpacity(int percent)
{
  _cloudOpacity = percent;
  if (_volume) _volume->setOpacity(opacityOf(percent));
  _canvas.update();
}

void NYXSceneImages::setVolumeSlice(int axis, double share)
{
  _sliceShares[static_cast<std::size_t>(axis)] = share;
  placeSlices();
  _canvas.update();
}

/// Columns go along X, rows against Y, planes along Z.
void NYXSceneImages::placeSlices()
{
  if (!_volume) return;
  const std::array<int, 3>& sizes = _volume->getSizes();
  const auto place = [](double share, int size) { return qRound(share * (size - 1)); };
  _volume->setSlices(place(1 - _sliceShares[1], sizes[0]), place(_sliceShares[0], sizes[1]),
                     place(_sliceShares[2], sizes[2]));
}

void NYXSceneImages::readPlane()
{
  ++_numReadings; // what is being read is not wanted any more
  if (_slice < 0 || _slice >= _stack.getNumSlices()) return dropPlane();
  std::erase_if(_readers, [](const std::future<void>& reader)
                { return reader.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
  auto reading = std::make_shared<PlaneReading>();
  reading->shown = copyShown(_stack, {});
  reading->slice = _slice;
  const auto work = [this, reading, number = _numReadings]
  {
    reading->run();
    QMetaObject::invokeMethod(
        this, [this, reading, number] { takePlane(std::move(reading->plane), reading->problem, number); },
        Qt::QueuedConnection);
  };
  _readers.push_back(std::async(std::launch::async, work));
}

void NYXSceneImages::takePlane(std::unique_ptr<ImagePlanePainterGL> plane, const QString& problem, int number)
{
  if (number != _numReadings || !_isPlaneShown) return;
  dropPlane();
  if (!problem.isEmpty()) emit messageShown(problem);
  if (!plane) return;
  _plane = std::move(plane);
  _plane->setName(_stack.getSlice(_slice)->getName());
  _plane->setOpacity(opacityOf(_planeOpacity));
  addPainters();
}

void NYXSceneImages::dropPlane()
{
  if (!_plane) return;
  _canvas.removePainter(_plane.get());
  _canvas.makeCurrent();
  _plane.reset();
  _canvas.doneCurrent();
  _canvas.updateBoundingBox();
  emit imagesChanged();
}

void NYXSceneImages::dropVolume()
{
  _volumeKind = NoVolume;
  if (!_volume) return;
  _canvas.removePainter(_volume.get());
  _canvas.makeCurrent();
  _volume.reset();
  _canvas.doneCurrent();
  _canvas.updateBoundingBox();
  emit imagesChanged();
}

bool NYXSceneImages::setVolume(Volume kind)
{
  dropVolume();
  if (kind == NoVolume) return true;
  ProgressSubject subject;
  try
  {
    const auto mode = kind == Cloud ? VoxelMatrixPainterGL::Cloud : VoxelMatrixPainterGL::OrthogonalSlices;
    const ShownStack shown = copyShown(_stack, {});
    std::unique_ptr<VoxelMatrixPainterGL> volume;
    if (!runWithProgress(_canvas.window(), tr("Volume"), subject, nullptr,
                         [&] { volume = createStackVolume(*shown.stack, mode, subject); }))
      return false;
    _volume = std::move(volume);
    _volumeKind = kind;
    _volume->setOpacity(opacityOf(_cloudOpacity));
    placeSlices();
    addPainters();
    return true;
  }
  catch (const Exception& error)
  {
    emit messageShown(errorText(error));
    return false;
  }
}

void NYXSceneImages::refresh()
{
  if (_isPlaneShown) readPlane();
  if (_volumeKind == NoVolume) return;
  dropVolume();
  emit messageShown(tr("The slices changed; the volume is not shown any more"));
}
