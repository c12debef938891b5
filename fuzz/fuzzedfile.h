#pragma once

#include "numeric/exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

/// The bytes of a fuzzer as a file in memory, for readers that ask for a name. Each has an inode of its own, so that
/// nothing remembered of an earlier one is taken for it.
class FuzzedFile
{
public:
  FuzzedFile(const std::uint8_t* bytes, std::size_t size) : _descriptor(memfd_create("fuzzed", 0))
  {
    if (_descriptor < 0 || write(_descriptor, bytes, size) != static_cast<ssize_t>(size)) std::abort();
  }
  FuzzedFile(const FuzzedFile&) = delete;
  FuzzedFile& operator=(const FuzzedFile&) = delete;
  ~FuzzedFile() { close(_descriptor); }

  std::string getName() const { return "/proc/self/fd/" + std::to_string(_descriptor); }

private:
  int _descriptor;
};

/// What a reader throws is fine as long as it belongs to the family of errors.
template <class Action> void attempt(Action action)
{
  try
  {
    action();
  }
  catch (const Exception&)
  {
  }
}
