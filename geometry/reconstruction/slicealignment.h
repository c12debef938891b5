#pragma once

#include "model/registration.h"

class StackSlice;

/// How a slice is to be aligned on the one before it, and what that brings.
struct SliceAlignment
{
  Registration registration;
  bool hasMass = false; ///< without, in one of the images, the registration is null
  /// Of the two images' grey levels where they overlap, with the slice's registration as it was and with the new one.
  double correlationBefore = 0;
  double correlationAfter = 0;
};

/// Aligns the image of a slice on that of the slice before it in the stack, by their principal axes; angles are in
/// [0, 360). Bright pixels are the specimen, or dark ones. \throw UsageError  it is the first slice, or its pixels have
/// no size \throw FileError  an image cannot be read
SliceAlignment alignOnPreviousSlice(const StackSlice& slice, bool isDark);

/// Aligns a slice by what is drawn: of the model of its first item, the first item on the slice is brought onto the
/// first one on the slice before, as closely as their outlines can lie. Their centres are superposed first, at the
/// angle of `start`, from where the fit may turn a part of the circle. \throw UsageError  it is the first slice, one of
/// the two items is missing or has no vertices, or the pixels have no size \throw FileError  the size of an image is
/// not known
Registration alignContoursOnPreviousSlice(const StackSlice& slice, const Registration& start);
