#include "image/filewarnings.h"

#include <iostream>
#include <map>
#include <mutex>

namespace
{
struct Warning
{
  std::string message;
  bool isTold = false;
};

std::mutex mutex;

/// By the files' names; only under the mutex.
std::map<std::string, Warning>& warnings()
{
  static std::map<std::string, Warning> known;
  return known;
}
} // namespace

void holdWarning(const std::string& filename, const std::string& message)
{
  const std::lock_guard lock(mutex);
  warnings()[filename].message = message;
}

void tellWarning(const std::string& filename)
{
  const std::lock_guard lock(mutex);
  const auto found = warnings().find(filename);
  if (found == warnings().end() || found->second.isTold) return;
  found->second.isTold = true;
  std::cerr << "KOVA Image Lib: " + filename + ": " + found->second.message + "\n" << std::flush;
}
