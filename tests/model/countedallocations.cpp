#include "tests/model/countedallocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
std::atomic<long> count = 0;
} // namespace

long numAllocations()
{
  return count;
}

// The address checks have operators of their own, under which nothing is counted.
#ifndef __SANITIZE_ADDRESS__
void* operator new(std::size_t size)
{
  ++count;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
  std::free(memory);
}
#endif
