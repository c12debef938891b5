#include "numeric/buffer.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <sys/mman.h>

namespace
{
constexpr std::size_t cacheLine = 64;
constexpr std::size_t hugePage = std::size_t(2) << 20;
constexpr std::size_t hugePagesFrom = 2 * hugePage;
constexpr std::size_t spareFrom = std::size_t(16) << 20;
constexpr std::size_t spareUpTo = std::size_t(64) << 20;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__clang__) // clang builds the fuzz targets
constexpr bool keepsSpare = false; // a block used after its end must be found
#else
constexpr bool keepsSpare = true;
#endif

/// The large block that was freed last, or nullptr. Steps often free a block and ask for another one of the same size
/// (the next slice, the same filter again); the system's zeroing of fresh pages would cost more than such a step.
std::atomic<void*> spareBlock = nullptr;

std::size_t roundedUp(std::size_t size, std::size_t unit)
{
  return (size + unit - 1) / unit * unit;
}

void* allocateAligned(std::size_t numBytes, std::size_t alignment)
{
  if (numBytes > static_cast<std::size_t>(-1) - alignment) return nullptr;
  return std::aligned_alloc(alignment, roundedUp(numBytes, alignment));
}

/// The spare block if it holds the bytes without waste, else nullptr, and the spare block is freed.
void* takeSpare(std::size_t numBytes)
{
  void* block = spareBlock.exchange(nullptr);
  if (block == nullptr) return nullptr;
  const std::size_t size = malloc_usable_size(block);
  if (numBytes <= size && size - numBytes <= size / 4) return block;
  std::free(block);
  return nullptr;
}

bool isSpareSize(std::size_t size)
{
  return keepsSpare && spareFrom <= size && size <= spareUpTo + hugePage;
}

void* allocateHugePages(std::size_t numBytes)
{
  if (void* spare = takeSpare(numBytes)) return spare;
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
  if (buffer != nullptr && isSpareSize(malloc_usable_size(buffer))) buffer = spareBlock.exchange(buffer);
  std::free(buffer);
}

void discardPages(void* begin, void* end) noexcept
{
  constexpr std::uintptr_t page = 4096;
  const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(begin) + page - 1) / page * page;
  const std::uintptr_t last = reinterpret_cast<std::uintptr_t>(end) / page * page;
  if (first < last) madvise(reinterpret_cast<void*>(first), last - first, MADV_DONTNEED);
}
