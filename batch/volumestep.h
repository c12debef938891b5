#pragma once

#include "batch/batcherror.h"
#include "image/elementtypes.h"

#include <cmath>
#include <limits>
#include <variant>

/// Calls work(matrix) for the volume of a file. Errors that name no file are told with the name of this one.
template <class Volume, class Work> void workOn(const std::string& filename, Volume& volume, const Work& work)
{
  try
  {
    std::visit(work, volume);
  }
  catch (const FileError&)
  {
    throw;
  }
  catch (const BatchError&)
  {
    throw;
  }
  catch (const Exception& error)
  {
    throw BatchError(filename + ": " + error.getWhat());
  }
}

/// \throw BatchError  the number is none
inline void requireFiniteLevel(double level)
{
  if (!std::isfinite(level)) throw BatchError("--level is not a finite number");
}

/// The level as voxels of type T are compared with it. \throw RangeError  it is beyond the range of the type
template <class T> Real<T> levelFor(double level)
{
  if (std::abs(level) > std::numeric_limits<Real<T>>::max())
    throw RangeError("Real<T> levelFor(double)", "--level is beyond the range of the voxels' type, " + typeName<T>());
  return static_cast<Real<T>>(level);
}
