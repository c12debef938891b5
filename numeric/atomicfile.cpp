#include "numeric/atomicfile.h"

#include "numeric/exception.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace
{
namespace fs = std::filesystem;

constexpr const char* cannotOpen = "Cannot open file for writing";
constexpr const char* cannotWrite = "Cannot write file";

/// The file that a chain of symbolic links ends at, whether it exists or not.
fs::path followLinks(fs::path path)
{
  constexpr int maxLinks = 40; // as many as the kernel follows
  std::error_code error;
  for (int i = 0; i < maxLinks && fs::is_symlink(fs::symlink_status(path, error)); ++i)
  {
    const fs::path next = fs::read_symlink(path, error);
    if (error) break;
    path = path.parent_path() / next; // an absolute link replaces the whole path
  }
  return path;
}

std::string temporaryName(int process, unsigned number)
{
  return ".mirelo-" + std::to_string(process) + "-" + std::to_string(number) + ".tmp";
}

/// Whether a name is that of a temporary file whose process no longer exists.
bool isLeftBehind(const std::string& name)
{
  int process = 0;
  unsigned number = 0;
  if (std::sscanf(name.c_str(), ".mirelo-%d-%u.tmp", &process, &number) != 2 || process <= 0) return false;
  const bool isOurs = name == temporaryName(process, number);
  return isOurs && kill(process, 0) != 0 && errno == ESRCH;
}

/// Whether nobody can still be writing to a file; a folder may be shared with machines whose processes are not ours.
bool isOld(const fs::directory_entry& entry)
{
  std::error_code error;
  const auto written = entry.last_write_time(error);
  return !error && fs::file_time_type::clock::now() - written > std::chrono::hours(24);
}

/// Removes what processes that were killed while they saved left in a folder.
void removeLeftBehind(const fs::path& folder)
{
  std::error_code error;
  fs::directory_iterator entry(folder.empty() ? "." : folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error))
    if (isLeftBehind(entry->path().filename().string()) && isOld(*entry)) unlink(entry->path().c_str());
}

void flushFolder(const fs::path& folder)
{
  const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return; // a folder that cannot be read can still be written: the rename stands
  fsync(descriptor);
  close(descriptor);
}
} // namespace

bool fileExists(const std::string& filename)
{
  std::error_code impossible;
  return std::filesystem::exists(filename, impossible);
}

std::string temporaryNameFor(const std::string& filename)
{
  static std::atomic<unsigned> counter = 0;
  std::string name;
  do name = (fs::path(filename).parent_path() / temporaryName(getpid(), ++counter)).string();
  while (fileExists(name)); // left by a crashed process that had our number
  return name;
}

AtomicFile::AtomicFile(const std::string& filename) : _filename(filename), _target(followLinks(filename).string())
{
  checkTarget();
  createTemporary();
}

AtomicFile::~AtomicFile()
{
  if (_descriptor >= 0) close(_descriptor);
  if (!_temporary.empty()) unlink(_temporary.c_str());
}

void AtomicFile::checkTarget()
{
  constexpr const char* where = "AtomicFile::AtomicFile(const std::string&)";
  struct stat status = {};
  if (stat(_target.c_str(), &status) != 0)
  {
    if (errno != ENOENT) fail(where, cannotOpen, errno);
    return;
  }
  if (S_ISDIR(status.st_mode)) fail(where, cannotOpen, EISDIR);
  if (!S_ISREG(status.st_mode))
    throw FileWriteError(where, "Cannot open file for writing (Not a regular file)", _filename);
  if (access(_target.c_str(), W_OK) != 0) fail(where, cannotOpen, errno);
  _targetExists = true;
  _mode = status.st_mode & 07777;
}

void AtomicFile::createTemporary()
{
  do
  {
    _temporary = temporaryNameFor(_target);
    _descriptor = open(_temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  } while (_descriptor < 0 && errno == EEXIST);
  if (_descriptor >= 0) return;
  const int error = errno;
  _temporary.clear();
  fail("AtomicFile::AtomicFile(const std::string&)", cannotOpen, error);
}

void AtomicFile::write(std::string_view bytes)
{
  while (!bytes.empty())
  {
    const ssize_t written = ::write(_descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail("void AtomicFile::write(std::string_view)", cannotWrite, errno);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void AtomicFile::commit(Durability durability, const std::function<void()>& beforeReplace)
{
  constexpr const char* where = "void AtomicFile::commit(AtomicFile::Durability, const std::function<void()>&)";
  if (_targetExists && fchmod(_descriptor, _mode) != 0) fail(where, cannotWrite, errno);
  if (durability == Durability::FlushToDisk && fsync(_descriptor) != 0) fail(where, cannotWrite, errno);
  const int closed = close(_descriptor);
  _descriptor = -1;
  if (closed != 0) fail(where, cannotWrite, errno);
  if (beforeReplace) beforeReplace();
  if (std::rename(_temporary.c_str(), _target.c_str()) != 0) fail(where, cannotWrite, errno);
  _temporary.clear();
  if (durability == Durability::Rename) return; // many files may be written so
  removeLeftBehind(fs::path(_target).parent_path());
  flushFolder(fs::path(_target).parent_path());
}

void AtomicFile::fail(const char* where, const char* what, int error) const
{
  throw FileWriteError(where, what + (" (" + std::generic_category().message(error) + ")"), _filename);
}
