#pragma once

#include "viewer/painters/imageplanepaintergl.h"
#include "viewer/painters/voxelmatrixpaintergl.h"

#include <memory>

class ProgressSubject;
class Stack;

/// The image of a slice on its place in space. Needs no OpenGL yet.
/// \throw FileError  the image cannot be read \throw Cancelled  the subject was
std::unique_ptr<ImagePlanePainterGL> createSlicePlane(const Stack& stack, int slice, ProgressSubject& subject);

/// The images of a regular stack as one volume in their place, of means of pixels when they are large.
/// \throw UsageError  the slices differ in size, alignment or distance
/// \throw FileError  an image cannot be read \throw Cancelled  the subject was
std::unique_ptr<VoxelMatrixPainterGL> createStackVolume(const Stack& stack, VoxelMatrixPainterGL::Mode mode,
                                                        ProgressSubject& subject);
