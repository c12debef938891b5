#include "batch/stackfile.h"

#include "batch/batcherror.h"
#include "batch/terminalprogress.h"
#include "model/io/stackreader.h"
#include "model/model.h"
#include "model/stack.h"
#include "numeric/atomicfile.h"

#include <algorithm>
#include <filesystem>

StackFile readStackFile(const std::string& filename)
{
  StackFile file;
  file.filename = filename;
  file.stack = std::make_unique<Stack>();
  StackReader reader;
  TerminalProgress progress;
  reader.addObserver(progress);
  reader.read(*file.stack, filename);
  file.log = reader.getLog();
  file.version = reader.getFileFormatVersion();
  file.isFatal = reader.getNumFatalErrors() > 0;
  file.isStack = reader.hasReadStack();
  return file;
}

StackFile requireStackFile(const std::string& filename)
{
  StackFile file = readStackFile(filename);
  if (file.isFatal) throw BatchError(file.log.back());
  if (!file.isStack) throw BatchError(filename + ": not a stack file (no STACK statement was read)");
  for (const std::string& line : file.log) warn(filename + ": " + line);
  return file;
}

std::vector<const Model*> selectModels(const StackFile& file, const std::vector<std::string>& names)
{
  const Stack& stack = *file.stack;
  for (const std::string& name : names)
  {
    if (stack.findModel(name) < 0) throw BatchError(file.filename + ": the stack has no model named " + name);
  }
  std::vector<const Model*> selected;
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    const Model* model = stack.getModel(i);
    const bool isNamed = std::ranges::find(names, model->getName()) != names.end();
    if (names.empty() || isNamed) selected.push_back(model);
  }
  return selected;
}

void requireNew(const std::string& filename, bool overwrite)
{
  if (!overwrite && fileExists(filename)) throw BatchError(filename + ": file exists (--overwrite replaces it)");
}

void requireWritable(const std::string& filename, bool overwrite)
{
  const std::filesystem::path folder = std::filesystem::path(filename).parent_path();
  std::error_code unreadable;
  if (!folder.empty() && !std::filesystem::is_directory(folder, unreadable))
    throw BatchError(filename + ": there is no folder " + folder.string());
  if (std::filesystem::is_directory(filename, unreadable)) throw BatchError(filename + ": is a folder");
  requireNew(filename, overwrite);
}
