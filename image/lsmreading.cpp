#include "image/lsmreading.h"

#include "image/filecache.h"
#include "image/filewarnings.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/parallelloop.h"
#include "image/tiffpixels.h"
#include "image/tiffreading.h"
#include "image/tifftags.h"

#include <cmath>
#include <cstring>
#include <ostream>
#include <vector>

namespace
{
constexpr const char* headerSignature = "void LSMReader::readTiffHeader(ImageHeader&, TIFF*)";
constexpr const char* pixelsSignature = "void LSMReader::readLSMPixels(Image&, TIFF*, int)";

/// The private block of the first directory.
struct LSMInformation
{
  std::int32_t magicNumber = 0;
  std::int32_t dimensions[3] = {}; // x, y, z
  std::int32_t numChannels = 0;
  double voxelSizes[3] = {}; // x, y, z in metres
};

template <class T> T numberAt(const unsigned char* block, std::size_t offset)
{
  T number;
  std::memcpy(&number, block + offset, sizeof number);
  return number;
}

/// False when there is no block or none of this kind.
bool readInformation(LSMInformation& information, const TiffFile& file)
{
  constexpr std::uint32_t tag = 34412, minLength = 64;
  std::uint32_t length = 0;
  const unsigned char* block = nullptr;
  const TIFFField* const field = TIFFFindField(file.get(), tag, TIFF_ANY);
  if (!field || TIFFFieldDataType(field) != TIFF_BYTE || TIFFFieldReadCount(field) != TIFF_VARIABLE2) return false;
  if (TIFFGetField(file.get(), tag, &length, &block) != 1 || length < minLength || !block) return false;
  information.magicNumber = numberAt<std::int32_t>(block, 0);
  for (std::size_t i = 0; i < 3; ++i)
  {
    information.dimensions[i] = numberAt<std::int32_t>(block, 8 + 4 * i);
    information.voxelSizes[i] = numberAt<double>(block, 40 + 8 * i);
  }
  information.numChannels = numberAt<std::int32_t>(block, 20);
  return information.magicNumber == 0x0300494C || information.magicNumber == 0x0400494C;
}

LSMInformation requireInformation(TiffFile& file)
{
  LSMInformation information;
  if (!readInformation(information, file)) file.failReading(headerSignature, "This is not an LSM file");
  return information;
}

void writeMagicNumber(const LSMInformation& information)
{
  ImageReader::getMagicNumberStream() << "S32MagicNumber :" + std::to_string(information.magicNumber) + "\n"
                                      << std::flush;
}

/// The same once per file until it changes: all planes of a volume are images of one file.
void writeMagicNumberOnce(const LSMInformation& information, const TiffFile& file)
{
  static FileCache<LSMInformation> written;
  const auto write = [&]
  {
    writeMagicNumber(information);
    return information;
  };
  written.get(file.getDescriptor(), write);
}

/// A length in micrometres; 1 for one that cannot be.
float micrometres(double metres)
{
  const auto length = static_cast<float>(1e6 * metres);
  return std::isfinite(length) && length > 0 ? length : 1;
}

int checkBits(TiffFile& file)
{
  const auto bits = readTagOrDefault<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE);
  if (bits != 8 && bits != 16)
    file.failReading(headerSignature, "Cannot read TIFF with " + std::to_string(bits) + " bits per sample");
  return bits;
}

void setPixelSize(ImageHeader& header, float width, float height)
{
  PixelCalibration calibration;
  calibration.clearFlags();
  calibration.setPixelWidth(width);
  calibration.setPixelHeight(height);
  calibration.compute();
  calibration.setLengthUnit(LengthUnit(-6));
  header.setPixelCalibration(calibration);
}

/// What readLSMHeader() says.
void fillHeader(ImageHeader& header, const LSMInformation& information, TiffFile& file)
{
  const auto& [x, y, z] = information.dimensions;
  if (x <= 0 || y <= 0) file.failReading(headerSignature, "Invalid image size");
  header = ImageHeader();
  header.setFormat(ImageFormat::Tiff);
  header.setHeight(x); // crossed, as all of this header
  header.setWidth(y);
  header.setDepth(checkBits(file));
  header.setNumPlanes(file.getNumDirectories());
  header.setNumChannels(information.numChannels);
  header.setNewSubfileType(readTag<std::uint32_t>(file, TIFFTAG_SUBFILETYPE, 0));
  header.setVoxelSizeX(micrometres(information.voxelSizes[0]));
  header.setVoxelSizeY(micrometres(information.voxelSizes[1]));
  if (z > 1 && file.getNumDirectories() > 1) header.setVoxelSizeZ(micrometres(information.voxelSizes[2]));
  setPixelSize(header, header.getVoxelSizeY(), header.getVoxelSizeX());
  readLSMColormap(header, file);
}

