#include "slice/image/nyxpanoramagrid.h"

#include <algorithm>

NYXPanoramaGrid::NYXPanoramaGrid(int numCells, const QSize& cellSize, int gap, int width)
  : _numCells(numCells),
    _cellSize(cellSize),
    _gap(gap),
    _numColumns(std::max(1, (width - gap) / (cellSize.width() + gap))),
    _left(std::max(0, (width - _numColumns * (cellSize.width() + gap) + gap) / 2))
{
}

int NYXPanoramaGrid::numRows() const
{
  return (_numCells + _numColumns - 1) / _numColumns;
}

int NYXPanoramaGrid::height() const
{
  return numRows() == 0 ? 0 : numRows() * rowStep() + _gap;
}

QRect NYXPanoramaGrid::cellRect(int cell) const
{
  const int x = _left + cell % _numColumns * (_cellSize.width() + _gap);
  return {QPoint(x, _gap + cell / _numColumns * rowStep()), _cellSize};
}

/// The row whose cells or the gap above them lie there; rows go on beyond the last.
int NYXPanoramaGrid::rowAt(int y) const
{
  return std::max(0, y) / rowStep();
}

int NYXPanoramaGrid::cellAt(const QPoint& position) const
{
  const int column = std::clamp((position.x() - _left) / (_cellSize.width() + _gap), 0, _numColumns - 1);
  const int cell = rowAt(position.y()) * _numColumns + column;
  return cell < _numCells && cellRect(cell).contains(position) ? cell : -1;
}

NYXPanoramaGrid::Range NYXPanoramaGrid::visibleCells(int top, int height) const
{
  const int first = std::min(rowAt(top) * _numColumns, _numCells);
  const int end = std::min((rowAt(top + height - 1) + 1) * _numColumns, _numCells);
  return {first, height > 0 ? end : first};
}

/// Some rows up or down; beyond the ends, the first row or the last cell.
int NYXPanoramaGrid::moved(int cell, int numRows) const
{
  const int row = std::max(0, cell / _numColumns + numRows);
  return std::min(row * _numColumns + cell % _numColumns, _numCells - 1);
}

int NYXPanoramaGrid::cellAfterKey(int cell, int key, int pageHeight) const
{
  if (_numCells == 0 || cell < 0) return _numCells == 0 ? -1 : 0;
  const int numPageRows = std::max(1, pageHeight / rowStep());
  const bool isInLastRow = cell / _numColumns == numRows() - 1;
  switch (key)
  {
  case Qt::Key_Left:
    return std::max(cell - 1, 0);
  case Qt::Key_Right:
    return std::min(cell + 1, _numCells - 1);
  case Qt::Key_Up:
    return moved(cell, -1);
  case Qt::Key_Down:
    return isInLastRow ? cell : moved(cell, 1);
  case Qt::Key_PageUp:
    return moved(cell, -numPageRows);
  case Qt::Key_PageDown:
    return isInLastRow ? cell : moved(cell, numPageRows);
  case Qt::Key_Home:
    return 0;
  case Qt::Key_End:
    return _numCells - 1;
  default:
    return cell;
  }
}
