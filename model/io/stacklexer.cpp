#include "model/io/stacklexer.h"

#include <algorithm>
#include <utility>

namespace
{
std::string_view trimmedFront(std::string_view text)
{
  const auto first = std::find_if_not(text.begin(), text.end(), StackLexer::isBlank);
  return text.substr(static_cast<std::size_t>(first - text.begin()));
}

std::string_view trimmed(std::string_view text)
{
  while (!text.empty() && StackLexer::isBlank(text.back())) text.remove_suffix(1);
  return trimmedFront(text);
}

/// Length of the token that a text begins with, when it is not quoted.
std::size_t plainLength(std::string_view text)
{
  return static_cast<std::size_t>(std::find_if(text.begin(), text.end(), StackLexer::isBlank) - text.begin());
}

/// Index of the quote that ends the quoted token that a text begins with: the first one before white space or the end.
std::size_t closingQuote(std::string_view text)
{
  std::size_t quote = text.find('"', 1);
  while (quote != std::string_view::npos && quote + 1 < text.size() && !StackLexer::isBlank(text[quote + 1]))
    quote = text.find('"', quote + 1);
  return quote;
}
} // namespace

StackLexer::StackLexer(std::string text) : _text(std::move(text))
{
  if (_text.starts_with("\xEF\xBB\xBF")) _position = 3; // byte-order mark
  dropComments();
}

void StackLexer::dropComments()
{
  std::size_t comment = _text.find('#', _position);
  std::size_t kept = _position; // end of the text that was kept so far
  std::size_t next = _position; // first character not looked at yet
  for (; comment != std::string::npos; comment = _text.find('#', next))
  {
    const std::size_t lineEnd = std::min(_text.find('\n', comment), _text.size());
    const bool isLineStart = comment == _position || _text[comment - 1] == '\n';
    const std::size_t end = isLineStart || comment == next ? comment : comment - 1;
    kept = static_cast<std::size_t>(std::copy(_text.begin() + static_cast<std::ptrdiff_t>(next),
                                              _text.begin() + static_cast<std::ptrdiff_t>(end),
                                              _text.begin() + static_cast<std::ptrdiff_t>(kept)) -
                                    _text.begin());
    next = lineEnd; // the line's end stays: it is a blank
  }
  _text.erase(kept, next - kept);
}

std::optional<StackLexer::Statement> StackLexer::readItemString()
{
  if (_position >= _text.size()) return std::nullopt;
  const std::size_t end = _text.find(';', _position);
  const bool isTerminated = end != std::string::npos;
  const std::size_t length = (isTerminated ? end : _text.size()) - _position;
  Statement statement = {trimmed(std::string_view(_text).substr(_position, length)), {}, {}, isTerminated};
  _position += length + (isTerminated ? 1 : 0);
  if (statement.text.empty()) return statement;
  statement.arguments = statement.text;
  if (!takeToken(statement.arguments, statement.keyword)) std::swap(statement.keyword, statement.arguments);
  statement.arguments = trimmedFront(statement.arguments);
  return statement;
}

std::optional<std::vector<std::string_view>> StackLexer::splitItemString(std::string_view arguments)
{
  std::vector<std::string_view> tokens;
  for (std::string_view rest = arguments; !rest.empty() && tokens.size() <= maxTokens; rest = trimmedFront(rest))
    if (!takeToken(rest, tokens.emplace_back())) return std::nullopt;
  return tokens;
}

bool StackLexer::takeToken(std::string_view& text, std::string_view& token)
{
  if (text.front() != '"')
  {
    token = text.substr(0, plainLength(text));
    text.remove_prefix(token.size());
    return true;
  }
  const std::size_t quote = closingQuote(text);
  if (quote == std::string_view::npos) return false;
  token = text.substr(1, quote - 1);
  text.remove_prefix(quote + 1);
  blankWhiteSpace(token);
  return true;
}

void StackLexer::blankWhiteSpace(std::string_view piece)
{
  const auto first = _text.begin() + (piece.data() - _text.data());
  std::replace_if(first, first + static_cast<std::ptrdiff_t>(piece.size()), isBlank, ' ');
}
