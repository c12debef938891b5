#include "batch/batcherror.h"

#include <algorithm>
#include <iostream>

std::string describe(const Exception& error)
{
  std::string text = error.getWhat();
  const auto* fileError = dynamic_cast<const FileError*>(&error);
  if (fileError != nullptr && !fileError->getFilename().empty() &&
      text.find(fileError->getFilename()) == std::string::npos)
    text = fileError->getFilename() + ": " + text;
  std::ranges::replace(text, '\n', ' ');
  return text;
}

void warn(const std::string& line)
{
  std::cerr << "mirelo-batch: " << line << "\n";
}
