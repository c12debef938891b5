#pragma once

#include "geometry/curve.h"

class ModelItem;
class StackSlice;

/// Whether an item is a closed or an open contour.
bool isCurve(const ModelItem& item);

/// The curve of an item, for calculations.
Curve<double> realCurve(const ModelItem& item);

/// Vertices at the nearest pixels.
Vertices<int> roundedVertices(const Curve<double>& curve);

/// Without vertices that are equal to the one before; a closed curve's last one is also compared with the first.
Vertices<int> withoutRepetitions(const Vertices<int>& vertices, bool isClosed);

/// Moves vertices that lie outside a box to its border.
void clampTo(const BoundingBox<int>& box, Vertices<int>& vertices);

/// The box of a slice's image; all that is not negative when its size is not known.
BoundingBox<int> imageBoxOf(const StackSlice& slice);

/// Regions and points lose what lies outside of the box, curves are moved to its border. \return whether enough is left
/// for an item of the model
bool cutTo(const BoundingBox<int>& box, ModelItem& item);
