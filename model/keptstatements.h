#pragma once

#include <string>
#include <vector>

/// Statements of a stack file that say something this program does not interpret: they stay with the object they
/// were read for and are written back word for word.
class KeptStatements
{
public:
  const std::vector<std::string>& getKeptStatements() const { return _statements; }
  /// Without the closing ";".
  void keepStatement(std::string statement) { _statements.push_back(std::move(statement)); }
  void clearKeptStatements() { _statements.clear(); }

private:
  std::vector<std::string> _statements;
};
