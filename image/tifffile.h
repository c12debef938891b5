#pragma once

#include "image/tiffdirectories.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct tiff; // libtiff's handle, which it also calls TIFF

/// Which directories of a TIFF file count as its planes.
enum class TiffPlanes
{
  All,
  WithoutThumbnails ///< unless there is nothing else
};

/// A TIFF file that is closed on every path; it keeps what libtiff has to say about it.
///
/// libtiff's last message becomes part of the error that follows it. When there was none, the last warning is held for
/// tellWarning() as the file is closed.
class TiffFile
{
public:
  /// Opens a file for reading at one of its planes, 0-based. A file of one directory is opened there, since further
  /// planes may follow without directories of their own.
  /// \throw FileReadError    it cannot be opened
  /// \throw FileFormatError  it is no TIFF file or has no such plane
  explicit TiffFile(const std::string& filename, int plane = 0, TiffPlanes planes = TiffPlanes::All);
  /// Writes to an open descriptor, which stays the caller's: a BigTIFF file when numBytes would not fit another.
  /// \throw FileWriteError  libtiff cannot write to it
  TiffFile(int descriptor, const std::string& filename, std::uint64_t numBytes);
  TiffFile(const TiffFile&) = delete;
  TiffFile& operator=(const TiffFile&) = delete;
  ~TiffFile();

  tiff* get() const { return _tiff; }
  const std::string& getFilename() const { return _filename; }
  /// Descriptor of a file opened for reading.
  int getDescriptor() const { return _descriptor; }
  /// Length in bytes of a file opened for reading.
  std::uint64_t getLength() const { return _length; }
  int getPlane() const { return _plane; }
  int getNumDirectories() const { return static_cast<int>(_directories->all.size()); }
  /// The directories that count as planes.
  const std::vector<TiffDirectory>& getPlanes() const
  {
    return _countedPlanes == TiffPlanes::All ? _directories->all : _directories->withoutThumbnails;
  }
  int getNumPlanes() const { return static_cast<int>(getPlanes().size()); }
  /// Goes on to the next plane. \throw FileFormatError  there is none, or its directory cannot be read
  void selectNextPlane();
  /// Bytes at a place of the file, from any thread; false when there are fewer.
  bool readAt(std::uint64_t offset, unsigned char* bytes, std::size_t count) const;

  /// \throw FileFormatError  always: `what`, then libtiff's reason in brackets when it gave one
  [[noreturn]] void failReading(const std::string& where, const std::string& what);
  /// \throw FileWriteError  always, with the same text
  [[noreturn]] void failWriting(const std::string& where, const std::string& what);

  /// To be called when the pixels were read: writes the warning, if there is any, once per file.
  void tellWarning();

  /// Called by libtiff's handlers.
  void noteError(const std::string& message);
  void noteWarning(const std::string& message);
  /// Called by libtiff to read: sets the place and reads on from there. The header names the chosen plane's directory
  /// as the first one, so that libtiff goes there at once instead of along all planes before it.
  std::uint64_t seek(std::int64_t offset, int origin);
  std::int64_t read(unsigned char* bytes, std::int64_t count);

private:
  void findDirectories();
  void forgetError();
  void holdWarning();
  [[noreturn]] void failAtPlane();
  std::size_t readPiece(std::uint64_t offset, unsigned char* bytes, std::size_t count) const;
  void patchHeader(unsigned char* bytes, std::uint64_t count) const;
  std::string withoutFilename(const std::string& message) const;
  std::string withReason(const std::string& what);

  std::string _filename;
  tiff* _tiff = nullptr;
  int _descriptor = -1; // for reading
  std::uint64_t _length = 0;
  std::uint64_t _position = 0;
  std::shared_ptr<const TiffDirectories> _directories; // of a file opened for reading
  TiffPlanes _countedPlanes = TiffPlanes::All;
  int _plane = 0;
  std::uint64_t _firstDirectory = 0; // that libtiff gets to see; 0: the file's
  std::string _error;                // the last one since a directory was read
  std::string _warning;              // the last one
  bool _hasFailed = false;           // the error was told by an exception
};
