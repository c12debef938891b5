#pragma once

#include "geometry/bufferallocator.h"
#include "image/pixelmatrix.h"
#include "image/voxelmatrix.h"
#include "numeric/progresssubject.h"

#include <cstdint>
#include <limits>
#include <vector>

/// The connected components of the elements of a mask that are not 0: of a plane through common sides, of a volume
/// through common faces. They are numbered 1, 2, ... in the order in which a walk along rows, row after row, plane
/// after plane meets them first.
///
/// The elements are kept as one bit each, the components as one number per run of foreground in a row. The runs are
/// the nodes of a union-find structure; rows are joined with the rows before them by all OpenMP threads, each in a
/// part of its own, and the parts are joined afterwards.
/// Source of the union: Rem's algorithm, in Dijkstra, "A Discipline of Programming", 1976.
class ConnectedComponents
{
public:
  /// Finds the components, in two steps of the subject, each as long as the mask has rows.
  /// \param memoryLimit  bytes that the runs may take, checked before they are allocated
  /// \throw Cancelled   the subject was cancelled
  /// \throw RangeError  there are 2^32 runs or more \throw SizeError  the runs take more than the limit
  template <class T>
  ConnectedComponents(const PixelMatrix<T>& mask, ProgressSubject& subject, double memoryLimit = noLimit);
  template <class T>
  ConnectedComponents(const VoxelMatrix<T>& mask, ProgressSubject& subject, double memoryLimit = noLimit);
  /// Bytes that are allocated for a mask of this size, whatever it holds: besides the runs.
  static double workingMemory(long rowsPerPlane, long columns, long planes);

  static constexpr double noLimit = std::numeric_limits<double>::infinity();

  long getNumLabels() const { return _numLabels; }

  /// Replaces the elements of a matrix of the mask's size, which may be the mask: 0 for the background, the number of
  /// its component for the foreground. Cancelled, it leaves the planes as far as it came. To be called once: memory
  /// is given back on the way, so that labels never take much more than themselves.
  /// \throw SizeError  another size   \throw RangeError  T cannot hold the numbers; the matrix stays
  template <class T> void writeLabels(PixelMatrix<T>& labels, ProgressSubject& subject);
  template <class T> void writeLabels(VoxelMatrix<T>& labels, ProgressSubject& subject);

private:
  using Word = std::uint64_t;
  using Node = std::uint32_t;
  template <class U> using Buffer = std::vector<U, BufferAllocator<U>>;

  ConnectedComponents(long rowsPerPlane, long columns, long planes);
  template <class T> void find(const T* mask, ProgressSubject& subject, double memoryLimit);
  template <class T> void write(T* labels, ProgressSubject& subject);
  void numberRuns(double memoryLimit);
  void joinRows(ProgressSubject& subject);
  void joinWithRowsBefore(long row, long firstRow, long lastRow);
  void join(long earlierRow, long row);
  void numberComponents();

  long numRows() const { return _rowsPerPlane * _planes; }
  /// Rows that are worked on between two reports: those of a plane in a volume, fewer in a plane.
  long rowsPerReport() const;
  const Word* bits(long row) const { return _bits.data() + row * _wordsPerRow; }
  Word* bits(long row) { return _bits.data() + row * _wordsPerRow; }

  long _rowsPerPlane;
  long _columns;
  long _planes;
  long _wordsPerRow;
  Buffer<Word> _bits;          // one bit per element, the rows in whole words
  std::vector<long> _firstRun; // of each row, and the number of all runs
  Buffer<Node> _nodes;         // per run: its parent, a run that is not later; in the end its component
  long _numLabels = 0;
};
