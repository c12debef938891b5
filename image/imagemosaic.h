#pragma once

#include <string>
#include <vector>

class ImageSourceFileMosaic;

/// One tile of a mosaic: a file and its place in the grid, 0-based.
class ImageMosaicItem
{
public:
  ImageMosaicItem(std::string filename, int row, int column)
    : _filename(std::move(filename)), _row(row), _column(column)
  {
  }

  const std::string& getFilename() const { return _filename; }
  int getRow() const { return _row; }
  int getColumn() const { return _column; }

private:
  std::string _filename;
  int _row;
  int _column;
};

/// A larger image made of tiles of the same depth and colormap; ImageReader::read() assembles it. The grid is as large
/// as the items' places ask for.
class ImageMosaic
{
public:
  /// \throw ValueError  "Mosaic position already set"
  /// \throw RangeError  a negative place, or one that no mosaic reaches
  void addItem(const ImageMosaicItem& item);

  int getNumItems() const { return static_cast<int>(_items.size()); }
  /// Item i, in the order of adding. Unchecked.
  const ImageMosaicItem& getItem(int i) const { return _items[static_cast<std::size_t>(i)]; }
  int getRows() const { return _rows; }
  int getCols() const { return _cols; }

  /// The same tiles as the image source of a slice.
  ImageSourceFileMosaic getSource() const;

private:
  std::vector<ImageMosaicItem> _items;
  int _rows = 0;
  int _cols = 0;
};
