#pragma once

#include "viewer/painters/paintergl.h"

#include <memory>
#include <string>
#include <vector>

class ProgressSubject;
struct ShownStack;

/// What a model's place in a scene is filled with.
struct PaintedModel
{
  std::unique_ptr<PainterGL<float>> painter; ///< none when there is nothing to draw
  std::string problem;                       ///< why that is, or why it is drawn otherwise than it should; or empty
};

/// Reconstructs the models, in their order, and makes their painters. Needs no OpenGL yet.
/// \throw Cancelled  the subject was, between two models or while one is smoothed
std::vector<PaintedModel> paintModels(const ShownStack& shown, ProgressSubject& subject);
