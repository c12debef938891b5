#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>

/// Whether there is something of this name. There is nothing of a name that no file can have.
bool fileExists(const std::string& filename);

/// A name in the folder of a file that nothing has yet, for what is renamed once it is complete. What a killed process
/// leaves under such a name is removed by a later save in that folder.
std::string temporaryNameFor(const std::string& filename);

/// A file written beside its target and renamed over it when complete: a crash, a full disk or an error leaves the old
/// file as it was.
///
/// A symbolic link is followed: its target is written. The permissions of an existing file are kept. Without commit()
/// the destructor removes what was written.
class AtomicFile
{
public:
  /// \throw FileWriteError  the target is no regular file, may not be written, or its folder takes no new file
  explicit AtomicFile(const std::string& filename);
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  ~AtomicFile();

  /// Descriptor of the temporary file, for libraries that write by themselves. It stays ours to close.
  int getDescriptor() const { return _descriptor; }

  /// \throw FileWriteError  the disk is full or fails
  void write(std::string_view bytes);

  enum class Durability
  {
    Rename,     ///< old or new file after a crash of the program
    FlushToDisk ///< old or new file after a crash of the machine; removes what killed processes left beside it
  };

  /// Puts the written file in the target's place. `beforeReplace`, when given, runs once the file is complete beside
  /// the target; what it throws stops the replacement. \throw FileWriteError  the target stays as it was
  void commit(Durability durability = Durability::Rename, const std::function<void()>& beforeReplace = {});

private:
  void checkTarget();
  void createTemporary();
  [[noreturn]] void fail(const char* where, const char* what, int error) const;

  std::string _filename;  // as the caller named it, for errors
  std::string _target;    // links resolved
  std::string _temporary; // empty when there is none to remove
  int _descriptor = -1;
  bool _targetExists = false;
  mode_t _mode = 0;
};
