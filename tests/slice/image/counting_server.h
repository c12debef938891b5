#pragma once

#include "app/core/nyxpreferences.h"
#include "image/imagereader.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "slice/image/nyxsliceimageproxy.h"
#include "slice/image/nyxsliceimageserver.h"
#include "slice/image/nyxsliceimageserverdata.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

/// What the threads that read have done, in order.
struct ReadLog
{
  std::mutex mutex;
  std::vector<int> begun;           // planes
  std::vector<int> ended;           // the same, without those that were cancelled
  std::atomic<bool> isHeld = false; // reading waits as long

  void note(std::vector<int>& list, int plane)
  {
    const std::lock_guard lock(mutex);
    list.push_back(plane);
  }
  std::vector<int> getBegun()
  {
    const std::lock_guard lock(mutex);
    return begun;
  }
  std::vector<int> getEnded()
  {
    const std::lock_guard lock(mutex);
    return ended;
  }
};

/// Server that notes which planes of a volume are read, and can be made slow.
class CountingServer : public NYXSliceImageServer
{
  const std::shared_ptr<ReadLog> _log = std::make_shared<ReadLog>(); // the threads', too

public:
  ReadLog& log = *_log;
  int readMilliseconds = 0;
  std::int64_t memory = std::int64_t{1} << 40;

protected:
  std::unique_ptr<NYXImageServerData> newData(const NYXImageProxy& proxy) override
  {
    return std::make_unique<NYXSliceImageServerData>(
        dynamic_cast<const NYXSliceImageProxy&>(proxy),
        [threadsLog = _log, milliseconds = readMilliseconds](Image& image, const ImageSource& source,
                                                             ProgressSubject& subject)
        { read(*threadsLog, image, source, subject, milliseconds); });
  }
  std::int64_t totalMemory() const override { return memory; }

private:
  static void read(ReadLog& readLog, Image& image, const ImageSource& source, ProgressSubject& subject,
                   int milliseconds)
  {
    const auto* const planeSource = dynamic_cast<const ImageSourceVoxelMatrixPlane*>(&source);
    const int plane = planeSource ? planeSource->getPlane() : -1;
    readLog.note(readLog.begun, plane);
    for (int i = 0; readLog.isHeld || i < milliseconds; ++i)
    {
      subject.throwIfCancelled("CountingServer::read()");
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ImageReader::read(image, source, subject);
    readLog.note(readLog.ended, plane);
  }
};

/// Sets the share of memory for a scope.
class MemoryShare
{
public:
  explicit MemoryShare(int percent) : _before(NYXPreferences::getPercentMemoryUsage())
  {
    NYXPreferences::setPercentMemoryUsage(percent);
  }
  MemoryShare(const MemoryShare&) = delete;
  MemoryShare& operator=(const MemoryShare&) = delete;
  ~MemoryShare() { NYXPreferences::setPercentMemoryUsage(_before); }

private:
  int _before;
};

inline void processEvents()
{
  QCoreApplication::processEvents();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Lets the event loop run until the condition holds; false when it does not within ten seconds.
template <class Condition> bool waitUntil(const Condition& condition)
{
  QElapsedTimer timer;
  for (timer.start(); timer.elapsed() < 10'000; std::this_thread::sleep_for(std::chrono::milliseconds(1)))
  {
    processEvents();
    if (condition()) return true;
  }
  return false;
}

inline bool isIdle(const NYXImageServer& server)
{
  return server.getNumPending() + server.getNumRunning() == 0;
}

/// Planes of one volume, plane k holding the level k % 256.
class Planes
{
public:
  Planes(int height, int width, int number)
  {
    auto matrix = std::make_shared<VoxelMatrix<unsigned char>>(height, width, number);
    for (int k = 0; k < number; ++k)
      std::fill_n((*matrix)[k].data(), (*matrix)[k].getNumElements(), static_cast<unsigned char>(k));
    _matrix = matrix;
  }

  ImageSourceVoxelMatrixPlane operator[](int plane) const { return ImageSourceVoxelMatrixPlane(_matrix, plane); }

private:
  std::shared_ptr<const VoxelMatrix<unsigned char>> _matrix;
};

/// A proxy of a plane.
class PlaneProxy : public NYXSliceImageProxy
{
public:
  explicit PlaneProxy(const ImageSource& source) { setImageSource(&source); }
};
