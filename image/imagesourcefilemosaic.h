#pragma once

#include "image/imagesource.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

/// An image made of files pasted side by side in a grid of rows and columns.
class ImageSourceFileMosaic : public ImageSource
{
public:
  /// Row and column, 0-based.
  using Place = std::pair<int, int>;

  explicit ImageSourceFileMosaic(int rows = 0, int cols = 0) : _rows(rows), _cols(cols) {}

  int getRows() const { return _rows; }
  int getCols() const { return _cols; }
  /// The tile's file name, empty when none was set.
  const std::string& getFilename(int row, int column) const;
  /// The same. \throw FileReadError  none was set
  const std::string& requireFilename(int row, int column) const;
  /// \throw RangeError  the place lies outside the grid
  void setFilename(int row, int column, const std::string& filename);
  /// The tiles that were set, row by row.
  const std::map<Place, std::string>& getFilenames() const { return _filenames; }

  /// Heights of the rows, from the tiles of the first column. \throw FileError  a tile cannot be read
  std::vector<int> rowHeights() const;
  /// Widths of the columns, from the tiles of the first row. \throw FileError  a tile cannot be read
  std::vector<int> colWidths() const;

  ImageSourceType getType() const override { return ImageSourceType::FileMosaic; }
  bool isDefined() const override { return !_filenames.empty(); }
  std::unique_ptr<ImageSource> clone() const override { return std::make_unique<ImageSourceFileMosaic>(*this); }

private:
  ImageHeader readHeader() const override;

  int _rows;
  int _cols;
  std::map<Place, std::string> _filenames;
};
