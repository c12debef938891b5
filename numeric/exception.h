#pragma once

#include <iosfwd>
#include <string>
#include <utility>

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

/// An error about the file of the given name.
class FileError : public Exception
{
public:
  explicit FileError(std::string where = "<unknown>", std::string what = "Undocumented file error",
                     std::string filename = "");

  void setFilename(const std::string& filename) { _filename = filename; }
  const std::string& getFilename() const { return _filename; }

  void print(std::ostream& stream) const override;

private:
  std::string _filename;
};

/// The file's content is not what its format asks for.
class FileFormatError : public FileError
{
public:
  explicit FileFormatError(std::string where = "<unknown>", std::string what = "Undocumented file format error",
                           std::string filename = "")
    : FileError(std::move(where), std::move(what), std::move(filename))
  {
  }
};

/// The file cannot be opened or read.
class FileReadError : public FileError
{
public:
  explicit FileReadError(std::string where = "<unknown>", std::string what = "Undocumented file read error",
                         std::string filename = "")
    : FileError(std::move(where), std::move(what), std::move(filename))
  {
  }
};

/// The file cannot be created or written.
class FileWriteError : public FileError
{
public:
  explicit FileWriteError(std::string where = "<unknown>", std::string what = "Undocumented file write error",
                          std::string filename = "")
    : FileError(std::move(where), std::move(what), std::move(filename))
  {
  }
};

/// A computation without a result: a singular matrix, an iteration that does not converge.
class MathError : public Exception
{
public:
  explicit MathError(std::string where = "<unknown>", std::string what = "Undocumented mathematical error")
    : Exception(std::move(where), std::move(what))
  {
  }
};

/// A fault of the program itself.
class ProgramError : public Exception
{
public:
  explicit ProgramError(std::string where = "<unknown>", std::string what = "Undocumented program error")
    : Exception(std::move(where), std::move(what))
  {
  }
};

/// Sizes that do not fit each other or the operation.
class SizeError : public Exception
{
public:
  explicit SizeError(std::string where = "<unknown>", std::string what = "Undocumented size error")
    : Exception(std::move(where), std::move(what))
  {
  }
};

/// An operation that the element type does not have.
class TypeError : public Exception
{
public:
  explicit TypeError(std::string where = "<unknown>", std::string what = "Undocumented type error")
    : Exception(std::move(where), std::move(what))
  {
  }
};

/// An operation called when its conditions do not hold.
class UsageError : public Exception
{
public:
  explicit UsageError(std::string where = "<unknown>", std::string what = "Undocumented usage error")
    : Exception(std::move(where), std::move(what))
  {
  }
};

/// An argument with a value that the operation cannot take.
class ValueError : public Exception
{
public:
  explicit ValueError(std::string where = "<unknown>", std::string what = "Undocumented value error")
    : Exception(std::move(where), std::move(what))
  {
  }
};

/// A value outside its range, such as an index.
class RangeError : public ValueError
{
public:
  explicit RangeError(std::string where = "<unknown>", std::string what = "Undocumented range error")
    : ValueError(std::move(where), std::move(what))
  {
  }
};

/// A name that is unknown or already taken.
class NameError : public Exception
{
public:
  explicit NameError(std::string where = "<unknown>", std::string what = "Undocumented name error")
    : Exception(std::move(where), std::move(what))
  {
  }
};
