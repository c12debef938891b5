#pragma once

#include <iosfwd>
#include <string>

/// Root of the error family of every Mirelo library.
///
/// The where-text is the full signature of the throwing function, the what-text the message that users see.
/// A layer that rethrows adds its own signature with addWhere() and continues with a bare `throw;`.
class Exception
{
public:
  explicit Exception(std::string where = "<unknown>", std::string what = "Undocumented error");
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = default;
  virtual ~Exception() = default;

  void setWhere(const std::string& where) { _where = where; }
  void setWhat(const std::string& what) { _what = what; }
  const std::string& getWhere() const { return _where; }
  const std::string& getWhat() const { return _what; }

  /// Appends "[n] " and the signature of a function that the error passes through, n counting from 1.
  void addWhere(const std::string& where);
  void addCall(const std::string& where) { addWhere(where); }
  int getNumCalls() const { return _numCalls; }

  /// "[0] ", the first where-text, then the recorded calls.
  std::string callStack() const;

  virtual void print(std::ostream& stream) const;

private:
  std::string _where;
  std::string _what;
  std::string _calls = "<unknown>";
  int _numCalls = 0;
};

std::ostream& operator<<(std::ostream& stream, const Exception& exception);
