#pragma once

#include "numeric/squarematrix.h"

/// A rotation followed by a translation: x becomes rotation * x + translation.
template <class R> struct RigidTransform
{
  SquareMatrix<R> rotation;
  Vector<R> translation;
};
