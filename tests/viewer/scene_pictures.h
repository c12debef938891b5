#pragma once

#include "viewer/painters/trimeshpaintergl.h"
#include "viewer/scene/offscreencontext.h"
#include "viewer/scene/scenegl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

/// Red, green and blue.
using Rgb = std::array<int, 3>;

/// A picture that was drawn, its lines from the top.
struct Picture
{
  int width;
  int height;
  std::vector<std::uint8_t> pixels;

  Rgb at(int x, int y) const;
  int alphaAt(int x, int y) const;
  /// Left, top, right and bottom of the pixels that are not black.
  std::array<int, 4> extent() const;
  int numColored() const;
};

/// Scenes on a black ground without light from the side, so that surfaces that face the viewer have their own colours.
class ScenePictures : public testing::Test
{
protected:
  ScenePictures();

  /// Adds an opaque box of a colour.
  TriMeshPainterGL& addBox(const Vector<float>& low, const Vector<float>& high, const Rgb& color, float opacity = 255);
  Picture draw(int width, int height, int numSamples = 0, float pixelRatio = 1);

  OffscreenContext context;
  SceneGL scene;
  std::vector<std::unique_ptr<TriMeshPainterGL>> painters;
};
