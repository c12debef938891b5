#pragma once

#include <cstdint>
#include <string>

struct tiff; // libtiff's handle, which it also calls TIFF

/// A TIFF file that is closed on every path; it keeps what libtiff has to say about it.
///
/// libtiff's message becomes part of the error that follows it. Warnings of a file that was read without error go to
/// the error stream as one line when the file is closed for the first time.
class TiffFile
{
public:
  /// Opens a file for reading at one of its planes, 0-based.
  /// \throw FileReadError    it cannot be opened
  /// \throw FileFormatError  it is no TIFF file or has no such plane
  explicit TiffFile(const std::string& filename, int plane = 0);
  /// Writes to an open descriptor, which stays the caller's.
  /// \throw FileWriteError  libtiff cannot write to it
  TiffFile(int descriptor, const std::string& filename);
  TiffFile(const TiffFile&) = delete;
  TiffFile& operator=(const TiffFile&) = delete;
  ~TiffFile();

  tiff* get() const { return _tiff; }
  const std::string& getFilename() const { return _filename; }
  /// Descriptor of a file opened for reading.
  int getDescriptor() const { return _descriptor; }
  /// Length in bytes of a file opened for reading.
  std::uint64_t getLength() const { return _length; }

  /// \throw FileFormatError  always: `what`, then libtiff's reason in brackets when it gave one
  [[noreturn]] void failReading(const std::string& where, const std::string& what);
  /// \throw FileWriteError  always, with the same text
  [[noreturn]] void failWriting(const std::string& where, const std::string& what);

  /// Called by libtiff's handlers.
  void noteError(const std::string& message);
  void noteWarning(const std::string& message);
  /// Called by libtiff to read: sets the place and reads on from there. The header names the chosen plane's directory
  /// as the first one, so that libtiff goes there at once instead of along all planes before it.
  std::uint64_t seek(std::int64_t offset, int origin);
  std::int64_t read(unsigned char* bytes, std::int64_t count);

private:
  void selectPlane(int plane);
  void patchHeader(unsigned char* bytes, std::uint64_t count) const;
  std::string withoutFilename(std::string message) const;
  std::string withReason(const std::string& what);

  std::string _filename;
  tiff* _tiff = nullptr;
  int _descriptor = -1; // for reading
  std::uint64_t _length = 0;
  std::uint64_t _position = 0;
  std::uint64_t _directory = 0; // of the chosen plane; 0: the file's first one
  std::string _error;           // the first one
  std::string _warning;         // the first one
  bool _hasFailed = false;      // the error was told by an exception
};
