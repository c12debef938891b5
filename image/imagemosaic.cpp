#include "image/imagemosaic.h"

#include "image/imagesourcefilemosaic.h"
#include "numeric/exception.h"

#include <algorithm>
#include <limits>

void ImageMosaic::addItem(const ImageMosaicItem& item)
{
  constexpr const char* where = "void ImageMosaic::addItem(const ImageMosaicItem&)";
  constexpr int greatest = std::numeric_limits<int>::max() - 1;
  const auto isOutside = [](int place) { return place < 0 || place > greatest; };
  if (isOutside(item.getRow()) || isOutside(item.getColumn()))
    throw RangeError(where, "There is no such place in the mosaic");
  const auto isTaken = [&item](const ImageMosaicItem& other)
  { return other.getRow() == item.getRow() && other.getColumn() == item.getColumn(); };
  if (std::ranges::any_of(_items, isTaken)) throw ValueError(where, "Mosaic position already set");
  _items.push_back(item);
  _rows = std::max(_rows, item.getRow() + 1);
  _cols = std::max(_cols, item.getColumn() + 1);
}

ImageSourceFileMosaic ImageMosaic::getSource() const
{
  ImageSourceFileMosaic source(_rows, _cols);
  for (const ImageMosaicItem& item : _items) source.setFilename(item.getRow(), item.getColumn(), item.getFilename());
  return source;
}
