#include "image/tifffile.h"

#include "image/filewarnings.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <tiffio.h>
#include <unistd.h>
#include <utility>

namespace
{
constexpr std::uint64_t greatestBlock = 256 << 20; // that libtiff may take for itself, whatever the file's length
constexpr const char* openSignature = "TiffFile::TiffFile(const std::string&, int, TiffPlanes)";

/// One line of text from libtiff's format and arguments.
std::string formatted(const char* format, va_list arguments)
{
  char text[4096 + 512]; // a path and what is said of it
  std::vsnprintf(text, sizeof text, format, arguments);
  std::string message = text;
  std::replace(message.begin(), message.end(), '\n', ' ');
  return message;
}

int keepError(TIFF*, void* file, const char*, const char* format, va_list arguments)
{
  static_cast<TiffFile*>(file)->noteError(formatted(format, arguments));
  return 1; // handled: libtiff prints nothing
}

int keepWarning(TIFF*, void* file, const char*, const char* format, va_list arguments)
{
  static_cast<TiffFile*>(file)->noteWarning(formatted(format, arguments));
  return 1;
}

[[noreturn]] void failOpening(const std::string& filename, int error)
{
  const std::string reason = std::generic_category().message(error);
  throw FileReadError(openSignature, "Cannot open file for reading (" + reason + ")", filename);
}

/// Length of a regular file; checked before opening, since opening a pipe would wait for its writer.
std::uint64_t lengthOf(const std::string& filename)
{
  struct stat status = {};
  if (stat(filename.c_str(), &status) != 0) failOpening(filename, errno);
  if (S_ISDIR(status.st_mode)) failOpening(filename, EISDIR);
  if (!S_ISREG(status.st_mode))
    throw FileReadError(openSignature, "Cannot open file for reading (Not a regular file)", filename);
  if (status.st_size == 0) throw FileFormatError(openSignature, "The file is empty", filename);
  return static_cast<std::uint64_t>(status.st_size);
}

// How libtiff reads through a TiffFile.

tmsize_t readProcedure(thandle_t file, void* bytes, tmsize_t count)
{
  return static_cast<TiffFile*>(file)->read(static_cast<unsigned char*>(bytes), count);
}

tmsize_t refuseToWrite(thandle_t, void*, tmsize_t)
{
  return -1;
}

toff_t seekProcedure(thandle_t file, toff_t offset, int origin)
{
  return static_cast<TiffFile*>(file)->seek(static_cast<std::int64_t>(offset), origin);
}

toff_t sizeProcedure(thandle_t file)
{
  return static_cast<TiffFile*>(file)->getLength();
}

int closeProcedure(thandle_t)
{
  return 0; // the descriptor is the TiffFile's
}

using Options = std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)>;

Options optionsFor(TiffFile& file)
{
  Options options(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepError, &file);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), keepWarning, &file);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(std::max(file.getLength(), greatestBlock)));
  return options;
}
} // namespace

TiffFile::TiffFile(const std::string& filename, int plane, TiffPlanes planes)
  : _filename(filename), _length(lengthOf(filename)), _countedPlanes(planes), _plane(plane)
{
  _descriptor = ::open(filename.c_str(), O_RDONLY | O_CLOEXEC);
  if (_descriptor < 0) failOpening(filename, errno);
  try
  {
    findDirectories();
    // Strips as they are in the file ("c"), through the procedures below ("m").
    _tiff = TIFFClientOpenExt(filename.c_str(), "rmc", this, readProcedure, refuseToWrite, seekProcedure,
                              closeProcedure, sizeProcedure, nullptr, nullptr, optionsFor(*this).get());
    if (!_tiff || getNumPlanes() == 0) failReading(openSignature, "Cannot read TIFF file");
    forgetError();
  }
  catch (...)
  {
    if (_tiff) TIFFClose(_tiff);
    ::close(_descriptor);
    throw;
  }
}

TiffFile::TiffFile(int descriptor, const std::string& filename, std::uint64_t numBytes) : _filename(filename)
{
  constexpr std::uint64_t greatestTiff = 4'000'000'000; // offsets have 32 bits
  const int duplicate = dup(descriptor);                // libtiff closes its descriptor
  // Little-endian everywhere: the same image gives the same bytes.
  const char* const mode = numBytes > greatestTiff ? "wl8" : "wl";
  _tiff = TIFFFdOpenExt(duplicate, filename.c_str(), mode, optionsFor(*this).get());
  if (_tiff) return;
  if (duplicate >= 0) ::close(duplicate);
  failWriting("TiffFile::TiffFile(int, const std::string&, std::uint64_t)", "Cannot open file for writing");
}

TiffFile::~TiffFile()
{
  TIFFClose(_tiff);
  if (_descriptor >= 0) ::close(_descriptor);
  if (!_hasFailed) holdWarning();
}

/// Keeps what libtiff said as a warning, errors that stopped nothing included.
void TiffFile::holdWarning()
{
  forgetError();
  if (!_warning.empty()) ::holdWarning(_filename, std::exchange(_warning, ""));
}

