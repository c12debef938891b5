#include "image/tifffile.h"

#include "numeric/exception.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <tiffio.h>
#include <unistd.h>

namespace
{
constexpr std::uint64_t greatestBlock = 256 << 20; // that libtiff may take for itself, whatever the file's length
constexpr const char* openSignature = "TiffFile::TiffFile(const std::string&)";

/// One line of text from libtiff's format and arguments.
std::string formatted(const char* format, va_list arguments)
{
  char text[512];
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
} // namespace

TiffFile::TiffFile(const std::string& filename) : _filename(filename), _length(lengthOf(filename))
{
  const int descriptor = ::open(filename.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) failOpening(filename, errno);
  open(descriptor, "rm"); // no memory map: a file that shrinks while it is read must not end the program
  if (_tiff) return;
  ::close(descriptor);
  failReading(openSignature, "Cannot read TIFF file");
}

TiffFile::TiffFile(int descriptor, const std::string& filename) : _filename(filename)
{
  const int duplicate = dup(descriptor); // libtiff closes its descriptor
  open(duplicate, "wl");                 // little-endian everywhere: the same image gives the same bytes
  if (_tiff) return;
  if (duplicate >= 0) ::close(duplicate);
  failWriting("TiffFile::TiffFile(int, const std::string&)", "Cannot open file for writing");
}

TiffFile::~TiffFile()
{
  if (_tiff) TIFFClose(_tiff);
  const std::string& message = _error.empty() ? _warning : _error;
  if (!_hasFailed && !message.empty())
    std::cerr << "KOVA Image Lib: " + _filename + ": " + message + "\n" << std::flush;
}

void TiffFile::open(int descriptor, const char* mode)
{
  const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                 TIFFOpenOptionsFree);
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepError, this);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), keepWarning, this);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(std::max(_length, greatestBlock)));
  _tiff = TIFFFdOpenExt(descriptor, _filename.c_str(), mode, options.get());
}

void TiffFile::noteError(const std::string& message)
{
  if (_error.empty()) _error = message;
}

void TiffFile::noteWarning(const std::string& message)
{
  // Microscopes write tags of their own into every plane; that is no news.
  const bool isPrivateTag = message.find("nknown field with tag") != std::string::npos;
  if (_warning.empty() && !isPrivateTag) _warning = message;
}

std::string TiffFile::withReason(const std::string& what)
{
  const std::string text = _error.empty() ? what : what + " (" + _error + ")";
  _hasFailed = true;
  return text;
}

void TiffFile::failReading(const std::string& where, const std::string& what)
{
  throw FileFormatError(where, withReason(what), _filename);
}

void TiffFile::failWriting(const std::string& where, const std::string& what)
{
  throw FileWriteError(where, withReason(what), _filename);
}
