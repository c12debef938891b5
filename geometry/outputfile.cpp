#include "geometry/outputfile.h"

#include "numeric/exception.h"

#include <atomic>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace
{
/// A name beside the target that no other writer of this or another process uses.
std::string temporaryName(const std::string& path)
{
  static std::atomic<unsigned> counter = 0;
  return path + "." + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
}

bool isExisting(const std::string& path)
{
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}
} // namespace

OutputFile::OutputFile(const std::string& path, bool overwrite, const std::string& where)
  : _path(path), _temporaryPath(temporaryName(path)), _where(where)
{
  if (!overwrite && isExisting(path)) fail("file exists");
  _stream.open(_temporaryPath, std::ios::binary | std::ios::trunc);
  if (!_stream) fail("cannot be created");
}

OutputFile::~OutputFile()
{
  if (_temporaryPath.empty()) return;
  _stream.close();
  std::error_code ignored;
  std::filesystem::remove(_temporaryPath, ignored);
}

void OutputFile::commit()
{
  _stream.close();
  if (!_stream) fail("cannot be written");
  std::error_code error;
  std::filesystem::rename(_temporaryPath, _path, error);
  if (error) fail("cannot be written: " + error.message());
  _temporaryPath.clear();
}

void OutputFile::fail(const std::string& reason) const
{
  throw FileWriteError(_where, _path + " : " + reason, _path);
}
