#include "image/imagesourcefilemosaic.h"

#include "image/imagereader.h"
#include "numeric/exception.h"

#include <cstdint>
#include <limits>
#include <numeric>

namespace
{
ImageHeader tileHeader(const std::string& filename)
{
  ImageHeader header;
  ImageReader::read(header, filename);
  return header;
}

int total(const std::vector<int>& sizes)
{
  const std::int64_t sum = std::accumulate(sizes.begin(), sizes.end(), std::int64_t{0});
  if (sum > std::numeric_limits<int>::max())
    throw SizeError("ImageHeader ImageSourceFileMosaic::readHeader() const", "The mosaic is too large");
  return static_cast<int>(sum);
}
} // namespace

const std::string& ImageSourceFileMosaic::getFilename(int row, int column) const
{
  static const std::string none;
  const auto tile = _filenames.find({row, column});
  return tile == _filenames.end() ? none : tile->second;
}

const std::string& ImageSourceFileMosaic::requireFilename(int row, int column) const
{
  const std::string& filename = getFilename(row, column);
  if (!filename.empty()) return filename;
  throw FileReadError("const std::string& ImageSourceFileMosaic::requireFilename(int, int) const",
                      "The mosaic has no image in row " + std::to_string(row + 1) + ", column " +
                          std::to_string(column + 1));
}

void ImageSourceFileMosaic::setFilename(int row, int column, const std::string& filename)
{
  if (row < 0 || row >= _rows || column < 0 || column >= _cols)
    throw RangeError("void ImageSourceFileMosaic::setFilename(int, int, const std::string&)",
                     "There is no such place in the mosaic");
  _filenames[{row, column}] = filename;
  forgetHeader();
}

std::vector<int> ImageSourceFileMosaic::rowHeights() const
{
  std::vector<int> heights;
  while (static_cast<int>(heights.size()) < _rows)
    heights.push_back(tileHeader(requireFilename(static_cast<int>(heights.size()), 0)).getHeight());
  return heights;
}

std::vector<int> ImageSourceFileMosaic::colWidths() const
{
  std::vector<int> widths;
  while (static_cast<int>(widths.size()) < _cols)
    widths.push_back(tileHeader(requireFilename(0, static_cast<int>(widths.size()))).getWidth());
  return widths;
}

ImageHeader ImageSourceFileMosaic::readHeader() const
{
  ImageHeader header = tileHeader(requireFilename(0, 0));
  header.setHeight(total(rowHeights()));
  header.setWidth(total(colWidths()));
  return header;
}
