#include "image/voxelmatrixfile.h"

#include "image/filecache.h"
#include "image/filewarnings.h"
#include "image/finiterange.h"
#include "numeric/exception.h"
#include "numeric/progresssubject.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

static_assert(std::endian::native == std::endian::little,
              "voxel-matrix files are read and written as they lie in memory");

namespace
{
constexpr const char* openSignature = "VoxelMatrixFile::VoxelMatrixFile(const std::string&)";
constexpr std::uint64_t format0Length = 12, format1Length = 48; // of the headers

std::size_t sizeOfType(int typeId)
{
  switch (typeId)
  {
  case voxelTypeId<int>():
  case voxelTypeId<unsigned int>():
  case voxelTypeId<float>():
    return sizeof(float);
  case voxelTypeId<double>():
    return sizeof(double);
  case voxelTypeId<long double>():
    return sizeof(long double);
  default:
    return 0; // not told
  }
}

constexpr const char* rangeSignature =
    "std::pair<long double, long double> VoxelMatrixFile::getRange(const ProgressSubject&) const";

template <class T>
std::pair<long double, long double> rangeOf(const VoxelMatrixFile& file, const ProgressSubject& subject)
{
  constexpr std::size_t blockSize = std::size_t{1} << 18; // a millisecond or so
  const std::size_t numVoxels = file.getHeader().numVoxels();
  FiniteRange<T> range;
  std::vector<T> block(std::min(blockSize, numVoxels));
  for (std::size_t first = 0; first < numVoxels; first += block.size())
  {
    const std::size_t count = std::min(block.size(), numVoxels - first);
    subject.throwIfCancelled(rangeSignature);
    file.read(block.data(), first, count);
    range.extend(block.data(), count);
  }
  return {range.low, range.high};
}
} // namespace

