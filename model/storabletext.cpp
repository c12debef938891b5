#include "model/storabletext.h"

#include "numeric/exception.h"

namespace
{
struct Replacement
{
  std::string_view plain;
  std::string_view written;
};

constexpr Replacement replacements[] = {{";", "__SC__"}, {"\n", "__NL__"}, {"\"", "__DQ__"}, {"#", "__HA__"}};

std::string replaceAll(const std::string& text, std::string_view from, std::string_view to)
{
  std::size_t found = text.find(from);
  if (found == std::string::npos) return text;
  std::string result;
  std::size_t start = 0;
  for (; found != std::string::npos; found = text.find(from, start))
  {
    result.append(text, start, found - start).append(to);
    start = found + from.size();
  }
  return result.append(text, start);
}
} // namespace

std::string exportText(std::string_view text)
{
  std::string result(text);
  for (const Replacement& replacement : replacements)
    result = replaceAll(result, replacement.plain, replacement.written);
  return result;
}

std::string importText(std::string_view text)
{
  std::string result(text);
  if (text.find("__") == std::string_view::npos) return result;
  for (auto replacement = std::rbegin(replacements); replacement != std::rend(replacements); ++replacement)
    result = replaceAll(result, replacement->written, replacement->plain);
  return result;
}

bool isStorableName(std::string_view name)
{
  constexpr std::size_t greatestLength = 65535; // longer than any path
  if (name.size() > greatestLength) return false;
  return name.find_first_of("\t\n\v\f\r") == std::string_view::npos && importText(exportText(name)) == name;
}

void requireStorableName(std::string_view name, const char* where)
{
  if (isStorableName(name)) return;
  throw ValueError(where, "A name must not hold a tab, a line break or one of __SC__, __NL__, __DQ__, __HA__, or be "
                          "longer than 65535 characters");
}
