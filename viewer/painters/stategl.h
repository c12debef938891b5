#pragma once

#include "viewer/painters/glheaders.h"

/// Puts the attributes and the client's arrays of OpenGL back at the end of the scope.
class StateGL
{
public:
  explicit StateGL(GLbitfield attributes)
  {
    glPushAttrib(attributes);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
  }
  StateGL(const StateGL&) = delete;
  StateGL& operator=(const StateGL&) = delete;
  ~StateGL()
  {
    glPopClientAttrib();
    glPopAttrib();
  }
};

/// Puts both matrices back at the end of the scope.
class MatricesGL
{
public:
  MatricesGL()
  {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
  }
  MatricesGL(const MatricesGL&) = delete;
  MatricesGL& operator=(const MatricesGL&) = delete;
  ~MatricesGL()
  {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
  }
};
