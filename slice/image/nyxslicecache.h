#pragma once

#include "app/core/nyxstackimages.h"

#include <QCache>
#include <QString>

#include <memory>

class StackSlice;

/// Objects made of slices, the ones used last. A slice is known by its address only.
template <class T> class NYXSliceCache : public NYXStackImages
{
public:
  /// Keeps `capacity` objects at most.
  explicit NYXSliceCache(int capacity) : _objects(capacity) {}

  /// The slice's object, which counts as used now, or nullptr. It stays until something is inserted or removed.
  T* find(const StackSlice* slice) const { return _objects.object(key(slice)); }
  /// Replaces the slice's object and drops those used longest ago until there is room. A cache without capacity drops
  /// the object at once.
  void insert(const StackSlice* slice, std::unique_ptr<T> object) { _objects.insert(key(slice), object.release()); }
  void remove(const StackSlice* slice) { _objects.remove(key(slice)); }

private:
  static QString key(const StackSlice* slice) { return QString::asprintf("%p", static_cast<const void*>(slice)); }

  mutable QCache<QString, T> _objects;
};
