// Stack files: whatever is read must be written and read again to the same bytes.
#include "fuzz/fuzzedfile.h"
#include "image/imagereader.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "tests/support/temporaryfolder.h"

#include <cstdio>
#include <ostream>
#include <string_view>

namespace
{
/// Reads one file of the folder and writes another. \return the bytes written, "" for what is no stack file
std::string copy(const TemporaryFolder& folder, const std::string& from, const std::string& to)
{
  Stack stack;
  StackReader reader;
  reader.read(stack, folder.file(from));
  if (reader.getNumFatalErrors() > 0) std::abort();
  if (!reader.hasReadStack()) return "";
  StackWriter().write(stack, folder.file(to)); // must not fail: names and numbers were checked by the reader
  return contentOf(folder.file(to));
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
  static std::ostream nowhere(nullptr);
  ImageReader::setMagicNumberStream(nowhere);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
  static const TemporaryFolder folder;
  folder.write("in.sdf", std::string(bytes, bytes + size));
  const std::string once = copy(folder, "in.sdf", "once.sdf");
  if (once.empty()) return 0;
  const std::string twice = copy(folder, "once.sdf", "twice.sdf");
  if (once == twice) return 0;
  std::fprintf(stderr, "once:\n%s\ntwice:\n%s\n", once.c_str(), twice.c_str());
  std::abort();
}
