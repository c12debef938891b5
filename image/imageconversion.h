#pragma once

#include "image/imageprocessing.h"

/// Turns images into another kind: gray or not, indexed or not, of a depth.
///
/// Provided are the conversions of indexed images to gray: with a gray colormap or, when not to be indexed, to plain
/// grey levels of 8 bits. An image of the target kind stays as it is; any other conversion leaves the image as it is
/// and writes a line to the error stream.
class ImageConversion : public ImageProcessing
{
public:
  ImageConversion(bool isGrayscale, bool isIndexed, int depth)
    : _isGrayscale(isGrayscale), _isIndexed(isIndexed), _depth(depth)
  {
  }

  using ImageProcessing::apply;
  void apply(Image& image) override;

private:
  bool isTarget(const Image& image) const;

  bool _isGrayscale;
  bool _isIndexed;
  int _depth;
};
