#include "numeric/buffer.h"

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
