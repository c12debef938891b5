#pragma once

#include "viewer/painters/stategl.h"

/// Until the end of the scope, coordinates are pixels of the whole picture from its lower left, and what is drawn is
/// not lit and in front of everything.
class PixelViewGL
{
public:
  PixelViewGL(int width, int height)
  {
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, 0, height, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_LIGHTING);
    glDepthFunc(GL_ALWAYS); // nothing that comes later covers it
    glDepthRange(0, 0);
  }

private:
  StateGL _state{GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LINE_BIT | GL_VIEWPORT_BIT | GL_TRANSFORM_BIT |
                 GL_DEPTH_BUFFER_BIT};
  MatricesGL _matrices;
};
