#include "image/segmentation/signbits.h"

#include "numeric/targetclones.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr int wordSize = 64;

/// Packs eight bytes of value 0 or 1 into the bits of one byte: the product moves byte i to bit 56 + i.
SignRow::Word packedByte(const unsigned char* bytes)
{
  SignRow::Word eight = 0;
  std::memcpy(&eight, bytes, sizeof eight);
  return eight * 0x0102040810204080u >> 56;
}

SignRow::Word packedWord(const unsigned char* bytes)
{
  SignRow::Word word = 0;
  for (int b = 0; b < wordSize; b += 8) word |= packedByte(bytes + b) << b;
  return word;
}

template <class T>
[[gnu::always_inline]] inline void signBits(const T* elements, int count, T threshold, SignRow::Word* words)
{
  unsigned char bytes[wordSize];
  int first = 0;
  for (; first + wordSize <= count; first += wordSize)
  {
    for (int b = 0; b < wordSize; ++b) bytes[b] = elements[first + b] >= threshold;
    *words++ = packedWord(bytes);
  }
  if (first == count) return;
  std::fill(bytes, bytes + wordSize, static_cast<unsigned char>(0));
  for (int b = 0; first + b < count; ++b) bytes[b] = elements[first + b] >= threshold;
  *words = packedWord(bytes);
}

// Clones for the processor at hand cannot be templates.
#define IMAGE_DEFINE_SIGN_BITS(T)                                                                                      \
  MIRELO_TARGET_CLONES void signBitsOf(const T* elements, int count, T threshold, SignRow::Word* words)                \
  {                                                                                                                    \
    signBits(elements, count, threshold, words);                                                                       \
  }
IMAGE_FOR_EACH_TYPE(IMAGE_DEFINE_SIGN_BITS)
} // namespace

MIRELO_TARGET_CLONES int SignRow::countChanges() const
{
  int count = 0;
  for (int w = 0; w < getNumWords(); ++w) count += std::popcount(changes(w));
  return count;
}

MIRELO_TARGET_CLONES int SignRow::countChanges(const SignRow& other) const
{
  int count = 0;
  for (int w = 0; w < getNumWords(); ++w) count += std::popcount(_words[w] ^ other._words[w]);
  return count;
}

template <class T> void computeSignBits(const T* elements, int count, T threshold, SignRow::Word* words)
{
  signBitsOf(elements, count, threshold, words);
}

void shiftSignBits(SignRow::Word* words, int numWords)
{
  for (int w = numWords - 1; w > 0; --w) words[w] = words[w] << 1 | words[w - 1] >> 63;
  words[0] <<= 1;
}

#define IMAGE_INSTANTIATE_SIGN_BITS(T) template void computeSignBits(const T*, int, T, SignRow::Word*);
IMAGE_FOR_EACH_TYPE(IMAGE_INSTANTIATE_SIGN_BITS)
