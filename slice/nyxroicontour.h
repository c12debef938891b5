#pragma once

#include "geometry/curve.h"
#include "image/pixelmatrix.h"

#include <optional>

class Image;
class QRect;

/// The grey levels of an image; of a single-channel colour image, those of its channel.
PixelMatrix<float> greyLevels(const Image& image);

/// The object in a rectangle of an image, found by a threshold.
///
/// The grey levels (of a single-channel colour image, those of its channel) are smoothed by a mean over
/// 2 * halfSize + 1 pixels along both axes and divided by an Isodata threshold. The object is the largest region, by
/// the pixels within its outer boundary, of the class that the border of the rectangle has less of. Its contour goes
/// through the centres of its outermost pixels, counter-clockwise in image coordinates: filled, it is the region with
/// its holes. None when the rectangle has one grey level only. \throw SizeError  it reaches beyond the image
std::optional<Curve<int>> contourInRoi(const Image& image, const QRect& roi, int halfSize);
