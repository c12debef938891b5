#pragma once

#include "app/core/nyxstack.h"

#include <QElapsedTimer>

#include <memory>
#include <string>
#include <vector>

/// What the programs that time the window show: a large image with many contours in view.
struct ManyItems
{
  int side = 16384; ///< of the image, in pixels
  int numItems = 10000;
  float zoom = 0.125F;

  /// From SIDE, ITEMS and ZOOM on the command line; what is missing stays as it is.
  void read(const QStringList& arguments);
};

/// Writes an image with a texture of grey levels.
void writeTexture(const std::string& filename, int side);

/// A stack of one slice with the image and the contours, of 100 vertices each, around its centre: all within a view of
/// 900 x 500 canvas pixels.
std::unique_ptr<NYXStack> makeStack(const std::string& image, const ManyItems& settings);

double millisecondsOf(const QElapsedTimer& clock);

/// "median ... ms, 99% ... ms, worst ... ms".
std::string summaryOf(std::vector<double> milliseconds);
