#pragma once

#include "image/pixelcalibration.h"

#include <memory>
#include <string>
#include <vector>

class ProgressSubject;
class Stack;
class StackSlice;

/// Slices for a stack, and what becomes the stack's default calibration if it is empty.
struct NewSlices
{
  std::vector<std::unique_ptr<StackSlice>> slices;
  PixelCalibration defaultCalibration;
};

/// Makes the slices that addImageFiles() appends. \throw as addImageFiles()
NewSlices makeSlices(const Stack& stack, const std::vector<std::string>& filenames, bool usesFileCalibration,
                     ProgressSubject& subject);

/// Appends a slice for each image file to a stack, in their order, named after the files without folder and suffix; a
/// name that is taken gets a number. File names are made absolute.
///
/// With file calibration, the pixel size and unit of the first file that has them become the stack's default, in an
/// empty stack, and each slice has the pixel size of its file, converted to the stack's unit; a file without
/// calibration gets the default. \throw FileError   a file is no image that can be read; then no slice is appended
/// \throw ValueError  a file's name cannot be stored; the same \throw Cancelled  the user stopped it; the same
void addImageFiles(Stack& stack, const std::vector<std::string>& filenames, bool usesFileCalibration,
                   ProgressSubject& subject);

/// The number of channels of which addPlanesOf() can take one: more than 1 for confocal stacks only.
/// \throw FileError  the file is no image stack that can be read
int numChannelsOf(const std::string& filename);

/// Appends a slice for each plane of a multi-page TIFF, LSM (suffix .lsm) or voxel-matrix (.vm) file to an empty stack,
/// named by the plane's number from 0 on, with three digits, of voxel matrices with four. Pixel size, unit and distance
/// of the planes come from the file where it has them; the distance is 0 where it has none.
/// \param channel  of an LSM file, from 0 on
/// \throw FileError  the file is no image stack that can be read \throw ValueError  its name cannot be stored
void addPlanesOf(Stack& stack, const std::string& filename, int channel = 0);
