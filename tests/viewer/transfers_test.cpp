// What is sent to the graphics card: functions of OpenGL are counted on their way to the library.
#include "geometry/curvestack.h"
#include "image/image.h"
#include "scene_pictures.h"
#include "viewer/painters/curvestackpaintergl.h"
#include "viewer/painters/imageplanepaintergl.h"
#include "viewer/painters/verticespaintergl.h"
#include "viewer/painters/voxelmatrixpaintergl.h"

#include <dlfcn.h>

namespace
{
int numTransfers = 0; // of vertices, indexes and pictures
int numDraws = 0;

template <class Function> Function* next(Function*, const char* name)
{
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
} // namespace

extern "C"
{
  void glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage)
  {
    ++numTransfers;
    next(glBufferData, "glBufferData")(target, size, data, usage);
  }
  void glBufferSubData(GLenum target, GLintptr offset, GLsizeiptr size, const void* data)
  {
    ++numTransfers;
    next(glBufferSubData, "glBufferSubData")(target, offset, size, data);
  }
  void glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border,
                    GLenum format, GLenum type, const void* data)
  {
    ++numTransfers;
    next(glTexImage2D, "glTexImage2D")(target, level, internalFormat, width, height, border, format, type, data);
  }
  void glTexImage3D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLsizei depth,
                    GLint border, GLenum format, GLenum type, const void* data)
  {
    ++numTransfers;
    next(glTexImage3D, "glTexImage3D")(target, level, internalFormat, width, height, depth, border, format, type, data);
  }
  void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indexes)
  {
    ++numDraws;
    next(glDrawElements, "glDrawElements")(mode, count, type, indexes);
  }
}

TEST_F(ScenePictures, AFrameThatDidNotChangeSendsDrawingCommandsAlone)
{
  constexpr int numBoxes = 20;
  for (int i = 0; i < numBoxes; ++i)
  {
    const auto x = static_cast<float>(3 * i);
    addBox({x, 0, 0}, {x + 1, 1, 1}, {255, 0, 0}, i % 2 == 0 ? 255 : 100);
  }
  CurveStack<float> curves;
  curves.append(Curve<float>(3, 4));
  CurveStackPainterGL lines(curves, {{{0, 0, 255}, 3}});
  VerticesPainterGL symbols(curves, {{VertexSymbol::Sphere, true, 1, {255, 0, 0}}});
  ImagePlanePainterGL plane(Image(4, 2, 24), {{{0, 2, 0}, {4, 2, 0}, {4, 0, 0}, {0, 0, 0}}});
  VoxelMatrix<unsigned char> voxels(2, 2, 2);
  VoxelMatrixPainterGL slices(voxels, {}, VoxelMatrixPainterGL::OrthogonalSlices);
  for (PainterGL<float>* painter : std::initializer_list<PainterGL<float>*>{&lines, &symbols, &plane, &slices})
    scene.addPainter(*painter);
  scene.updateBoundingBox();
  numTransfers = 0;
  draw(100, 100);
  EXPECT_GE(numTransfers, 2 * numBoxes + 2 * 2 + 2); // vertices and indexes of each, two textures
  numTransfers = numDraws = 0;
  draw(100, 100);
  EXPECT_EQ(numTransfers, 0);
  EXPECT_EQ(numDraws, numBoxes / 2 * 3 + 2); // transparent ones have two passes
  scene.camera().setRotation(10, 20, 30);
  scene.setProjectionDirty();
  draw(100, 100);
  EXPECT_EQ(numTransfers, 0);
  scene.removePainters();
}
