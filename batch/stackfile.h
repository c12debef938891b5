#pragma once

#include <memory>
#include <string>
#include <vector>

class Model;
class Stack;

/// A stack file as it was read, with what the reader logged.
struct StackFile
{
  std::string filename;
  std::unique_ptr<Stack> stack;
  std::vector<std::string> log;
  float version = 0;
  bool isFatal = false;
  bool isStack = false; // a "STACK" statement was read
};

StackFile readStackFile(const std::string& filename);

/// Reads a stack that is to be worked on; what the reader logged is printed on the error stream.
/// \throw BatchError  the file cannot be read or is no stack file
StackFile requireStackFile(const std::string& filename);

/// The models of the given names in stack order, all models when none is named.
/// \throw BatchError  the stack has no model of a name
std::vector<const Model*> selectModels(const StackFile& file, const std::vector<std::string>& names);

/// \throw BatchError  the file exists and must not be overwritten
void requireNew(const std::string& filename, bool overwrite);

/// The same for a file whose folder will not be made. \throw BatchError  the folder is missing, too
void requireWritable(const std::string& filename, bool overwrite);
