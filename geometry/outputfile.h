#pragma once

#include "numeric/atomicfile.h"

#include <ostream>
#include <streambuf>
#include <string>

/// A stream into an AtomicFile: what is written takes the target's place on commit().
///
/// Writing to the stream throws FileWriteError when the disk is full or fails.
class OutputFile
{
public:
  /// \param where  signature that the error about an existing file names
  /// \throw FileWriteError  the target exists and `overwrite` is false, or cannot be written
  OutputFile(const std::string& filename, bool overwrite, const std::string& where);

  std::ostream& stream() { return _stream; }
  /// \throw FileWriteError  the target stays as it was
  void commit();
  /// The same for two files of which neither fits what the other one replaces. \throw FileWriteError  both targets stay
  /// as they were or, where the very last step failed, this one does and the other one is removed
  void commitWith(OutputFile& other);

private:
  /// Hands what is written on, in the pieces in which it comes.
  class Buffer : public std::streambuf
  {
  public:
    explicit Buffer(AtomicFile& file) : _file(file) {}

  protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;

  private:
    AtomicFile& _file;
  };

  std::string _filename;
  AtomicFile _file;
  Buffer _buffer;
  std::ostream _stream;
};

/// The error for a target that is not to be overwritten: "<filename> : file exists".
/// \throw FileWriteError  the file exists
void requireAbsent(const std::string& filename, const std::string& where);
