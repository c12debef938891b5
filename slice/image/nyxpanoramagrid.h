#pragma once

#include <QRect>
#include <QSize>

/// Where the thumbnails of a panorama lie: rows of equal cells, as many columns as the width has room for, one at the
/// least. Positions are in pixels of the whole content, from its top left.
class NYXPanoramaGrid
{
public:
  NYXPanoramaGrid(int numCells, const QSize& cellSize, int gap, int width);

  int numColumns() const { return _numColumns; }
  int numRows() const;
  int height() const;
  /// Distance from one row to the next.
  int rowStep() const { return _cellSize.height() + _gap; }
  QRect cellRect(int cell) const;
  /// The cell at a position, -1 for none.
  int cellAt(const QPoint& position) const;

  /// Cells first to end - 1.
  struct Range
  {
    int first;
    int end;
  };
  /// The cells of the rows that a window of this height shows when its top is at `top`.
  Range visibleCells(int top, int height) const;

  /// The cell to which a key (arrows, Page Up and Down, Home, End) leads, when a page has `pageHeight`. -1 without
  /// cells.
  int cellAfterKey(int cell, int key, int pageHeight) const;

private:
  int rowAt(int y) const;
  int moved(int cell, int numRows) const;

  int _numCells;
  QSize _cellSize;
  int _gap;
  int _numColumns;
  int _left; // of the first column, so that the columns lie in the middle
};
