#include "image/segmentation/connectedcomponents.h"

#include "image/parallelloop.h"
#include "numeric/targetclones.h"

#include <bit>
#include <cstring>
#include <limits>
#include <numeric>
#include <string>

namespace
{
using Word = std::uint64_t;
using Node = std::uint32_t;

constexpr int bitsPerWord = 64;

long wordsFor(long columns)
{
  return (columns + bitsPerWord - 1) / bitsPerWord;
}

/// Goes through the words of a row and tells where runs begin.
class RunStarts
{
public:
  /// The bits of the word that do not follow a bit of the same run.
  Word next(Word word)
  {
    const Word starts = word & ~((word << 1) | _carry);
    _carry = word >> (bitsPerWord - 1);
    return starts;
  }
  /// Whether a run that reached the end of the word before goes on in this one, as long as next() has not been called.
  bool goesOn(Word word) const { return (_carry & word) != 0; }

private:
  Word _carry = 0;
};

/// Bit k tells whether element k of the n <= 64 elements is not 0.
template <class T> __attribute__((always_inline)) inline Word wordOf(const T* x, long n)
{
  alignas(Word) unsigned char flags[bitsPerWord] = {};
  if (n == bitsPerWord)
    for (int k = 0; k < bitsPerWord; ++k) flags[k] = x[k] != T(0);
  else
    for (long k = 0; k < n; ++k) flags[k] = x[k] != T(0);
  constexpr Word gather = 0x0102040810204080; // moves bit 0 of byte k to bit 56 + k
  Word word = 0;
  for (int byte = 0; byte < 8; ++byte)
  {
    Word eight;
    std::memcpy(&eight, flags + 8 * byte, sizeof eight);
    word |= ((eight * gather) >> 56) << (8 * byte);
  }
  return word;
}

template <class T> __attribute__((always_inline)) inline long readWords(const T* x, long n, Word* words)
{
  RunStarts starts;
  long numRuns = 0;
  for (long first = 0; first < n; first += bitsPerWord)
  {
    const Word word = wordOf(x + first, std::min<long>(bitsPerWord, n - first));
    numRuns += std::popcount(starts.next(word));
    words[first / bitsPerWord] = word;
  }
  return numRuns;
}

/// Sets the bits of the elements that are not 0 and returns the number of runs.
#define IMAGE_READ_ROW(T)                                                                                              \
  MIRELO_TARGET_CLONES long readRow(const T* x, long n, Word* words)                                                   \
  {                                                                                                                    \
    return readWords(x, n, words);                                                                                     \
  }
IMAGE_FOR_EACH_TYPE(IMAGE_READ_ROW)

/// Joins the components of two runs; parents are never later than their children.
inline void unite(Node* parents, Node a, Node b)
{
  while (parents[a] != parents[b])
  {
    if (parents[a] < parents[b]) std::swap(a, b);
    const Node parent = parents[a];
    parents[a] = parents[b];
    if (parent == a) return;
    a = parent;
  }
}

/// Joins the runs of two rows wherever they overlap; their first runs are given.
MIRELO_TARGET_CLONES void joinOverlaps(const Word* a, const Word* b, long numWords, Node runA, Node runB, Node* parents)
{
  RunStarts startsA, startsB, startsBoth;
  --runA; // the run that began last; a row's first run, too, is counted when it begins
  --runB;
  for (long w = 0; w < numWords; ++w)
  {
    const Word beginA = startsA.next(a[w]), beginB = startsB.next(b[w]);
    for (Word rest = startsBoth.next(a[w] & b[w]); rest != 0; rest &= rest - 1)
    {
      const Word upTo = rest ^ (rest - 1);
      unite(parents, runA + static_cast<Node>(std::popcount(beginA & upTo)),
            runB + static_cast<Node>(std::popcount(beginB & upTo)));
    }
    runA += static_cast<Node>(std::popcount(beginA));
    runB += static_cast<Node>(std::popcount(beginB));
  }
}

/// Writes 0 between the runs of a row and the number of its component into each of them.
template <class T> void writeRow(const Word* words, long n, const Node* components, T* labels)
{
  std::fill_n(labels, n, T(0));
  RunStarts starts;
  long run = -1; // the one that began last
  for (long first = 0; first < n; first += bitsPerWord, labels += bitsPerWord)
  {
    Word rest = words[first / bitsPerWord];
    run -= starts.goesOn(rest) ? 1 : 0;
    starts.next(rest);
    while (rest != 0)
    {
      const int begin = std::countr_zero(rest), size = std::countr_one(rest >> begin);
      const auto label = static_cast<T>(components[++run]);
      for (int k = begin; k < begin + size; ++k) labels[k] = label;
      rest &= rest + (Word(1) << begin);
    }
  }
}

/// The largest number up to which T holds all integers.
template <class T> constexpr long largestLabel()
{
  if constexpr (std::is_integral_v<T>)
    return std::numeric_limits<T>::max();
  else
    return std::numeric_limits<T>::digits < 63 ? 1L << std::numeric_limits<T>::digits
                                               : std::numeric_limits<long>::max();
}
} // namespace

