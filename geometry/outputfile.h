#pragma once

#include <fstream>
#include <string>

/// A file that is written beside its target and renamed over it when complete.
///
/// A crash, a full disk or an error leaves the target as it was.
class OutputFile
{
public:
  /// Creates the temporary file. \param where  signature that errors name
  /// \throw FileWriteError  the target exists and `overwrite` is false, or the file cannot be created
  OutputFile(const std::string& path, bool overwrite, const std::string& where);
  /// Removes the temporary file unless it was committed.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& stream() { return _stream; }
  /// Closes the file and gives it the target's name. \throw FileWriteError  not everything could be written
  void commit();

private:
  [[noreturn]] void fail(const std::string& reason) const;

  std::string _path;
  std::string _temporaryPath;
  std::string _where;
  std::ofstream _stream;
};
