#pragma once

#include "image/elementtypes.h"

#include <bit>
#include <cstdint>

/// Signs of a row of points, one bit each: bit b of word w belongs to point 64 w + b. Bits behind the last one are 0.
class SignRow
{
public:
  using Word = std::uint64_t;

  /// Number of words that hold the bits of a row.
  static constexpr int numWordsOf(int numPoints) { return (numPoints + 63) / 64; }

  /// The words are borrowed.
  SignRow(const Word* words, int numPoints) : _words(words), _numPoints(numPoints) {}

  int getNumWords() const { return numWordsOf(_numPoints); }
  Word operator[](int w) const { return _words[w]; }
  /// The signs of the points behind those of word w, each moved down by one place.
  Word next(int w) const { return _words[w] >> 1 | (w + 1 < getNumWords() ? _words[w + 1] << 63 : 0); }
  /// The bits of word w that belong to points with a next one.
  Word withNext(int w) const
  {
    const int numBits = _numPoints - 1 - 64 * w;
    return numBits >= 64 ? ~Word(0) : (Word(1) << numBits) - 1;
  }
  /// Bit b of word w tells whether the sign changes from a point to the next one.
  Word changes(int w) const { return (_words[w] ^ next(w)) & withNext(w); }

  int countChanges() const;
  /// Number of points whose sign is another one in the other row.
  int countChanges(const SignRow& other) const;

private:
  const Word* _words;
  int _numPoints;
};

/// Calls visit(j) for each set bit of word w, where j is the bit's place in the row.
template <class Visit> void forEachPoint(SignRow::Word bits, int w, Visit visit)
{
  for (; bits != 0; bits &= bits - 1) visit(64 * w + std::countr_zero(bits));
}

/// One bit per element, set where it is at least the threshold, in the order of SignRow; NaN is below every
/// threshold.
template <class T> void computeSignBits(const T* elements, int count, T threshold, SignRow::Word* words);

/// Moves all bits of a row of words up by one: element j becomes element j + 1, and element 0 is 0.
void shiftSignBits(SignRow::Word* words, int numWords);

#define IMAGE_EXTERN_SIGN_BITS(T)                                                                                      \
  extern template void computeSignBits(const T* elements, int count, T threshold, SignRow::Word* words);
IMAGE_FOR_EACH_TYPE(IMAGE_EXTERN_SIGN_BITS)
