#include "batch/imageinfo.h"

#include "batch/volumefile.h"
#include "image/filewarnings.h"
#include "image/voxelmatrixfile.h"

#include <sstream>

namespace
{
// Nothing is read but the headers, so that their warnings are told here.

ImageHeader headerOf(const std::string& filename)
{
  ImageHeader header = imageHeader(filename);
  tellWarning(filename);
  return header;
}

VoxelMatrixHeader voxelMatrixHeaderOf(const std::string& filename)
{
  VoxelMatrixHeader header = VoxelMatrixFile(filename).getHeader();
  tellWarning(filename);
  return header;
}

std::string elementType(const VoxelMatrixHeader& header)
{
  return withElementType(header, [](auto zero) { return typeName<decltype(zero)>(); });
}

Json voxelMatrixInfo(const VoxelMatrixHeader& header)
{
  const VoxelCalibration& calibration = header.calibration;
  const bool isCalibrated = header.format != 0; // the bare form tells neither
  return {{"format", header.format},
          {"version", isCalibrated ? Json(header.format) : Json(nullptr)},
          {"type", elementType(header)},
          {"unit", isCalibrated ? Json(calibration.getLengthUnit().name()) : Json(nullptr)},
          {"voxel", isCalibrated
                        ? Json::array({toJson(calibration.getVoxelHeight()), toJson(calibration.getVoxelWidth()),
                                       toJson(calibration.getVoxelDepth())})
                        : Json(nullptr)},
          {"size", {header.size1, header.size2, header.size3}}};
}

std::string voxelMatrixText(const VoxelMatrixHeader& header)
{
  std::ostringstream text;
  text << "Format: voxel matrix, format " << header.format << "\n"
       << "Type: " << elementType(header) << "\n"
       << "Size: " << header.size1 << " rows, " << header.size2 << " columns, " << header.size3 << " planes\n";
  const VoxelCalibration& calibration = header.calibration;
  if (header.format == 0) return text.str();
  text << "Voxel: height " << calibration.getVoxelHeight() << ", width " << calibration.getVoxelWidth() << ", depth "
       << calibration.getVoxelDepth() << "\n"
       << "Length unit: " << calibration.getLengthUnit().name() << "\n";
  return text.str();
}
} // namespace

Json imageInfo(const std::string& filename)
{
  if (volumeFormat(filename) == VolumeFormat::VoxelMatrix) return voxelMatrixInfo(voxelMatrixHeaderOf(filename));
  const ImageHeader header = headerOf(filename);
  const PixelCalibration& calibration = header.getPixelCalibration();
  return {{"width", header.getWidth()},
          {"height", header.getHeight()},
          {"planes", header.getNumPlanes()},
          {"depth", header.getDepth()},
          {"channels", header.getNumChannels()},
          {"pixelWidth", toJson(calibration.getPixelWidth())},
          {"pixelHeight", toJson(calibration.getPixelHeight())},
          {"pixelAspect", toJson(calibration.getAspectRatio())},
          {"voxelSizeZ", toJson(header.getVoxelSizeZ())},
          {"unit", calibration.getLengthUnit().name()}};
}

std::string imageText(const std::string& filename)
{
  if (volumeFormat(filename) == VolumeFormat::VoxelMatrix) return voxelMatrixText(voxelMatrixHeaderOf(filename));
  const ImageHeader header = headerOf(filename);
  const PixelCalibration& calibration = header.getPixelCalibration();
  std::ostringstream text;
  text << "Format: " << (volumeFormat(filename) == VolumeFormat::Lsm ? "LSM" : "TIFF") << "\n"
       << "Size: " << header.getWidth() << " x " << header.getHeight() << "\n"
       << "Planes: " << header.getNumPlanes() << "\n"
       << "Depth: " << header.getDepth() << (header.hasColormap() ? " bits, indexed\n" : " bits\n")
       << "Channels: " << header.getNumChannels() << "\n"
       << "Pixel: " << calibration.getPixelWidth() << " x " << calibration.getPixelHeight() << "\n"
       << "Distance of planes: " << header.getVoxelSizeZ() << "\n"
       << "Length unit: " << calibration.getLengthUnit().name() << "\n";
  return text.str();
}
