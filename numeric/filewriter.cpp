#include "numeric/filewriter.h"

#include "numeric/exception.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace
{
std::string resolved(const std::string& filename)
{
  std::error_code error;
  const std::filesystem::path path = std::filesystem::canonical(filename, error);
  return error ? filename : path.string(); // a new file has no canonical path
}

bool flushToDisk(const std::string& filename)
{
  const int file = open(filename.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  const bool isFlushed = fsync(file) == 0;
  close(file);
  return isFlushed;
}

/// A file that is replaced keeps its permissions.
void copyPermissions(const std::string& from, const std::string& to)
{
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(from, error);
  if (std::filesystem::exists(status)) std::filesystem::permissions(to, status.permissions(), error);
}
} // namespace

FileWriter::FileWriter(const std::string& filename)
  : _filename(filename),
    _target(resolved(filename)),
    _temporary(_target + "." + std::to_string(getpid()) + ".tmp"),
    _stream(_temporary, std::ios::binary | std::ios::trunc)
{
  if (!_stream)
    throw FileWriteError("FileWriter::FileWriter(const std::string&)",
                         std::string("Cannot create the file: ") + std::strerror(errno), _filename);
}

FileWriter::~FileWriter()
{
  if (!_temporary.empty()) std::remove(_temporary.c_str());
}

void FileWriter::commit()
{
  errno = 0;
  _stream.close();
  if (!_stream || !flushToDisk(_temporary))
    throw FileWriteError("void FileWriter::commit()", std::string("Cannot write the file: ") + std::strerror(errno),
                         _filename);
  copyPermissions(_target, _temporary);
  if (std::rename(_temporary.c_str(), _target.c_str()) != 0)
    throw FileWriteError("void FileWriter::commit()", std::string("Cannot replace the file: ") + std::strerror(errno),
                         _filename);
  _temporary.clear();
}
