#pragma once

#include "viewer/painters/paintergl.h"
#include "viewer/scene/modelgeometry.h"

#include <memory>

class Stack;

/// Lengths of the stack that a symbol of point size 1 is wide: a hundredth of the diagonal of the box around its
/// slices' images. \throw FileError  the size of an image is not known
float symbolSize(const Stack& stack);

/// The painter of a model; none when there is nothing to draw.
std::unique_ptr<PainterGL<float>> createPainter(const ModelGeometry& geometry, float symbolSize);

/// Gives a model's painter another colour, opacity and shininess. \return false when that takes another painter
bool changeMaterial(PainterGL<float>& painter, const ModelProperties& properties,
                    const ModelItemProperties& itemProperties);
