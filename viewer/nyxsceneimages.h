#pragma once

#include "viewer/scene/sliceimages.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <array>
#include <future>
#include <memory>

class NYXStack;
class ProgressSubject;
class StackSlice;
class ViewerCanvasGL;

/// The images of a stack in its 3D view: that of one slice as a plane, and all of them as a volume.
class NYXSceneImages : public QObject
{
  Q_OBJECT

public:
  enum Volume
  {
    NoVolume,
    OrthogonalSlices,
    Cloud
  };

  /// Stack and canvas are borrowed.
  NYXSceneImages(NYXStack& stack, ViewerCanvasGL& canvas, QObject* parent);
  ~NYXSceneImages() override;

  int getSlice() const { return _slice; }
  bool isPlaneShown() const { return _isPlaneShown; }
  Volume getVolume() const { return _volumeKind; }
  /// Puts what is shown behind or after other painters were put into the canvas.
  void addPainters();

public slots:
  /// The slice whose image the plane shows; it is read in a thread of its own.
  void setSlice(int slice);
  void showPlane(bool isShown);
  /// In percent.
  void setPlaneOpacity(int percent);
  void setCloudOpacity(int percent);
  /// Where the slice across an axis (0 to 2 for X, Y and Z) is, from 0 to 1 along the volume.
  void setVolumeSlice(int axis, double share);
  /// Reads all images, with a dialog that can cancel it. \return whether the volume is shown as it was asked for
  bool setVolume(Volume kind);
  /// The slices moved or their images changed: what is shown is made anew, and stays until that is there.
  void refresh();
  void renameSlice(const StackSlice& slice);

signals:
  /// Images came into the scene or went.
  void imagesChanged();
  void messageShown(const QString& text);

private:
  void readPlane();
  void takePlane(std::unique_ptr<ImagePlanePainterGL> plane, const QString& problem);
  void readVolume();
  void takeVolume(std::unique_ptr<VoxelMatrixPainterGL> volume, Volume kind);
  /// Makes a painter in a thread of its own, and takes it in that of the windows.
  template <class Painter, class Read, class Take>
  std::shared_ptr<ProgressSubject> startReading(const Read& read, const Take& take);
  void cancelVolume();
  void readAnew();
  void dropPlane();
  void dropVolume();
  void placeSlices();

  NYXStack& _stack;
  ViewerCanvasGL& _canvas;
  int _slice = 0;
  bool _isPlaneShown = false;
  int _planeOpacity = 100;
  int _cloudOpacity = 25;
  int _numPlaneReadings = 0; // only the last one counts
  int _numVolumeReadings = 0;
  // Those that are at work.
  std::shared_ptr<ProgressSubject> _planeReading;
  std::shared_ptr<ProgressSubject> _volumeReading;
  std::array<double, 3> _sliceShares = {0.5, 0.5, 0.5};
  Volume _volumeKind = NoVolume;
  std::unique_ptr<ImagePlanePainterGL> _plane;
  std::unique_ptr<VoxelMatrixPainterGL> _volume;
  QTimer _delay;
  std::vector<std::future<void>> _readers;
};
