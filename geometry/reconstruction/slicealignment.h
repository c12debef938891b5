#pragma once

#include "model/registration.h"

class StackSlice;

/// How a slice is to be aligned on the one before it, and what that brings.
struct SliceAlignment
{
  Registration registration;
  bool hasMass = false; ///< without, in one of the images, the registration is null
  double correlationBefore = 0;
  double correlationAfter = 0; ///< with the registration as it is, in whole pixels
};

/// Aligns the image of a slice on that of the slice before it in the stack, by their principal axes. Bright pixels are
/// the specimen, or dark ones. \throw UsageError  it is the first slice \throw FileError  an image cannot be read
SliceAlignment alignOnPreviousSlice(const StackSlice& slice, bool isDark);

/// Correlation of the slice's image with that of the slice before, placed as the registration says.
/// \throw UsageError, FileError  as above
double correlationWithPreviousSlice(const StackSlice& slice, const Registration& registration, bool isDark);
