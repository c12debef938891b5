#include "numeric/exception.h"

#include <ostream>
#include <utility>

Exception::Exception(std::string where, std::string what) : _where(std::move(where)), _what(std::move(what)) {}

void Exception::addWhere(const std::string& where)
{
  if (_numCalls == 0)
    _calls.clear(); // the text for an unknown trace makes place for the first call
  else
    _calls += ' ';
  ++_numCalls;
  _calls += "[" + std::to_string(_numCalls) + "] " + where;
}

std::string Exception::callStack() const
{
  return "[0] " + _where + (_numCalls > 0 ? " " + _calls : "");
}

void Exception::print(std::ostream& stream) const
{
  stream << "Exception raised:\n"
         << "  What: " << _what << "\n"
         << "  Where: " << _where << "\n"
         << "  Calls: " << callStack() << "\n";
}

FileError::FileError(std::string where, std::string what, std::string filename)
  : Exception(std::move(where), std::move(what)), _filename(std::move(filename))
{
}

void FileError::print(std::ostream& stream) const
{
  Exception::print(stream);
  stream << "  Filename: " << _filename << "\n";
}

std::ostream& operator<<(std::ostream& stream, const Exception& exception)
{
  exception.print(stream);
  return stream;
}
