#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

/// An index of changing data: built when it is first asked for and again once the data have another state number.
///
/// Several threads may ask for it at once. Copies share what has been built.
template <class Index> class LazyIndex
{
public:
  LazyIndex() = default;
  LazyIndex(const LazyIndex& other) { *this = other; }
  LazyIndex& operator=(const LazyIndex& other)
  {
    if (this == &other) return *this;
    const std::scoped_lock lock(_mutex, other._mutex);
    _index = other._index;
    _state = other._state.load();
    return *this;
  }

  /// The index of the data in the given state, which is not 0; build() makes a new one.
  template <class Build> const Index& get(std::uint64_t state, const Build& build) const
  {
    if (_state.load(std::memory_order_acquire) == state) return *_index;
    const std::lock_guard lock(_mutex);
    if (_state.load() != state)
    {
      _index = std::make_shared<const Index>(build());
      _state.store(state, std::memory_order_release);
    }
    return *_index;
  }

  void drop()
  {
    if (_state.load(std::memory_order_relaxed) == 0) return;
    _index.reset();
    _state = 0;
  }

private:
  mutable std::mutex _mutex;
  mutable std::shared_ptr<const Index> _index;
  mutable std::atomic<std::uint64_t> _state = 0; // 0: none
};
