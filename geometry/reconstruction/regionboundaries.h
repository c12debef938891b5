#pragma once

#include "geometry/curve.h"

#include <vector>

class RLEItemSet;

/// The outer boundaries of a region, along the sides of its pixels, in the order of their first runs.
///
/// Pixel (x, y) is the square from (x - 1/2, y - 1/2) to (x + 1/2, y + 1/2). The closed curves are planar, have
/// positive area in pixel coordinates and a vertex at each turn. Pixels connect through sides; holes have no boundary
/// here, what lies within a hole has. Takes memory and time by the number of runs, not of pixels.
std::vector<Curve<double>> outerBoundaries(const RLEItemSet& region);
