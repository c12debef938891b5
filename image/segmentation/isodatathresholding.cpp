#include "image/segmentation/isodatathresholding.h"

#include <algorithm>

namespace
{
__extension__ typedef __int128 WideInteger;

/// Number and sum of the bin indices of the elements in bins first .. last - 1.
struct ClassSums
{
  ClassSums(const Vector<long>& counts, int first, int last)
  {
    for (int k = first; k < last; ++k)
    {
      count += counts[k];
      sum += k * counts[k];
    }
  }

  WideInteger count = 0;
  WideInteger sum = 0;
};

/// The integer part of the middle between the means of two classes.
int middleOf(const ClassSums& a, const ClassSums& b)
{
  return static_cast<int>((a.sum * b.count + b.sum * a.count) / (2 * a.count * b.count));
}
} // namespace

int isodataBin(const Vector<long>& counts)
{
  const auto isFilled = [](long count) { return count > 0; };
  const auto first = static_cast<int>(std::find_if(counts.begin(), counts.end(), isFilled) - counts.begin());
  int last = counts.getSize() - 1;
  while (last > first && !isFilled(counts[last])) --last;
  if (first >= last) return first == counts.getSize() ? 0 : first;
  // Both means grow with the bin, so that the search goes in one direction and comes to an end.
  for (int bin = std::max((first + last) / 2, first + 1);;)
  {
    const int next = std::max(middleOf({counts, first, bin}, {counts, bin, last + 1}), first + 1);
    if (next == bin) return bin;
    bin = next;
  }
}
