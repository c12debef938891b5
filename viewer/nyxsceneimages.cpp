#include "viewer/nyxsceneimages.h"

#include "app/core/errortext.h"
#include "app/core/nyxstack.h"
#include "model/stackslice.h"
#include "numeric/progresssubject.h"
#include "slice/image/nyxprogressrun.h"
#include "viewer/scene/shownstack.h"
#include "viewer/viewercanvasgl.h"

#include <QSignalBlocker>

#include <chrono>

namespace
{
constexpr int delay = 60; // milliseconds, so that many changes are one

float opacityOf(int percent)
{
  return static_cast<float>(qBound(0, percent, 100)) * 2.55F;
}

/// A painter of images that is made in a thread of its own.
template <class Painter> struct Reading
{
  ShownStack shown;
  ProgressSubject subject;
  std::unique_ptr<Painter> painter;
  QString problem;

  template <class Read> void run(const Read& read)
  {
    try
    {
      painter = read(*shown.stack, subject);
    }
    catch (const Cancelled&)
    {
    }
    catch (...)
    {
      problem = handledErrorText();
    }
  }
};

VoxelMatrixPainterGL::Mode modeOf(NYXSceneImages::Volume kind)
{
  return kind == NYXSceneImages::Cloud ? VoxelMatrixPainterGL::Cloud : VoxelMatrixPainterGL::OrthogonalSlices;
}
} // namespace

NYXSceneImages::NYXSceneImages(NYXStack& stack, ViewerCanvasGL& canvas, QObject* parent)
  : QObject(parent), _stack(stack), _canvas(canvas)
{
  _delay.setSingleShot(true);
  _delay.setInterval(delay);
  connect(&_delay, &QTimer::timeout, this, &NYXSceneImages::readAnew);
}

NYXSceneImages::~NYXSceneImages()
{
  const QSignalBlocker blocker(this);
  if (_planeReading) _planeReading->cancel();
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
  if (isShown) return readPlane();
  if (_planeReading) _planeReading->cancel();
  dropPlane();
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

template <class Painter, class Read, class Take>
std::shared_ptr<ProgressSubject> NYXSceneImages::startReading(const Read& read, const Take& take)
{
  std::erase_if(_readers, [](const std::future<void>& reader)
                { return reader.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
  auto reading = std::make_shared<Reading<Painter>>();
  reading->shown = copyShown(_stack, {});
  const auto work = [this, reading, read, take]
  {
    reading->run(read);
    QMetaObject::invokeMethod(
        this, [reading, take] { take(std::move(reading->painter), reading->problem); }, Qt::QueuedConnection);
  };
  _readers.push_back(std::async(std::launch::async, work));
  return {reading, &reading->subject};
}

void NYXSceneImages::readPlane()
{
  const int number = ++_numPlaneReadings; // what is being read is not wanted any more
  if (_slice < 0 || _slice >= _stack.getNumSlices()) return dropPlane();
  if (_planeReading) return _planeReading->cancel(); // the next one begins when it has ended
  _planeReading = startReading<ImagePlanePainterGL>(
      [slice = _slice](const Stack& stack, ProgressSubject& subject)
      { return createSlicePlane(stack, slice, subject); },
      [this, number](std::unique_ptr<ImagePlanePainterGL> plane, const QString& problem)
      {
        _planeReading.reset();
        if (!_isPlaneShown) return;
        number == _numPlaneReadings ? takePlane(std::move(plane), problem) : readPlane();
      });
}

void NYXSceneImages::takePlane(std::unique_ptr<ImagePlanePainterGL> plane, const QString& problem)
{
  dropPlane();
  if (!problem.isEmpty()) emit messageShown(problem);
  if (!plane) return;
  _plane = std::move(plane);
  _plane->setName(_stack.getSlice(_slice)->getName());
  _plane->setOpacity(opacityOf(_planeOpacity));
  addPainters();
}

/// The volume that is shown stays until the new one is there.
void NYXSceneImages::readVolume()
{
  cancelVolume();
  _volumeReading = startReading<VoxelMatrixPainterGL>(
      [mode = modeOf(_volumeKind)](const Stack& stack, ProgressSubject& subject)
      { return createStackVolume(stack, mode, subject); },
      [this, number = _numVolumeReadings](std::unique_ptr<VoxelMatrixPainterGL> volume, const QString& problem)
      {
        if (number != _numVolumeReadings) return;
        if (!problem.isEmpty()) emit messageShown(problem);
        takeVolume(std::move(volume), _volumeKind);
      });
}

void NYXSceneImages::takeVolume(std::unique_ptr<VoxelMatrixPainterGL> volume, Volume kind)
{
  dropVolume();
  if (!volume) return;
  _volume = std::move(volume);
  _volumeKind = kind;
  _volume->setOpacity(opacityOf(_cloudOpacity));
  placeSlices();
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

/// What is being read is not wanted any more.
void NYXSceneImages::cancelVolume()
{
  ++_numVolumeReadings;
  if (_volumeReading) _volumeReading->cancel();
  _volumeReading.reset();
}

void NYXSceneImages::dropVolume()
{
  cancelVolume();
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
    const ShownStack shown = copyShown(_stack, {});
    std::unique_ptr<VoxelMatrixPainterGL> volume;
    if (!runWithProgress(_canvas.window(), tr("Volume"), subject, nullptr,
                         [&] { volume = createStackVolume(*shown.stack, modeOf(kind), subject); }))
      return false;
    takeVolume(std::move(volume), kind);
    return true;
  }
  catch (...)
  {
    emit messageShown(handledErrorText());
    return false;
  }
}

void NYXSceneImages::refresh()
{
  _delay.start();
}

void NYXSceneImages::readAnew()
{
  if (_isPlaneShown) readPlane();
  if (_volumeKind != NoVolume) readVolume();
}

void NYXSceneImages::renameSlice(const StackSlice& slice)
{
  if (_plane && slice.getIndex() == _slice) _plane->setName(slice.getName());
}
