#pragma once

#include "numeric/buffer.h"

#include <new>
#include <type_traits>
#include <utility>
#include <vector>

/// Lets a std::vector keep its elements in a numeric buffer, on huge pages when it is large. Numbers that are not given
/// a value stay uninitialised.
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

  template <class U> void construct(U* element) noexcept(std::is_nothrow_default_constructible_v<U>)
  {
    ::new (static_cast<void*>(element)) U;
  }
  template <class U, class... Arguments> void construct(U* element, Arguments&&... arguments)
  {
    ::new (static_cast<void*>(element)) U(std::forward<Arguments>(arguments)...);
  }

  bool operator==(const BufferAllocator&) const = default;
};

template <class T> using BufferVector = std::vector<T, BufferAllocator<T>>;
