#pragma once

#include <algorithm>
#include <chrono>
#include <deque>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <thread>

/// What tells one state of a file from another.
struct FileState
{
  dev_t device;
  ino_t inode;
  off_t size;
  time_t seconds;
  long nanoseconds;

  explicit FileState(int descriptor)
  {
    struct stat status = {};
    fstat(descriptor, &status);
    device = status.st_dev;
    inode = status.st_ino;
    size = status.st_size;
    seconds = status.st_mtim.tv_sec;
    nanoseconds = status.st_mtim.tv_nsec;
  }

  bool operator==(const FileState& other) const = default;
};

/// Remembers what was found out of the files asked for last, until they change. Safe to use from any thread.
template <class Value> class FileCache
{
public:
  /// The value of an open file, from `compute` when it is not known. What `compute` throws passes through, as does what
  /// `whileWaiting` throws, if it is given, which is called every millisecond while another thread computes.
  template <class Compute, class Wait>
  std::shared_ptr<const Value> get(int descriptor, const Compute& compute, const Wait& whileWaiting)
  {
    const FileState state(descriptor);
    std::unique_lock lock(_mutex, std::defer_lock);
    while (!lock.try_lock())
    {
      whileWaiting();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return find(state, compute);
  }

  template <class Compute> std::shared_ptr<const Value> get(int descriptor, const Compute& compute)
  {
    const FileState state(descriptor);
    const std::lock_guard lock(_mutex);
    return find(state, compute);
  }

private:
  struct Known
  {
    FileState state;
    std::shared_ptr<const Value> value;
  };

  /// To be called with the mutex locked.
  template <class Compute> std::shared_ptr<const Value> find(const FileState& state, const Compute& compute)
  {
    const auto found =
        std::find_if(_known.begin(), _known.end(), [&](const Known& each) { return each.state == state; });
    if (found != _known.end()) return found->value;
    _known.push_back({state, std::make_shared<const Value>(compute())});
    if (_known.size() > maxKnown) _known.pop_front();
    return _known.back().value;
  }

  static constexpr std::size_t maxKnown = 8;

  std::mutex _mutex;
  std::deque<Known> _known; // the newest last
};