VoxelMatrixFile::VoxelMatrixFile(const std::string& filename) : _filename(filename)
{
  // Not blocking: opening a pipe would wait for its writer.
  _descriptor = ::open(filename.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  const auto failOpening = [&filename](const std::string& reason)
  { throw FileReadError(openSignature, "Cannot open file for reading (" + reason + ")", filename); };
  if (_descriptor < 0) failOpening(std::generic_category().message(errno));
  try
  {
    struct stat status = {};
    fstat(_descriptor, &status);
    if (S_ISDIR(status.st_mode)) failOpening(std::generic_category().message(EISDIR));
    if (!S_ISREG(status.st_mode)) failOpening("Not a regular file");
    _length = static_cast<std::uint64_t>(status.st_size);
    readHeader();
    checkLength();
  }
  catch (...)
  {
    ::close(_descriptor);
    throw;
  }
}

VoxelMatrixFile::~VoxelMatrixFile()
{
  ::close(_descriptor);
}

void VoxelMatrixFile::fail(const std::string& what) const
{
  throw FileFormatError(openSignature, what, _filename);
}

void VoxelMatrixFile::readHeader()
{
  std::array<std::int32_t, 3> sizes = {};
  if (_length == 0) fail("The file is empty");
  if (_length < format0Length || pread(_descriptor, sizes.data(), sizeof sizes, 0) != sizeof sizes)
    fail("The file is too short for a voxel matrix");
  if (sizes == std::array<std::int32_t, 3>{}) return readFormat1();
  _header.format = 0;
  _header.size1 = sizes[0];
  _header.size2 = sizes[1];
  _header.size3 = sizes[2];
  _header.dataOffset = format0Length;
}

void VoxelMatrixFile::readFormat1()
{
  struct
  {
    std::int32_t version, typeId, size1, size2, size3, unitScale;
    float voxelHeight, voxelWidth, voxelDepth;
  } fields;
  static_assert(sizeof fields == format1Length - format0Length);
  if (_length < format1Length || pread(_descriptor, &fields, sizeof fields, format0Length) != sizeof fields)
    fail("The file is too short for a voxel matrix");
  if (fields.version != 1) fail("Unknown format version " + std::to_string(fields.version));
  _header.typeId = fields.typeId;
  if (fields.typeId != 0 && sizeOfType(fields.typeId) == 0) fail("Unknown data type " + std::to_string(fields.typeId));
  _header.size1 = fields.size1;
  _header.size2 = fields.size2;
  _header.size3 = fields.size3;
  constexpr int greatestScale = 24; // yotta, yocto
  if (std::abs(std::int64_t{fields.unitScale}) > greatestScale)
    fail("Invalid length unit scale " + std::to_string(fields.unitScale));
  _header.calibration.setLengthUnit(LengthUnit(fields.unitScale));
  _header.calibration.setVoxelSize(knownSizes({fields.voxelHeight, fields.voxelWidth, fields.voxelDepth}));
  _header.dataOffset = format1Length;
}

/// Puts 1, the size of what is not calibrated, in the place of sizes that are no number.
Vector<float> VoxelMatrixFile::knownSizes(Vector<float> sizes) const
{
  for (float& size : sizes)
  {
    if (std::isfinite(size)) continue;
    size = 1;
    holdWarning(_filename, "A voxel size is no finite number; it is taken as 1");
  }
  return sizes;
}

/// Refuses sizes that the file's length does not fit, and finds the element size where the type does not tell it.
void VoxelMatrixFile::checkLength()
{
  if (_header.size1 <= 0 || _header.size2 <= 0 || _header.size3 <= 0) fail("Invalid voxel matrix size");
  const std::uint64_t numBytes = _length - _header.dataOffset;
  const auto planeSize = static_cast<std::uint64_t>(_header.size1) * static_cast<std::uint64_t>(_header.size2);
  const auto numPlanes = static_cast<std::uint64_t>(_header.size3);
  const bool isTooShort = planeSize > numBytes / numPlanes;
  if (isTooShort) fail("The file is too short for its voxel matrix size");
  const std::uint64_t width = numBytes / (planeSize * numPlanes);
  const bool isWhole = numBytes % (planeSize * numPlanes) == 0;
  const std::uint64_t expected = sizeOfType(_header.typeId);
  const bool isKnown = width == 1 || width == 2 || (_header.format == 0 && (width == 4 || width == 8));
  if (expected != 0 && width < expected) fail("The file is too short for its voxel matrix size");
  if (!isWhole || (expected != 0 ? width != expected : !isKnown))
    fail("The length of the file does not fit its voxel matrix size");
  _header.elementSize = width;
}

void VoxelMatrixFile::read(void* voxels, std::size_t first, std::size_t count) const
{
  constexpr std::size_t largestPiece = std::size_t{1} << 30; // the kernel takes no more than 2 GiB at once
  auto* bytes = static_cast<unsigned char*>(voxels);
  std::size_t numLeft = count * _header.elementSize;
  auto offset = static_cast<off_t>(_header.dataOffset + first * _header.elementSize);
  while (numLeft > 0)
  {
    const ssize_t piece = pread(_descriptor, bytes, std::min(numLeft, largestPiece), offset);
    if (piece < 0 && errno == EINTR) continue;
    if (piece <= 0)
      throw FileReadError("void VoxelMatrixFile::read(void*, std::size_t, std::size_t) const", "Cannot read the voxels",
                          _filename);
    bytes += piece;
    numLeft -= static_cast<std::size_t>(piece);
    offset += piece;
  }
}

std::pair<long double, long double> VoxelMatrixFile::getRange(const ProgressSubject& subject) const
{
  static FileCache<std::pair<long double, long double>> known;
  const auto compute = [&]
  { return withElementType(_header, [&](auto zero) { return rangeOf<decltype(zero)>(*this, subject); }); };
  return *known.get(_descriptor, compute, [&subject] { subject.throwIfCancelled(rangeSignature); });
}
