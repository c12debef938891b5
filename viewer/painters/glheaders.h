#pragma once

// The functions of OpenGL with their prototypes: the library that they are linked from exports them all.
#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>
