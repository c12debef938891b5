#pragma once

#include "image/image.h"
#include "image/voxelmatrix.h"
#include "numeric/progresssubject.h"

#include <string>
#include <vector>

class Stack;

/// Replaces the volume by the images of the slices, one plane per slice in stack order: of one colour only, that
/// channel; of any other content, the grey levels. Planes of voxel matrices, in files or in memory, give their voxels
/// as they are. The voxels have the first slice's pixel size, and the distance of the second slice to it (the default
/// one, when there is a single slice) as depth, in the stack's length unit. On an error the volume stays. \throw
/// SizeError   the images have different sizes, or there are no slices \throw RangeError  a value does not fit T, also
/// a finite one that would become infinite \throw UsageError  a slice has no image \throw FileError   an image cannot
/// be read \throw Cancelled  the user stopped it
template <class T>
void stackToVolume(VoxelMatrix<T>& volume, const Stack& stack, ImageColorContent content, ProgressSubject& subject);

/// Writes a volume as images beside a new stack file that names them, its slices `relativePosition` apart in the
/// volume's length unit and with its pixel size; ".sdf" is appended to a name without it.
///
/// Unsigned bytes become one TIFF file per plane; voxels of any other type one voxel-matrix file, since 16-bit TIFF
/// files cannot be read back. All files are written beside their places before the first one is replaced: after an
/// error or Cancel the old ones are as they were and none of the new ones is left. (Only when the disk fails while
/// complete files are renamed, images may be new already.) Progress counts planes.
/// \return what the stack file says otherwise than the volume, as StackWriter::getWarnings()
/// \throw FileWriteError  one of the files exists and must not be overwritten, or cannot be written; the pixel size or
/// the relative position cannot be stored
/// \throw ValueError      the name of the stack file cannot be stored
/// \throw SizeError       the volume is empty \throw Cancelled  the user stopped it
template <class T> std::vector<std::string> saveVolumeAsStack(const VoxelMatrix<T>& volume,
                                                              const std::string& stackFileName, float relativePosition,
                                                              bool overwrite, ProgressSubject& subject);
