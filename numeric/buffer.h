#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

/// Uninitialised memory for the containers: blocks of a cache line or more start on a cache line, and large blocks are
/// aligned to huge pages and ask the kernel for them, since first touch in small pages costs more than most loops.
/// One freed block of 16 to 64 MiB is kept for the next request of about its size.
/// \throw std::bad_alloc  there is no such memory
void* allocateBuffer(std::size_t numBytes);
void freeBuffer(void* buffer) noexcept;
/// Gives the memory pages that lie whole between two places of a block back to the system; what they held is lost.
void discardPages(void* begin, void* end) noexcept;

/// `count` elements, left uninitialised when T is a number, constructed otherwise. Freed by freeElements().
template <class T> T* allocateElements(std::size_t count)
{
  if (count == 0) return nullptr;
  if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
  T* elements = static_cast<T*>(allocateBuffer(count * sizeof(T)));
  if constexpr (!std::is_trivial_v<T>) std::uninitialized_default_construct_n(elements, count);
  return elements;
}

template <class T> void freeElements(T* elements, [[maybe_unused]] std::size_t count) noexcept
{
  if constexpr (!std::is_trivial_v<T>) std::destroy_n(elements, count);
  freeBuffer(elements);
}

/// A copy of `count` elements in a block of its own. Freed by freeElements().
template <class T> T* duplicateElements(const T* elements, std::size_t count)
{
  T* duplicate = allocateElements<T>(count);
  std::copy_n(elements, count, duplicate);
  return duplicate;
}
