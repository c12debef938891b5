#pragma once

#include "geometry/vertices.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Walks over the pixels inside a closed planar contour, line by line.
///
/// Inside is what the even-odd rule says of pixel centres, computed exactly; a centre on the contour is inside. A line
/// has a constant second coordinate (rows of an image) or a constant first one (columns, along which regions have
/// their runs). Takes memory for the contour only, whatever its size.
/// Source: Foley, van Dam, Feiner and Hughes, "Computer Graphics", section 3.6: scan conversion by active edges.
class ContourScan
{
public:
  enum class Lines
  {
    Columns = 0, ///< x is constant
    Rows = 1     ///< y is constant
  };

  /// Pixels of a line from first to last, both included.
  struct Run
  {
    std::int64_t first;
    std::int64_t last;
  };

  /// The lines from firstLine to lastLine, both included, that the contour meets.
  ContourScan(const Vertices<int>& contour, Lines lines, int firstLine, int lastLine);

  /// Goes on to the next line with pixels inside. \return false  there is none
  bool next();
  int getLine() const { return static_cast<int>(_line); }
  /// In ascending order, neither overlapping nor touching.
  const std::vector<Run>& getRuns() const { return _runs; }

private:
  /// An edge that rises over the lines; it crosses its lines, but for the last one, at position + remainder / rise.
  struct Edge
  {
    std::int64_t firstLine;
    std::int64_t lastLine;
    std::int64_t position;
    std::int64_t remainder;
    std::int64_t positionStep;
    std::int64_t remainderStep;
    std::int64_t rise;
  };

  /// Pixels on the contour that no crossing reaches: edges along a line and upper ends of the others.
  struct Flat
  {
    std::int64_t line;
    Run run;
  };

  void addEdge(const int* from, const int* to, Lines lines, std::int64_t firstLine, std::int64_t lastLine);
  void activateEdges();
  void collectRuns();
  void joinRuns();

  std::vector<Edge> _edges; // by first line
  std::vector<Flat> _flats; // by line
  std::vector<Edge> _active;
  std::vector<Run> _crossings; // floor and ceiling of each
  std::vector<Run> _runs;
  std::size_t _nextEdge = 0;
  std::size_t _nextFlat = 0;
  std::int64_t _line = 0;
  std::int64_t _lastLine = 0;
};
