#pragma once

#include "numeric/buffer.h"

/// Lets a std::vector keep its elements in a numeric buffer, on huge pages when it is large.
template <class T> struct BufferAllocator
{
  using value_type = T;

  BufferAllocator() = default;
  template <class U> BufferAllocator(const BufferAllocator<U>&) noexcept {}

  T* allocate(std::size_t count)
  {
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(allocateBuffer(count * sizeof(T)));
  }
  void deallocate(T* elements, std::size_t) noexcept { freeBuffer(elements); }

  bool operator==(const BufferAllocator&) const = default;
};
