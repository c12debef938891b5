#include "numeric/buffer.h"

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>

namespace
{
constexpr std::size_t cacheLine = 64;
constexpr std::size_t hugePage = std::size_t(2) << 20;
constexpr std::size_t hugePagesFrom = 2 * hugePage;

std::size_t roundedUp(std::size_t size, std::size_t unit)
{
  return (size + unit - 1) / unit * unit;
}

void* allocateAligned(std::size_t numBytes, std::size_t alignment)
{
  if (numBytes > static_cast<std::size_t>(-1) - alignment) return nullptr;
  return std::aligned_alloc(alignment, roundedUp(numBytes, alignment));
}

void* allocateHugePages(std::size_t numBytes)
{
  void* buffer = allocateAligned(numBytes, hugePage);
  if (buffer) madvise(buffer, roundedUp(numBytes, hugePage), MADV_HUGEPAGE); // a wish: small pages do as well
  return buffer;
}
} // namespace

void* allocateBuffer(std::size_t numBytes)
{
  void* buffer = numBytes < cacheLine       ? std::malloc(numBytes)
                 : numBytes < hugePagesFrom ? allocateAligned(numBytes, cacheLine)
                                            : allocateHugePages(numBytes);
  if (!buffer) throw std::bad_alloc();
  return buffer;
}

void freeBuffer(void* buffer) noexcept
{
  std::free(buffer);
}

void discardPages(void* begin, void* end) noexcept
{
  constexpr std::uintptr_t page = 4096;
  const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(begin) + page - 1) / page * page;
  const std::uintptr_t last = reinterpret_cast<std::uintptr_t>(end) / page * page;
  if (first < last) madvise(reinterpret_cast<void*>(first), last - first, MADV_DONTNEED);
}
