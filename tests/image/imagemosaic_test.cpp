#include "image/image.h"
#include "image/imagemosaic.h"
#include "image/imagereader.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagewriter.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{
/// A tile of one grey level.
void writeTile(const std::string& name, int width, int height, int level, int depth = 8)
{
  Image image(width, height, depth);
  for (int y = 0; y < height; ++y)
    std::fill_n(image.getLine(y), image.bytesPerLine(), static_cast<unsigned char>(level));
  ImageWriter::write(image, name, true);
}
} // namespace

TEST(ImageMosaic, AssemblesItsItems)
{
  const TemporaryFolder folder;
  ImageMosaic mosaic;
  for (const auto& [row, column] : {std::pair(1, 0), {0, 1}, {0, 0}, {1, 1}})
  {
    const std::string name = folder.file(std::to_string(row) + std::to_string(column) + ".tif");
    writeTile(name, 10 + column, 20 + row, 10 * row + column);
    mosaic.addItem(ImageMosaicItem(name, row, column));
  }
  Image image;
  const ImageSourceFileMosaic source = mosaic.getSource();
  EXPECT_EQ(source.getSize(), (std::vector<int>{41, 21}));
  ImageReader::read(image, source);
  EXPECT_EQ(image.getWidth(), 21);
  EXPECT_EQ(image.getHeight(), 41);
  for (const int y : {0, 19, 20, 40})
    for (const int x : {0, 9, 10, 20})
      EXPECT_EQ(image.getLine(y)[x], 10 * (y / 20) + x / 10 - (x == 20) - 10 * (y == 40));

  expectError<ValueError>("Mosaic position already set", [&] { mosaic.addItem(ImageMosaicItem("a.tif", 1, 1)); });
  expectError<RangeError>("no such place", [&] { mosaic.addItem(ImageMosaicItem("a.tif", -1, 1)); });
  const auto read = [&] { ImageReader::read(image, mosaic); };
  writeTile(folder.file("11.tif"), 12, 21, 0);
  expectError<FileFormatError>("Incompatible image dimensions", read);
  writeTile(folder.file("11.tif"), 11, 21, 0, 24);
  expectError<FileFormatError>("Incompatible image depths", read);
  for (const int paletteScale : {0, 257, 200}) // no palette in the other tiles, then another one
  {
    TiffRecipe{.width = 11, .height = 21, .photometric = PHOTOMETRIC_PALETTE, .paletteScale = std::max(paletteScale, 1)}
        .write(folder.file("11.tif"));
    expectError<FileFormatError>("Incompatible colormaps", read);
    for (const auto& [row, column] : {std::pair(1, 0), {0, 1}, {0, 0}})
      TiffRecipe{.width = 10 + column, .height = 20 + row, .photometric = PHOTOMETRIC_PALETTE, .paletteScale = 100}
          .write(folder.file(std::to_string(row) + std::to_string(column) + ".tif"));
  }
  EXPECT_EQ(image.getWidth(), 21);
  mosaic.addItem(ImageMosaicItem(folder.file("11.tif"), 3, 0));
  expectError<FileReadError>("no image in row 3, column 1", read);
  expectError<FileReadError>("no image in row 1, column 1", [&] { ImageReader::read(image, ImageMosaic()); });
}

TEST(ImageMosaic, GoesByTheFilesAsTheyAre)
{
  const TemporaryFolder folder;
  ImageSourceFileMosaic source(1, 2);
  for (const int column : {0, 1})
  {
    source.setFilename(0, column, folder.file(std::to_string(column) + ".tif"));
    writeTile(source.getFilename(0, column), 100, 100, 1);
  }
  EXPECT_EQ(source.getSize2(), 200); // and keeps what it knows
  for (const int size : {50, 300})
  {
    for (const int column : {0, 1}) writeTile(source.getFilename(0, column), size, size, 7);
    Image image;
    ImageReader::read(image, source);
    EXPECT_EQ(image.getWidth(), 2 * size);
    EXPECT_EQ(image.getLine(size - 1)[2 * size - 1], 7);
  }
}
