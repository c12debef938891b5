#include "batch/batcherror.h"

#include <algorithm>
#include <cctype>
#include <iostream>

namespace
{
/// Whether a text names a file, not as a part of another word.
bool names(const std::string& text, const std::string& filename)
{
  const auto isInWord = [&](std::size_t i)
  { return i < text.size() && std::isalnum(static_cast<unsigned char>(text[i])); };
  for (std::size_t i = text.find(filename); i != std::string::npos; i = text.find(filename, i + 1))
    if (!isInWord(i - 1) && !isInWord(i + filename.size())) return true;
  return false;
}
} // namespace

std::string describe(const Exception& error)
{
  std::string text = error.getWhat();
  const auto* fileError = dynamic_cast<const FileError*>(&error);
  if (fileError != nullptr && !fileError->getFilename().empty() && !names(text, fileError->getFilename()))
    text = fileError->getFilename() + ": " + text;
  std::ranges::replace(text, '\n', ' ');
  return text;
}

void warn(const std::string& line)
{
  std::cerr << "mirelo-batch: " << line << "\n";
}
