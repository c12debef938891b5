#include "batch/commands.h"
#include "batch/stackfile.h"
#include "batch/volumefile.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagewriter.h"
#include "image/voxelmatrixplanes.h"
#include "numeric/progresssubject.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace
{
struct Arguments
{
  std::string in;
  std::string out;
  int channel = 0;
  bool grey8 = false;
  bool overwrite = false;
};

VoxelMatrix<unsigned char> to8Bits(VoxelMatrix<unsigned char>& volume)
{
  return std::move(volume);
}

/// Levels below 256 stay; others are scaled to the largest of the volume, so that planes remain comparable.
VoxelMatrix<unsigned char> to8Bits(const VoxelMatrix<unsigned short>& volume)
{
  const std::uint32_t largest = volume.max();
  VoxelMatrix<unsigned char> levels(volume.getSize1(), volume.getSize2(), volume.getSize3());
  const auto level = [largest](std::uint32_t x)
  { return static_cast<unsigned char>(largest < 256 ? x : (x * 510 + largest) / (2 * largest)); };
  std::transform(volume.data(), volume.data() + volume.getNumVoxels(), levels.data(), level);
  return levels;
}

/// A linear map of the range of the volume's finite voxels.
template <class T> VoxelMatrix<unsigned char> to8Bits(const VoxelMatrix<T>& volume)
{
  const auto [low, high] = finiteRange(volume, ProgressSubject());
  VoxelMatrix<unsigned char> levels(volume.getSize1(), volume.getSize2(), volume.getSize3());
  Image image;
  for (int k = 0; k < volume.getSize3(); ++k)
  {
    volume[k].convertToImage(image, low, high);
    std::memcpy(levels[k].data(), image.getData(), image.dataLength());
  }
  return levels;
}

template <class T> void convertVolume(VoxelMatrix<T>& volume, const Arguments& arguments)
{
  if (!arguments.grey8) return writeVolume(std::move(volume), arguments.out);
  const VoxelCalibration calibration = volume.getVoxelCalibration();
  VoxelMatrix<unsigned char> levels = to8Bits(volume);
  levels.setVoxelCalibration(calibration);
  writeVolume(std::move(levels), arguments.out);
}

/// One page to a TIFF file, colours included.
void convertImage(const Arguments& arguments)
{
  Image image;
  ImageReader::read(image, arguments.in);
  if (arguments.grey8) image.make8bitsGrayscale();
  if (image.getDepth() == 16)
    throw BatchError(arguments.in + ": 16-bit levels cannot be written as TIFF; write a .vm file or use --grey8");
  ImageWriter::write(image, arguments.out, arguments.overwrite);
}

bool hasColors(const ImageHeader& header)
{
  return header.getDepth() > 16 || (header.hasColormap() && !header.getColormap().isGrayscale());
}

[[noreturn]] void refuseColors(const std::string& filename)
{
  Image image;
  ImageReader::read(image, filename); // what cannot be read at all is refused as such
  throw BatchError(filename + ": colours can only be kept in a TIFF file of one page; --grey8 takes grey levels");
}

ExitStatus convert(const Arguments& arguments)
{
  requireVolumeOutput(arguments.out, arguments.overwrite);
  requireChannels(arguments.in, arguments.channel);
  if (volumeFormat(arguments.in) == VolumeFormat::Tiff)
  {
    const ImageHeader header = imageHeader(arguments.in);
    const bool toTiff = volumeFormat(arguments.out) == VolumeFormat::Tiff;
    if (toTiff && header.getNumPlanes() == 1) return convertImage(arguments), Done;
    if (hasColors(header) && !arguments.grey8) refuseColors(arguments.in);
  }
  const double bytesOfGreyLevels = arguments.grey8 ? sizeof(unsigned char) : 0;
  AnyVolume volume = readVolume(arguments.in, arguments.channel, bytesOfGreyLevels);
  std::visit([&](auto& matrix) { convertVolume(matrix, arguments); }, volume);
  return Done;
}
} // namespace

void addImageCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand("image", "Read an image file and write it as TIFF or as voxel matrix (.vm)");
  command->add_option("in", arguments->in, "image file to read: .tif, .tiff, .lsm or .vm")->required();
  command->add_option("--out", arguments->out, "image file to write: .tif, .tiff or .vm")->required();
  command->add_option("--channel", arguments->channel, "channel of a confocal stack, counted from 0")
      ->capture_default_str();
  command->add_flag(
      "--grey8", arguments->grey8,
      "write 8-bit grey levels: the mean of colours, 16-bit levels and other numbers scaled to the volume's range");
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return convert(*arguments); }; });
}
