#include "geometry/vertexserver.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <mutex>

namespace
{

/// The capacity raised in whole steps until it holds `size` slots.
int raisedCapacity(int capacity, int growth, int size)
{
  const std::int64_t step = std::max(growth, 1);
  const std::int64_t numSteps = (std::int64_t(size) - capacity + step - 1) / step;
  return static_cast<int>(std::min<std::int64_t>(capacity + numSteps * step, std::numeric_limits<int>::max()));
}

} // namespace

template <class T> VertexServer<T>::VertexServer(int space, int size, int capacity, int growth)
  : _space(space), _growth(growth < 1 ? size : growth)
{
  if (space < 1 || size < 0)
    throw SizeError("VertexServer<T>::VertexServer(int, int, int, int)", "Invalid vertex space or number of vertices");
  allocate(capacity < 1 ? size : capacity);
  setSize(size);
}

template <class T> VertexServer<T>::VertexServer(int space, BufferVector<T>&& coordinates) : _space(space), _growth(0)
{
  const char* const where = "VertexServer<T>::VertexServer(int, BufferVector<T>&&)";
  if (space < 1 || coordinates.size() % static_cast<std::size_t>(space) != 0)
    throw SizeError(where, "Invalid vertex space or number of coordinates");
  const std::size_t size = coordinates.size() / static_cast<std::size_t>(space);
  if (size > static_cast<std::size_t>(std::numeric_limits<int>::max()))
    throw SizeError(where, "There are too many vertices");
  _coordinates = std::move(coordinates);
  _size = _capacity = _growth = static_cast<int>(size);
}

template <class T> VertexServer<T>::VertexServer(const VertexServer<T>& server)
  : VertexServer(server._space, server._size, server.getCapacity(), server._growth)
{
  std::copy_n(server.data(), server.offset(server._size), data());
}

template <class T> VertexServer<T>& VertexServer<T>::operator=(const VertexServer<T>& server)
{
  if (this == &server) return *this;
  VertexServer<T> copy(server);
  noteChange();
  _coordinates.swap(copy._coordinates);
  _vertices.clear();
  _hasViews = false;
  _space = copy._space;
  _size = copy._size;
  _capacity = copy._capacity;
  _growth = copy._growth;
  return *this;
}

template <class T> void VertexServer<T>::setSize(int size)
{
  size = std::max(size, 0);
  if (size > getCapacity()) setCapacity(raisedCapacity(getCapacity(), _growth, size));
  if (size > _size) std::fill(data(_size), data(size), T(0));
  _size = size;
}

template <class T> void VertexServer<T>::setCapacity(int capacity)
{
  allocate(std::max(capacity, _size));
}

// The memory behind the slots grows geometrically, so that appending is linear whatever the growth.
template <class T> void VertexServer<T>::allocate(int capacity)
{
  const T* const oldBlock = _coordinates.data();
  if (!_coordinates.empty() && offset(capacity) > _coordinates.capacity())
    _coordinates.reserve(std::max(offset(capacity), 2 * _coordinates.capacity()));
  _coordinates.resize(offset(capacity));
  _capacity = capacity;
  if (!_hasViews) return;
  if (_coordinates.data() != oldBlock || static_cast<std::size_t>(capacity) < _vertices.size()) _vertices.clear();
  addViews();
}

template <class T> void VertexServer<T>::buildViews() const
{
  static std::mutex mutex; // constant vertices may be read by several threads
  const std::lock_guard lock(mutex);
  if (_hasViews) return;
  addViews();
  _hasViews.store(true, std::memory_order_release);
}

template <class T> void VertexServer<T>::addViews() const
{
  const std::size_t numSlots = static_cast<std::size_t>(_capacity);
  if (numSlots > _vertices.capacity())
  {
    _vertices.clear();
    _vertices.reserve(std::max(numSlots, _coordinates.capacity() / static_cast<std::size_t>(_space)));
  }
  T* const coordinates = const_cast<T*>(data());
  for (std::size_t i = _vertices.size(); i < numSlots; ++i)
    _vertices.emplace_back(_space, coordinates + offset(static_cast<int>(i)));
}

template <class T> void VertexServer<T>::insertSlots(int i, int count)
{
  const int oldSize = _size;
  setSize(sizeWith(count));
  std::copy_backward(data(i), data(oldSize), data(_size));
}

template <class T> void VertexServer<T>::remove(int i, int count)
{
  std::copy(data(i + count), data(_size), data(i));
  setSize(_size - count);
}

template <class T> void VertexServer<T>::append(const VertexServer<T>& server)
{
  if (server._space != _space)
    throw SizeError("void VertexServer<T>::append(const VertexServer<T>&)", "The vertices have different dimensions");
  const int numAppended = server._size; // a server may be appended to itself
  const int first = _size;
  setSize(sizeWith(numAppended));
  std::copy_n(server.data(), offset(numAppended), data(first));
}

template <class T> std::uint64_t VertexServer<T>::getStateNumber() const
{
  static std::atomic<std::uint64_t> lastNumber = 0;
  std::uint64_t number = _stateNumber.load();
  if (number != 0) return number;
  const std::uint64_t newNumber = ++lastNumber;
  return _stateNumber.compare_exchange_strong(number, newNumber) ? newNumber : number;
}

template <class T> int VertexServer<T>::sizeWith(int count) const
{
  if (count > std::numeric_limits<int>::max() - _size)
    throw SizeError("void VertexServer<T>::append(const VertexServer<T>&)", "There are too many vertices");
  return _size + count;
}

template <class T> void VertexServer<T>::deref()
{
  if (_numReferences > 0 && --_numReferences == 0) delete this;
}

GEOMETRY_INSTANTIATE(VertexServer)