void TiffFile::tellWarning()
{
  holdWarning();
  ::tellWarning(_filename);
}

/// Lets libtiff begin at the chosen plane.
void TiffFile::findDirectories()
{
  _directories = tiffDirectories(_descriptor);
  if (getNumPlanes() == 0) return; // libtiff knows why
  const bool isListed = _plane >= 0 && _plane < getNumPlanes();
  if (!isListed && (_plane < 0 || getNumDirectories() > 1)) failAtPlane();
  _firstDirectory = getPlanes()[isListed ? static_cast<std::size_t>(_plane) : 0].offset;
}

void TiffFile::selectNextPlane()
{
  ++_plane;
  if (getNumDirectories() == 1) return;
  if (_plane >= getNumPlanes()) failAtPlane();
  const std::uint64_t directory = getPlanes()[static_cast<std::size_t>(_plane)].offset;
  while (TIFFCurrentDirOffset(_tiff) != directory)
    if (TIFFReadDirectory(_tiff) != 1) failReading("void TiffFile::selectNextPlane()", "Cannot read TIFF directory");
  forgetError();
}

void TiffFile::failAtPlane()
{
  failReading(openSignature, "There is no plane " + std::to_string(_plane));
}

std::uint64_t TiffFile::seek(std::int64_t offset, int origin)
{
  const std::uint64_t start = origin == SEEK_END ? _length : origin == SEEK_CUR ? _position : 0;
  _position = start + static_cast<std::uint64_t>(offset);
  return _position;
}

std::int64_t TiffFile::read(unsigned char* bytes, std::int64_t count)
{
  const std::size_t numRead = readPiece(_position, bytes, static_cast<std::size_t>(count));
  if (_firstDirectory != 0) patchHeader(bytes, numRead);
  _position += numRead;
  return static_cast<std::int64_t>(numRead);
}

bool TiffFile::readAt(std::uint64_t offset, unsigned char* bytes, std::size_t count) const
{
  return readPiece(offset, bytes, count) == count;
}

/// Number of bytes read, fewer than asked for at the end of the file or of a disk that fails.
std::size_t TiffFile::readPiece(std::uint64_t offset, unsigned char* bytes, std::size_t count) const
{
  std::size_t numRead = 0;
  while (numRead < count)
  {
    const ssize_t piece = pread(_descriptor, bytes + numRead, count - numRead, static_cast<off_t>(offset + numRead));
    if (piece < 0 && errno == EINTR) continue;
    if (piece <= 0) break;
    numRead += static_cast<std::size_t>(piece);
  }
  return numRead;
}

/// Puts the chosen directory's offset into those of the bytes, read at the current place, that hold the first one's:
/// bytes 4 to 7 of the file or, in a BigTIFF file, 8 to 15.
void TiffFile::patchHeader(unsigned char* bytes, std::uint64_t count) const
{
  unsigned char header[4] = {};
  if (_position >= 16 || pread(_descriptor, header, sizeof header, 0) != sizeof header) return;
  const bool isBigEndian = header[0] == 'M';
  const bool isBigTiff = header[isBigEndian ? 3 : 2] == 43;
  const std::uint64_t start = isBigTiff ? 8 : 4, size = start;
  for (std::uint64_t i = 0; i < size; ++i)
  {
    const std::uint64_t shift = 8 * (isBigEndian ? size - 1 - i : i);
    if (start + i >= _position && start + i < _position + count)
      bytes[start + i - _position] = static_cast<unsigned char>(_firstDirectory >> shift);
  }
}

void TiffFile::noteError(const std::string& message)
{
  _error = withoutFilename(message);
}

/// Makes a warning of an error that was none after all: what it was about was read well.
void TiffFile::forgetError()
{
  if (!_error.empty()) _warning = std::exchange(_error, "");
}

void TiffFile::noteWarning(const std::string& message)
{
  // No news: tags of a microscope's own in every plane, and a fourth sample that is not declared.
  const char* const harmless[] = {"nknown field with tag", "ExtraSamples"};
  const bool isHarmless = std::any_of(std::begin(harmless), std::end(harmless),
                                      [&](const char* text) { return message.find(text) != std::string::npos; });
  if (!isHarmless) _warning = withoutFilename(message);
}

/// libtiff begins some messages with the file's name, which is told elsewhere.
std::string TiffFile::withoutFilename(const std::string& message) const
{
  const std::string prefix = _filename + ": ";
  return message.starts_with(prefix) ? message.substr(prefix.size()) : message;
}

std::string TiffFile::withReason(const std::string& what)
{
  _hasFailed = true;
  return _error.empty() ? what : what + " (" + _error + ")";
}

void TiffFile::failReading(const std::string& where, const std::string& what)
{
  throw FileFormatError(where, withReason(what), _filename);
}

void TiffFile::failWriting(const std::string& where, const std::string& what)
{
  throw FileWriteError(where, withReason(what), _filename);
}
