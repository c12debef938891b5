#pragma once

#include "geometry/reconstruction/stackexporter.h"

#include <string>
#include <vector>

class ProgressSubject;
struct ShownStack;

/// How surfaces are written.
struct SurfaceExport
{
  std::string directory;
  std::string prefix; ///< of the files' names, before the models'; empty: none
  SurfaceFormat format = SurfaceFormat::AsciiStl;
  bool isClosed = false; ///< with caps at the first and the last contours
  bool overwrite = false;
};

/// What came of it.
struct ExportedSurfaces
{
  std::vector<std::string> filenames;
  std::vector<std::string> warnings; ///< a line about each model that was left out
};

/// The files that exportSurfaces() would replace. \throw ValueError  a name cannot be part of a file name
std::vector<std::string> existingTargets(const ShownStack& shown, const SurfaceExport& target);

/// Writes the surfaces that are drawn of models, smoothed and with the caps that are drawn, to a file for each model.
/// What is drawn as dots, curves or symbols has none. All targets are checked before the first one is written.
/// \throw FileWriteError  a file exists and must not be overwritten, or cannot be written
/// \throw ValueError  a name cannot be part of a file name \throw Cancelled  the subject was, between two models or
/// while one is smoothed
ExportedSurfaces exportSurfaces(const ShownStack& shown, const SurfaceExport& target, ProgressSubject& subject);
