// Reading and writing of voxel matrices.
#include "image/filewarnings.h"
#include "image/voxelmatrix.h"
#include "image/voxelmatrixfile.h"
#include "numeric/atomicfile.h"
#include "numeric/progresssubject.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <string_view>

namespace
{
constexpr const char* loadSignature = "void VoxelMatrix<T>::load(const std::string&)";
constexpr const char* saveSignature = "void VoxelMatrix<T>::save(const std::string&, bool) const";

std::string lowerCasedSuffix(const std::string& filename)
{
  std::string suffix = std::filesystem::path(filename).extension().string();
  std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                 [](char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return suffix;
}

/// The 48 bytes in front of the voxels of a format-1 file.
template <class T> std::array<char, 48> headerBytes(const VoxelMatrix<T>& matrix)
{
  const VoxelCalibration& calibration = matrix.getVoxelCalibration();
  const std::array<int, 9> integers = {0,
                                       0,
                                       0,
                                       1,
                                       voxelTypeId<T>(),
                                       matrix.getSize1(),
                                       matrix.getSize2(),
                                       matrix.getSize3(),
                                       calibration.getLengthUnit().getScale()};
  std::array<char, 48> bytes;
  std::memcpy(bytes.data(), integers.data(), sizeof integers);
  std::memcpy(bytes.data() + sizeof integers, calibration.getVoxelSize().data(), 3 * sizeof(float));
  return bytes;
}

/// The matrix's place in memory for voxels of a file. \throw FileFormatError  there is no memory
template <class T> void makeRoom(VoxelMatrix<T>& matrix, const VoxelMatrixFile& file)
{
  const VoxelMatrixHeader& header = file.getHeader();
  try
  {
    matrix.setSize(header.size1, header.size2, header.size3);
  }
  catch (const std::bad_alloc&)
  {
    throw FileFormatError(loadSignature, "There is not enough memory for the voxel matrix", file.getFilename());
  }
}

/// Reads the unsigned integers Stored, plane by plane, into voxels of another width.
template <class Stored, class T> void readConverted(const VoxelMatrixFile& file, VoxelMatrix<T>& matrix)
{
  const std::size_t planeSize = matrix[0].getNumElements();
  PixelMatrix<Stored> plane(matrix.getSize1(), matrix.getSize2());
  for (int k = 0; k < matrix.getSize3(); ++k)
  {
    file.read(plane.data(), static_cast<std::size_t>(k) * planeSize, planeSize);
    const auto largest = *std::max_element(plane.data(), plane.data() + planeSize);
    if (static_cast<long>(largest) > static_cast<long>(std::numeric_limits<T>::max()))
      throw RangeError(loadSignature, file.getFilename() + ": The value " + std::to_string(largest) +
                                          " does not fit voxels of type " + typeName<T>());
    std::copy_n(plane.data(), planeSize, matrix[k].data());
  }
}

template <class T> void readVoxels(const VoxelMatrixFile& file, VoxelMatrix<T>& matrix)
{
  const VoxelMatrixHeader& header = file.getHeader();
  if (header.elementSize == sizeof(T)) return file.read(matrix.data(), 0, header.numVoxels());
  if constexpr (voxelTypeId<T>() == 0)
  {
    if (header.elementSize == sizeof(unsigned char)) return readConverted<unsigned char>(file, matrix);
    if (header.elementSize == sizeof(unsigned short)) return readConverted<unsigned short>(file, matrix);
  }
  throw TypeError(loadSignature, "Type mismatch between template instantiation and file contents");
}
} // namespace

template <class T> void VoxelMatrix<T>::save(const std::string& filename, bool overwrite) const
{
  ProgressSubject nobody;
  save(filename, overwrite, nobody);
}

template <class T>
void VoxelMatrix<T>::save(const std::string& filename, bool overwrite, ProgressSubject& subject) const
{
  const std::string target = std::filesystem::path(filename).extension() == ".vm" ? filename : filename + ".vm";
  if (getNumVoxels() == 0) throw FileWriteError(saveSignature, "There are no voxels to write", target);
  if (!overwrite && fileExists(target)) throw FileWriteError(saveSignature, "File already exists", target);
  const ProgressStep step(subject, "Writing " + target, getSize3());
  AtomicFile file(target);
  const auto header = headerBytes(*this);
  file.write(std::string_view(header.data(), header.size()));
  const std::size_t planeLength = getNumVoxels() / static_cast<std::size_t>(getSize3()) * sizeof(T);
  for (int k = 0; k < getSize3(); ++k)
  {
    file.write(std::string_view(reinterpret_cast<const char*>((*this)[k].data()), planeLength));
    subject.progress(k + 1);
    subject.throwIfCancelled(saveSignature);
  }
  file.commit();
}

template <class T> void VoxelMatrix<T>::load(const std::string& filename)
{
  if (const std::string suffix = lowerCasedSuffix(filename); suffix == ".tif" || suffix == ".tiff")
    return loadTiffStackFile(filename);
  const VoxelMatrixFile file(filename);
  const VoxelMatrixHeader& header = file.getHeader();
  if (header.format == 1 && header.typeId != voxelTypeId<T>())
    throw TypeError(loadSignature, "Type mismatch between template instantiation and file contents");
  VoxelMatrix fresh;
  makeRoom(fresh, file);
  readVoxels(file, fresh);
  fresh.setVoxelCalibration(header.calibration);
  swap(fresh);
  tellWarning(filename);
}

template <class T> VoxelMatrixHeader VoxelMatrix<T>::loadHeader(const std::string& filename)
{
  return VoxelMatrixFile(filename).getHeader();
}

IMAGE_INSTANTIATE(VoxelMatrix)
