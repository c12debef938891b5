#include "numeric/stringtools.h"

#include <algorithm>

std::string StringTools::toString(int value)
{
  return std::to_string(value);
}

std::string StringTools::toString(int value, int width, char fill)
{
  std::string text = std::to_string(value);
  const int missing = std::max(width - static_cast<int>(text.size()), 0);
  text.insert(fill == '0' && value < 0 ? 1 : 0, missing, fill);
  return text;
}

std::vector<std::string> StringTools::tokenize(const std::string& text, const std::string& delimiters)
{
  std::vector<std::string> tokens;
  std::size_t first = text.find_first_not_of(delimiters);
  while (first != std::string::npos)
  {
    const std::size_t end = text.find_first_of(delimiters, first);
    tokens.push_back(text.substr(first, end - first));
    first = text.find_first_not_of(delimiters, end);
  }
  return tokens;
}

std::string StringTools::removeQuotes(const std::string& text)
{
  const bool isQuoted =
      text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}
