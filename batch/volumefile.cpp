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

/// Refuses a volume for which, with the work on it, the memory is too small, before anything is allocated.
void requireRoom(const std::string& filename, double numVoxels, double voxelSize, const WorkingMemory& beside)
{
  requireMemory(filename, numVoxels * (voxelSize * (1 + beside.shareOfVolume) + beside.bytesPerVoxel));
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

AnyVolume readVoxelMatrix(const std::string& filename, const WorkingMemory& beside)
{
  const VoxelMatrixHeader header = VoxelMatrixFile(filename).getHeader();
  requireRoom(filename, static_cast<double>(header.numVoxels()), static_cast<double>(header.elementSize), beside);
  return withElementType(header, [&](auto zero) { return load<decltype(zero)>(filename); });
}

AnyVolume readTiff(const std::string& filename, const WorkingMemory& beside)
{
  ImageHeader header;
  ImageReader::read(header, filename);
  const bool isWide = header.getDepth() == 16;
  requireRoom(filename, numVoxels(header), isWide ? 2 : 1, beside);
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
    volume[k].convertFromImage(image);
  }
  volume.setVoxelCalibration(calibration);
  return volume;
}

AnyVolume readLsm(const std::string& filename, int channel, const WorkingMemory& beside)
{
  ImageSourceLSMStackPlane source(filename);
  if (channel < 0 || channel >= source.getNumChannels())
    throw BatchError(filename + ": there is no channel " + std::to_string(channel) + "; the file has " +
                     std::to_string(source.getNumChannels()) + ", counted from 0");
  const bool isWide = source.getDepth() == 16;
  requireRoom(filename, double{1} * source.getSize1() * source.getSize2() * source.getNumPlanes(), isWide ? 2 : 1,
              beside);
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

AnyVolume readVolume(const std::string& filename, int channel, const WorkingMemory& beside)
{
  if (channel != 0 && volumeFormat(filename) != VolumeFormat::Lsm)
    throw BatchError(filename + ": only confocal stacks (.lsm) have channels to choose from");
  try
  {
    switch (volumeFormat(filename))
    {
    case VolumeFormat::Tiff:
      return readTiff(filename, beside);
    case VolumeFormat::Lsm:
      return readLsm(filename, channel, beside);
    case VolumeFormat::VoxelMatrix:
      return readVoxelMatrix(filename, beside);
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
  const bool isVoxelMatrix = filename.ends_with(".vm");
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
