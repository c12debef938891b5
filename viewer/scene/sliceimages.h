#pragma once

#include "viewer/painters/imageplanepaintergl.h"
#include "viewer/painters/voxelmatrixpaintergl.h"

#include <memory>

class ProgressSubject;
class Stack;

/// The image of a slice on its place in space. Needs no OpenGL yet.
/// \throw FileError  the image cannot be read \throw Cancelled  the subject was
std::unique_ptr<ImagePlanePainterGL> createSlicePlane(const Stack& stack, int slice, ProgressSubject& subject);

/// The images of a stack as one volume where the slices lie: on planes at the smallest distance of two slices, each
/// with the image of the nearest one, turned and shifted as it is aligned, of means of pixels when they are large.
/// \throw UsageError  there are no slices \throw FileError  an image cannot be read \throw Cancelled  the subject was
std::unique_ptr<VoxelMatrixPainterGL> createStackVolume(const Stack& stack, VoxelMatrixPainterGL::Mode mode,
                                                        ProgressSubject& subject);
