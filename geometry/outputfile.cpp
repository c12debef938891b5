#include "geometry/outputfile.h"

#include "numeric/exception.h"

#include <filesystem>

namespace
{
const std::string& checkedFilename(const std::string& filename, bool overwrite, const std::string& where)
{
  if (!overwrite) requireAbsent(filename, where);
  return filename;
}
} // namespace

OutputFile::OutputFile(const std::string& filename, bool overwrite, const std::string& where)
  : _filename(checkedFilename(filename, overwrite, where)), _file(_filename), _buffer(_file), _stream(&_buffer)
{
  _stream.exceptions(std::ios::badbit); // lets the file's own errors through
}

void OutputFile::commit()
{
  _stream.flush();
  _file.commit();
}

void OutputFile::commitWith(OutputFile& other)
{
  bool isOtherInPlace = false;
  const auto commitOther = [&]
  {
    other.commit();
    isOtherInPlace = true;
  };
  _stream.flush();
  try
  {
    _file.commit(AtomicFile::Durability::Rename, commitOther);
  }
  catch (const FileWriteError&)
  {
    std::error_code ignored;
    if (isOtherInPlace) std::filesystem::remove(other._filename, ignored);
    throw;
  }
}

OutputFile::Buffer::int_type OutputFile::Buffer::overflow(int_type character)
{
  const char text = traits_type::to_char_type(character);
  if (!traits_type::eq_int_type(character, traits_type::eof())) _file.write(std::string_view(&text, 1));
  return traits_type::not_eof(character);
}

std::streamsize OutputFile::Buffer::xsputn(const char* text, std::streamsize size)
{
  _file.write(std::string_view(text, static_cast<std::size_t>(size)));
  return size;
}

void requireAbsent(const std::string& filename, const std::string& where)
{
  std::error_code ignored;
  if (std::filesystem::exists(filename, ignored)) throw FileWriteError(where, filename + " : file exists", filename);
}
