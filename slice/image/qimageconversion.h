#pragma once

#include <QImage>

class Image;

/// A copy of an image for Qt: 8-bit grey and palette images stay 8-bit, 16-bit ones are scaled to 8 bits of grey.
QImage toQImage(const Image& image);