template <class T>
ConnectedComponents::ConnectedComponents(const PixelMatrix<T>& mask, ProgressSubject& subject, double memoryLimit)
  : ConnectedComponents(mask.getSize1(), mask.getSize2(), 1)
{
  find(mask.data(), subject, memoryLimit);
}

template <class T>
ConnectedComponents::ConnectedComponents(const VoxelMatrix<T>& mask, ProgressSubject& subject, double memoryLimit)
  : ConnectedComponents(mask.getSize1(), mask.getSize2(), mask.getSize3())
{
  find(mask.data(), subject, memoryLimit);
}

ConnectedComponents::ConnectedComponents(long rowsPerPlane, long columns, long planes)
  : _rowsPerPlane(rowsPerPlane),
    _columns(columns),
    _planes(planes),
    _wordsPerRow(wordsFor(columns)),
    _bits(static_cast<std::size_t>(numRows()) * static_cast<std::size_t>(_wordsPerRow)),
    _firstRun(static_cast<std::size_t>(numRows()) + 1, 0)
{
}

double ConnectedComponents::workingMemory(long rowsPerPlane, long columns, long planes)
{
  return double{1} * static_cast<double>(rowsPerPlane) * static_cast<double>(planes) *
         static_cast<double>(wordsFor(columns) * sizeof(Word) + sizeof(long));
}

long ConnectedComponents::rowsPerReport() const
{
  constexpr long fewRows = 64;
  return _planes > 1 ? std::max(_rowsPerPlane, 1L) : fewRows;
}

template <class T> void ConnectedComponents::find(const T* mask, ProgressSubject& subject, double memoryLimit)
{
  {
    const ProgressStep step(subject, "Reading the mask", numRows());
    forEachRange(subject, numRows(), rowsPerReport(),
                 [this, mask](long first, long last)
                 {
                   for (long row = first; row < last; ++row)
                     _firstRun[static_cast<std::size_t>(row) + 1] = readRow(mask + row * _columns, _columns, bits(row));
                 });
  }
  subject.throwIfCancelled("void ConnectedComponents::find(const T*, ProgressSubject&)");
  numberRuns(memoryLimit);
  joinRows(subject);
  subject.throwIfCancelled("void ConnectedComponents::find(const T*, ProgressSubject&)");
  numberComponents();
}

/// Makes each run a component of its own.
void ConnectedComponents::numberRuns(double memoryLimit)
{
  std::partial_sum(_firstRun.begin(), _firstRun.end(), _firstRun.begin());
  if (_firstRun.back() > static_cast<long>(std::numeric_limits<Node>::max()))
    throw RangeError("void ConnectedComponents::numberRuns(double)", "There are too many objects to label");
  if (static_cast<double>(_firstRun.back()) * sizeof(Node) > memoryLimit)
    throw SizeError("void ConnectedComponents::numberRuns(double)",
                    "The " + std::to_string(_firstRun.back()) + " runs of the mask take more memory than there is");
  _nodes.resize(static_cast<std::size_t>(_firstRun.back()));
  std::iota(_nodes.begin(), _nodes.end(), Node(0));
}

