#include "batch/outputfolder.h"

#include "batch/batcherror.h"

namespace fs = std::filesystem;

OutputFolder::OutputFolder(const std::string& name)
{
  fs::path folder = fs::absolute(name).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();
  for (; !fs::exists(folder) && folder.has_relative_path(); folder = folder.parent_path()) _made.push_back(folder);
  std::error_code error;
  fs::create_directories(name, error);
  if (error) throw BatchError(name + ": cannot create the folder: " + error.message());
}

OutputFolder::~OutputFolder()
{
  std::error_code notEmpty; // what was written stays
  for (const fs::path& folder : _made) fs::remove(folder, notEmpty);
}
