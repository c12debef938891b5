#pragma once

#include "geometry/curvestack.h"

#include <string>
#include <vector>

/// What a curve stack has that its triangulation copes with, but that its author may not have meant.
struct CurveStackFinding
{
  enum Kind
  {
    NoExtent,      ///< fewer than three vertices (two for an open curve), or a length that is 0 or not finite
    NotHorizontal, ///< the vertices do not lie at one height
    OutOfOrder,    ///< the height turns back, or is that of an earlier level
    CrossesItself, ///< a closed curve meets itself
    Touches,       ///< two closed curves of a level have a point in common
    Nested,        ///< the curve lies inside another closed curve of its level
    WrongTags      ///< there are tags, but not one per curve
  };

  Kind kind;
  int curve = -1; ///< its number in the stack; -1 for a finding about the whole stack
  int other = -1; ///< the number of the second curve of Touches (the larger one) and Nested (the outer one)

  /// "curve 3 crosses itself"
  std::string text() const;
};

/// All findings about a stack, by the curves' numbers, those about the whole stack first.
/// \param numTags  number of the contour tags that go with the stack, 0 for none
/// \throw SizeError  the curves are not in 3D
template <class T> std::vector<CurveStackFinding> checkCurveStack(const CurveStack<T>& stack, int numTags = 0);
