#include "image/image.h"
#include "image/imagemosaic.h"
#include "image/imagereader.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"

#include <gtest/gtest.h>

TEST(ImageMosaic, AssemblesItsItems)
{
  const TemporaryFolder folder;
  ImageMosaic mosaic;
  for (const auto& [row, column] : {std::pair(1, 0), {0, 1}, {0, 0}, {1, 1}})
  {
    const std::string name = folder.file(std::to_string(row) + std::to_string(column) + ".tif");
    TiffRecipe{.width = 10 + column, .height = 20 + row, .photometric = PHOTOMETRIC_PALETTE}.write(name);
    mosaic.addItem(ImageMosaicItem(name, row, column));
  }
  Image image;
  ImageReader::read(image, mosaic);
  EXPECT_EQ(image.getWidth(), 21);
  EXPECT_EQ(image.getHeight(), 41);
  EXPECT_TRUE(image.isIndexed());
  EXPECT_EQ(image.getLine(25)[13], TiffRecipe().sample(3, 5, 0, 0));

  expectError<ValueError>("Mosaic position already set", [&] { mosaic.addItem(ImageMosaicItem("a.tif", 1, 1)); });
  expectError<RangeError>("no such place", [&] { mosaic.addItem(ImageMosaicItem("a.tif", -1, 1)); });
  TiffRecipe{.width = 11, .height = 21}.write(folder.file("11.tif"));
  expectError<FileFormatError>("Incompatible colormaps", [&] { ImageReader::read(image, mosaic); });
  TiffRecipe{.width = 12, .height = 21}.write(folder.file("11.tif"));
  expectError<FileFormatError>("Incompatible image dimensions", [&] { ImageReader::read(image, mosaic); });
  mosaic.addItem(ImageMosaicItem(folder.file("11.tif"), 3, 0));
  expectError<FileReadError>("no image in row 3, column 1", [&] { ImageReader::read(image, mosaic); });
  EXPECT_EQ(image.getWidth(), 21);
  expectError<FileReadError>("no image in row 1, column 1", [&] { ImageReader::read(image, ImageMosaic()); });
}
