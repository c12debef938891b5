#pragma once

/// How a contour is joined to the contours of the neighbouring levels when its stack is triangulated.
enum class CurveStackTriangulationContourTag
{
  None = 0,  ///< joined to the level below and to the level above
  Begin = 1, ///< first contour of a surface: not joined to the level below
  End = 2    ///< last contour of a surface: not joined to the level above
};