/// Each thread joins the rows of one part among themselves; what connects the parts is left for the end.
void ConnectedComponents::joinRows(ProgressSubject& subject)
{
  const ProgressStep step(subject, "Joining objects", numRows());
  const long numParts = std::clamp(numRows() / rowsPerReport(), 1L, static_cast<long>(omp_get_max_threads()));
  const auto firstRow = [this, numParts](long part) { return numRows() * part / numParts; };
  std::atomic<long> numDone = 0;
#pragma omp parallel for schedule(static, 1) if (numParts > 1)
  for (long part = 0; part < numParts; ++part)
    for (long row = firstRow(part); row < firstRow(part + 1); ++row)
    {
      if ((row + 1) % rowsPerReport() == 0)
      {
        if (subject.isCancelled()) break;
        const long done = numDone += rowsPerReport();
        if (omp_get_thread_num() == 0) subject.progress(done);
      }
      joinWithRowsBefore(row, firstRow(part), row);
    }
  for (long part = 1; part < numParts && !subject.isCancelled(); ++part)
    for (long row = firstRow(part); row < std::min(firstRow(part) + _rowsPerPlane, firstRow(part + 1)); ++row)
      joinWithRowsBefore(row, 0, firstRow(part));
}

/// Joins a row with those of its neighbours that are among the rows firstRow .. lastRow - 1.
void ConnectedComponents::joinWithRowsBefore(long row, long firstRow, long lastRow)
{
  const auto joinIfThere = [=, this](long neighbour)
  {
    if (neighbour >= firstRow && neighbour < lastRow) join(neighbour, row);
  };
  if (row % _rowsPerPlane != 0) joinIfThere(row - 1);
  joinIfThere(row - _rowsPerPlane);
}

void ConnectedComponents::join(long earlierRow, long row)
{
  joinOverlaps(bits(earlierRow), bits(row), _wordsPerRow,
               static_cast<Node>(_firstRun[static_cast<std::size_t>(earlierRow)]),
               static_cast<Node>(_firstRun[static_cast<std::size_t>(row)]), _nodes.data());
}

/// Replaces the parents by the numbers of the components; the earliest run of each is its root.
void ConnectedComponents::numberComponents()
{
  Node numComponents = 0;
  for (Node run = 0; run < _nodes.size(); ++run)
    _nodes[run] = _nodes[run] == run ? ++numComponents : _nodes[_nodes[run]];
  _numLabels = numComponents;
}

template <class T> void ConnectedComponents::writeLabels(PixelMatrix<T>& labels, ProgressSubject& subject)
{
  if (labels.getSize1() != _rowsPerPlane || labels.getSize2() != _columns || _planes != 1)
    throw SizeError("void ConnectedComponents::writeLabels(PixelMatrix<T>&, ProgressSubject&)",
                    "The matrix has not the mask's size");
  write(labels.data(), subject);
}

template <class T> void ConnectedComponents::writeLabels(VoxelMatrix<T>& labels, ProgressSubject& subject)
{
  if (labels.getSize1() != _rowsPerPlane || labels.getSize2() != _columns || labels.getSize3() != _planes)
    throw SizeError("void ConnectedComponents::writeLabels(VoxelMatrix<T>&, ProgressSubject&)",
                    "The matrix has not the mask's size");
  write(labels.data(), subject);
}

template <class T> void ConnectedComponents::write(T* labels, ProgressSubject& subject)
{
  if (_numLabels > largestLabel<T>())
    throw RangeError("void ConnectedComponents::write(T*, ProgressSubject&)",
                     "There are " + std::to_string(_numLabels) + " objects, more than " + typeName<T>() +
                         " can number");
  const ProgressStep step(subject, "Writing labels", numRows());
  forEachRange(subject, numRows(), rowsPerReport(),
               [this, labels](long first, long last)
               {
                 for (long row = first; row < last; ++row)
                   writeRow(bits(row), _columns, _nodes.data() + _firstRun[static_cast<std::size_t>(row)],
                            labels + row * _columns);
                 discardPages(_nodes.data() + _firstRun[static_cast<std::size_t>(first)],
                              _nodes.data() + _firstRun[static_cast<std::size_t>(last)]);
               });
}

#define IMAGE_INSTANTIATE_COMPONENTS(T)                                                                                \
  template ConnectedComponents::ConnectedComponents(const PixelMatrix<T>&, ProgressSubject&, double);                  \
  template ConnectedComponents::ConnectedComponents(const VoxelMatrix<T>&, ProgressSubject&, double);                  \
  template void ConnectedComponents::writeLabels(PixelMatrix<T>&, ProgressSubject&);                                   \
  template void ConnectedComponents::writeLabels(VoxelMatrix<T>&, ProgressSubject&);
IMAGE_FOR_EACH_TYPE(IMAGE_INSTANTIATE_COMPONENTS)
