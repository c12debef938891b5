#pragma once

#include <fstream>
#include <string>

/// Writes a file beside its target and renames it over the target when it is complete, so that a crash, a full disk or
/// an error leaves the old file as it was.
class FileWriter
{
public:
  /// \throw FileWriteError  the file cannot be created
  explicit FileWriter(const std::string& filename);
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;
  /// Without commit(), removes what was written.
  ~FileWriter();

  std::ostream& stream() { return _stream; }

  /// Flushes everything to the disk and puts the file in its place.
  /// \throw FileWriteError  something could not be written
  void commit();

private:
  std::string _filename;  // as the caller named it
  std::string _target;    // the file itself when the name is a symbolic link
  std::string _temporary; // beside the target; empty once renamed
  std::ofstream _stream;
};
