#pragma once

#include "model/rleitemset.h"

/// The part of a set of positions that lies in a box.
RLEItemSet clippedTo(const BoundingBox<int>& box, const RLEItemSet& set);

/// The positions of a box that a disc covers whose centre moves from one position to another.
RLEItemSet brushStroke(const BoundingBox<int>& box, const Vector<int>& from, const Vector<int>& to, int radius);
