#include "numeric/buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <malloc.h>
#include <vector>

// Large blocks are handed on from who frees one to who asks next: each must hold what was asked for, belong to one
// owner only, and start on a cache line, whatever sizes follow each other.
TEST(Buffer, LargeBlocksAreHandedOnWholeAndToOneOwner)
{
  const std::size_t mebibyte = std::size_t{1} << 20;
  std::vector<std::pair<unsigned char*, std::size_t>> blocks;
  for (const std::size_t size : {8, 8, 9, 7, 64, 65, 4, 80, 16, 8, 3, 12})
  {
    auto* block = static_cast<unsigned char*>(allocateBuffer(size * mebibyte));
    ASSERT_GE(malloc_usable_size(block), size * mebibyte);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0U);
    std::memset(block, static_cast<int>(size), size * mebibyte);
    blocks.emplace_back(block, size);
    if (blocks.size() < 3) continue;
    const auto [oldest, itsSize] = blocks.front();
    EXPECT_EQ(oldest[0], itsSize);
    EXPECT_EQ(oldest[itsSize * mebibyte - 1], itsSize);
    freeBuffer(oldest);
    blocks.erase(blocks.begin());
  }
  for (const auto& [block, size] : blocks) freeBuffer(block);
}
