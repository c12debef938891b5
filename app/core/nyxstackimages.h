#pragma once

/// What a stack owns for the windows that show its images: an image server or a cache of images.
///
/// The classes stand on a higher floor; the stack only ends them before its slices.
class NYXStackImages
{
public:
  NYXStackImages() = default;
  NYXStackImages(const NYXStackImages&) = delete;
  NYXStackImages& operator=(const NYXStackImages&) = delete;
  virtual ~NYXStackImages() = default;
};
