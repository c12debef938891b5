#pragma once

#include "geometry/bufferallocator.h"
#include "geometry/coordinatetypes.h"
#include "numeric/vector.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

/// Reference-counted storage of vertices, shared by vertex clients.
///
/// All coordinates lie in one block, vertex after vertex; the vertices are shallow vectors into it. References and
/// pointers to vertices stay valid until the capacity changes.
template <class T> class VertexServer
{
public:
  /// Storage for `size` vertices of `space` coordinates, all 0. A capacity or growth below 1 is replaced by the size.
  /// \throw SizeError  the space is below 1 or the size negative
  VertexServer(int space, int size, int capacity, int growth);
  /// Takes over a block of coordinates, vertex after vertex.
  /// \throw SizeError  the space is below 1, there are no whole vertices, or too many
  VertexServer(int space, BufferVector<T>&& coordinates);
  /// A deep copy, with a reference count of 0.
  VertexServer(const VertexServer<T>& server);
  VertexServer<T>& operator=(const VertexServer<T>& server);
  virtual ~VertexServer() = default;

  int getSpace() const { return _space; }
  int getSize() const { return _size; }
  int getCapacity() const { return _capacity; }
  int getGrowth() const { return _growth; }
  int getNumReferences() const { return _numReferences; }

  /// Vertex i. Unchecked: the caller guarantees 0 <= i < getSize().
  Vector<T>& operator[](int i)
  {
    requireViews();
    return _vertices[i];
  }
  const Vector<T>& operator[](int i) const
  {
    requireViews();
    return _vertices[i];
  }

  /// The coordinate block: getSize() x getSpace() values, vertex after vertex.
  T* data() { return _coordinates.data(); }
  const T* data() const { return _coordinates.data(); }
  /// The coordinates of vertex i. Unchecked.
  T* data(int i) { return _coordinates.data() + offset(i); }
  const T* data(int i) const { return _coordinates.data() + offset(i); }

  /// Keeps the first vertices; new ones are 0. The capacity is raised in steps of the growth (1 when below 1).
  void setSize(int size);
  /// Allocates vertex slots, never fewer than the size.
  void setCapacity(int capacity);
  void setGrowth(int growth) { _growth = growth; }

  /// Makes place for `count` vertices before vertex i; their coordinates are unspecified.
  /// \throw SizeError  there would be too many vertices
  void insertSlots(int i, int count);
  /// Removes the vertices i to i + count - 1.
  void remove(int i, int count);
  /// \throw SizeError  the spaces differ, or there would be too many vertices
  void append(const VertexServer<T>& server);

  /// A number that stands for these very vertices: another one, never used before, after noteChange().
  std::uint64_t getStateNumber() const;
  /// Called by every client before it writes.
  void noteChange()
  {
    if (_stateNumber.load(std::memory_order_relaxed) != 0) _stateNumber.store(0, std::memory_order_relaxed);
  }

  void ref() { ++_numReferences; }
  /// Drops one reference and destroys the server with the last one; nothing happens without references.
  void deref();

private:
  std::size_t offset(int i) const { return static_cast<std::size_t>(i) * static_cast<std::size_t>(_space); }
  void allocate(int capacity);
  /// Builds the vectors when the first of them is asked for: big meshes often do with the coordinates.
  void requireViews() const
  {
    if (!_hasViews.load(std::memory_order_acquire)) buildViews();
  }
  void buildViews() const;
  void addViews() const;
  /// The size with `count` vertices more. \throw SizeError  beyond the range of int
  int sizeWith(int count) const;

  BufferVector<T> _coordinates;              // _capacity x _space
  mutable BufferVector<Vector<T>> _vertices; // one shallow vector per slot, or none yet
  mutable std::atomic<bool> _hasViews = false;
  int _space;
  int _size = 0;
  int _capacity = 0;
  int _growth;
  std::atomic<int> _numReferences = 0;
  mutable std::atomic<std::uint64_t> _stateNumber = 0; // 0 until asked for
};

GEOMETRY_EXTERN_TEMPLATE(VertexServer)
