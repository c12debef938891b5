#pragma once

#include "image/image.h"
#include "numeric/progresssubject.h"

/// Smaller copies of images, by bands of rows, so that cancelling takes effect within milliseconds. All throw
/// Cancelled when the subject is, report to it and leave the calibration as it is.
/// @{

/// Half as wide and half as high, rounded down, each pixel the mean of 2 x 2, rounded (a half up); of 32 bits the
/// fourth byte as well. \throw SizeError  the image is less than 2 pixels wide or high
Image halved(const Image& image, ProgressSubject& subject);

/// A copy of another size: each pixel is the one of the image at its centre, of an image more than twice as wide after
/// smoothing with a mean filter of half-size image width / (2 x width), clipped at the borders.
/// \throw SizeError  a size is below 1, or the image is empty
Image resized(const Image& image, int width, int height, ProgressSubject& subject);

/// Gives an indexed image the colours of its colormap: 8 bits of grey when all of them are grey, otherwise 24 bits.
/// Other images stay as they are.
void expandColormap(Image& image, ProgressSubject& subject);
/// @}
