#include "batch/volumefile.h"

#include "batch/batcherror.h"
#include "batch/stackfile.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/voxelmatrixfile.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <unistd.h>

namespace
{
/// Exchanges height and width, which TIFF stacks have in each other's place.
template <class T> void crossVoxelSize(VoxelMatrix<T>& volume)
{
  VoxelCalibration calibration = volume.getVoxelCalibration();
  const Vector<float>& size = calibration.getVoxelSize();
  calibration.setVoxelSize({size[1], size[0], size[2]});
  volume.setVoxelCalibration(calibration);
}

double numVoxels(const ImageHeader& header)
{
  return double{1} * header.getWidth() * header.getHeight() * header.getNumPlanes();
}

template <class T> AnyVolume load(const std::string& filename)
{
  VoxelMatrix<T> volume;
  volume.load(filename);
  return volume;
}

AnyVolume readVoxelMatrix(const std::string& filename, double workingBytesPerVoxel)
{
  const VoxelMatrixHeader header = VoxelMatrixFile(filename).getHeader();
  requireMemory(filename, static_cast<double>(header.numVoxels()) *
                              (static_cast<double>(header.elementSize) + workingBytesPerVoxel));
  return withElementType(header, [&](auto zero) { return load<decltype(zero)>(filename); });
}

AnyVolume readTiff(const std::string& filename, double workingBytesPerVoxel)
{
  const ImageHeader header = imageHeader(filename);
  const bool isWide = header.getDepth() == 16;
  requireMemory(filename, numVoxels(header) * ((isWide ? 2 : 1) + workingBytesPerVoxel));
  AnyVolume volume = isWide ? load<unsigned short>(filename) : load<unsigned char>(filename);
  std::visit([](auto& matrix) { crossVoxelSize(matrix); }, volume);
  return volume;
}

template <class T> AnyVolume readChannel(ImageSourceLSMStackPlane& source, int channel)
{
  const int numPlanes = source.getNumPlanes();
  VoxelMatrix<T> volume(source.getSize1(), source.getSize2(), numPlanes);
  VoxelCalibration calibration;
  const PixelCalibration pixels = source.getPixelCalibration();
  calibration.setVoxelSize({pixels.getPixelHeight(), pixels.getPixelWidth(), source.getVoxelSizeZ()});
  calibration.setLengthUnit(pixels.getLengthUnit());
  Image image;
  for (int k = 0; k < numPlanes; ++k)
  {
    source.setPlane(channel * numPlanes + k);
    ImageReader::read(image, source);
    if (image.getDepth() != 8 * static_cast<int>(sizeof(T)) || image.getWidth() != volume.getSize2() ||
        image.getHeight() != volume.getSize1())
      throw FileFormatError("AnyVolume readChannel(ImageSourceLSMStackPlane&, int)",
                            "Plane " + std::to_string(k) + " has another size or depth than the first",
                            source.getLSMStackFilename());
    volume[k].convertFromImage(image);
  }
  volume.setVoxelCalibration(calibration);
  return volume;
}

AnyVolume readLsm(const std::string& filename, int channel, double workingBytesPerVoxel)
{
  ImageSourceLSMStackPlane source(filename);
  if (channel < 0 || channel >= source.getNumChannels())
    throw BatchError(filename + ": there is no channel " + std::to_string(channel) + "; the file has " +
                     std::to_string(source.getNumChannels()) + ", counted from 0");
  const bool isWide = source.getDepth() == 16;
  const double numVoxels = double{1} * source.getSize1() * source.getSize2() * source.getNumPlanes();
  requireMemory(filename, numVoxels * ((isWide ? 2 : 1) + workingBytesPerVoxel));
  return isWide ? readChannel<unsigned short>(source, channel) : readChannel<unsigned char>(source, channel);
}
} // namespace

VolumeFormat volumeFormat(const std::string& filename)
{
  std::string suffix = std::filesystem::path(filename).extension().string();
  std::ranges::transform(suffix, suffix.begin(),
                         [](char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (suffix == ".tif" || suffix == ".tiff") return VolumeFormat::Tiff;
  if (suffix == ".lsm") return VolumeFormat::Lsm;
  return suffix == ".vm" ? VolumeFormat::VoxelMatrix : VolumeFormat::Unknown;
}

double machineMemory()
{
  return double{1} * static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void requireMemory(const std::string& filename, double numBytes)
{
  if (numBytes <= machineMemory()) return;
  constexpr double gibibyte = 1 << 30;
  const auto inGibibytes = [](double bytes) { return std::to_string(static_cast<long>(bytes / gibibyte) + 1); };
  throw BatchError(filename + ": the volume and the work on it take " + inGibibytes(numBytes) +
                   " GiB, the machine has " + inGibibytes(machineMemory()));
}

ImageHeader imageHeader(const std::string& filename)
{
  ImageHeader header;
  if (volumeFormat(filename) == VolumeFormat::Lsm)
    ImageReader::read(header, ImageSourceLSMStackPlane(filename));
  else
    ImageReader::read(header, ImageSourceTiffStackPlane(filename));
  return header;
}

void requireChannels(const std::string& filename, int channel)
{
  if (channel != 0 && volumeFormat(filename) != VolumeFormat::Lsm)
    throw BatchError(filename + ": only confocal stacks (.lsm) have channels to choose from");
}

AnyVolume readVolume(const std::string& filename, int channel, double workingBytesPerVoxel)
{
  requireChannels(filename, channel);
  try
  {
    switch (volumeFormat(filename))
    {
    case VolumeFormat::Tiff:
      return readTiff(filename, workingBytesPerVoxel);
    case VolumeFormat::Lsm:
      return readLsm(filename, channel, workingBytesPerVoxel);
    case VolumeFormat::VoxelMatrix:
      return readVoxelMatrix(filename, workingBytesPerVoxel);
    case VolumeFormat::Unknown:
      break;
    }
  }
  catch (const std::bad_alloc&)
  {
    throw BatchError(filename + ": there is not enough memory for the volume");
  }
  throw BatchError(filename + ": the name of an image file ends with .tif, .tiff, .lsm or .vm");
}

void requireVolumeOutput(const std::string& filename, bool overwrite)
{
  const bool isVoxelMatrix = std::filesystem::path(filename).extension() == ".vm"; // as VoxelMatrix::save() has it
  if (!isVoxelMatrix && volumeFormat(filename) != VolumeFormat::Tiff)
    throw BatchError(filename + ": volumes are written to files whose name ends with .vm, .tif or .tiff");
  requireWritable(filename, overwrite);
}

template <class T> void writeVolume(VoxelMatrix<T> volume, const std::string& filename)
{
  if (volumeFormat(filename) != VolumeFormat::Tiff) return volume.save(filename, true);
  if constexpr (std::is_same_v<T, unsigned char>)
  {
    crossVoxelSize(volume);
    volume.saveAsTiff(filename, true);
  }
  else
    throw BatchError(filename + ": TIFF files are written with 8 bits per pixel only, and these voxels are of type " +
                     typeName<T>() + "; write a .vm file or, with the command image, 8-bit grey levels");
}

#define BATCH_INSTANTIATE(T) template void writeVolume(VoxelMatrix<T>, const std::string&);
IMAGE_FOR_EACH_TYPE(BATCH_INSTANTIATE)