/// Turns the crossed header into that of the current directory's raster.
void uncross(ImageHeader& header, TiffFile& file)
{
  readTiffSize(header, file, headerSignature);
  header.setDepth(checkBits(file));
  header.setNumChannels(readTagOrDefault<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL));
  header.setNumPlanes(file.getNumPlanes());
  header.setNewSubfileType(readTag<std::uint32_t>(file, TIFFTAG_SUBFILETYPE, 0));
  setPixelSize(header, header.getVoxelSizeX(), header.getVoxelSizeY());
  header.deleteColormap();
  readLSMColormap(header, file);
  checkTiffLength(double{1} * header.getWidth() * header.getHeight() * header.getDepth() / 8, file, headerSignature);
}

/// Fills the image with one sample of every pixel.
void takeSample(Image& image, const std::vector<unsigned char>& pixels, std::size_t numSamples, std::size_t sample,
                ProgressSubject& subject)
{
  const auto sampleSize = static_cast<std::size_t>(image.bytesPerPixel());
  const auto takeLine = [&](long i, long)
  {
    unsigned char* const line = image.getLine(static_cast<int>(i));
    const unsigned char* from =
        pixels.data() + (static_cast<std::size_t>(i) * image.bytesPerLine() * numSamples + sample * sampleSize);
    for (std::size_t j = 0; j < image.bytesPerLine(); j += sampleSize, from += numSamples * sampleSize)
      std::memcpy(line + j, from, sampleSize);
  };
  const ProgressStep step(subject, "Reading the pixels", image.getHeight());
  forEachRange(subject, image.getHeight(), 1, takeLine);
  subject.throwIfCancelled(pixelsSignature);
}

/// An LSM file open at the plane of an image.
class LSMImageFile
{
public:
  LSMImageFile(const std::string& filename, int index)
    : _first(filename, 0, TiffPlanes::WithoutThumbnails),
      _file(filename, index < 0 ? index : index % _first.getNumPlanes(), TiffPlanes::WithoutThumbnails)
  {
    const LSMInformation information = requireInformation(_first);
    writeMagicNumberOnce(information, _first);
    fillHeader(_header, information, _first);
    uncross(_header, _file);
    _channel = index / _first.getNumPlanes();
    if (_channel >= _header.getNumChannels())
      _file.failReading(headerSignature, "There is no image " + std::to_string(index));
  }

  const ImageHeader& getHeader() const { return _header; }
  void readImage(Image& image, ProgressSubject& subject)
  {
    initImage(image, _header, _file);
    readLSMPixels(image, _file, _channel, subject);
  }

private:
  TiffFile _first; // has the private block
  TiffFile _file;
  ImageHeader _header;
  int _channel = 0;
};
} // namespace

bool isLSM(const TiffFile& file)
{
  LSMInformation information;
  return readInformation(information, file);
}

void readLSMHeader(ImageHeader& header, TiffFile& file)
{
  const LSMInformation information = requireInformation(file);
  writeMagicNumber(information);
  fillHeader(header, information, file);
}

void readLSMColormap(ImageHeader& header, TiffFile& file)
{
  const bool isIndexed =
      header.getDepth() == 8 && readTagOrDefault<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL) == 1 &&
      readTag<std::uint16_t>(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) == PHOTOMETRIC_PALETTE;
  if (isIndexed) readTiffColormap(header, file);
}

void readLSMPixels(Image& image, TiffFile& file, int channel, ProgressSubject& subject)
{
  const auto sample = static_cast<std::uint16_t>(channel);
  const auto numSamples = readTagOrDefault<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL);
  if (channel < 0 || channel >= numSamples)
    file.failReading(pixelsSignature, "There is no channel " + std::to_string(channel));
  TiffRaster raster{image.getWidth(), image.getHeight(), static_cast<std::size_t>(image.bytesPerPixel())};
  const ProgressStep step(subject, "Reading the image", 3); // pixels, sample, levels
  if (numSamples == 1 || readTagOrDefault<std::uint16_t>(file, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE)
  {
    raster.sample = numSamples == 1 ? std::uint16_t{0} : sample;
    readTiffRaster(image.getData(), raster, file, pixelsSignature, subject);
  }
  else
  {
    raster.bytesPerPixel *= numSamples;
    checkTiffLength(static_cast<double>(raster.dataLength()), file, pixelsSignature);
    std::vector<unsigned char> pixels(raster.dataLength());
    readTiffRaster(pixels.data(), raster, file, pixelsSignature, subject);
    takeSample(image, pixels, numSamples, sample, subject);
  }
  turnMinIsWhite(image.getData(), image.dataLength(), file, subject);
}

void readLSMImageHeader(ImageHeader& header, const std::string& filename, int index)
{
  header = LSMImageFile(filename, index).getHeader();
}

void readLSMImage(Image& image, const std::string& filename, int index, ProgressSubject& subject)
{
  Image fresh;
  LSMImageFile(filename, index).readImage(fresh, subject);
  image.swap(fresh);
  tellWarning(filename);
}
