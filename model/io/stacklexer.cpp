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

StackLexer::StackLexer(Source source, std::size_t pieceSize)
  : _source(std::move(source)), _pieceSize(std::max(pieceSize, minPieceSize))
{
}

void StackLexer::readPiece()
{
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  _text.erase(0, _position); // at most the piece that the statement at hand begins in is moved
  _searched -= _position;
  _position = 0;
  const std::size_t start = _text.size();
  _text.resize(start + _pieceSize);
  const std::size_t count = _source(_text.data() + start, _pieceSize);
  _text.resize(start + count);
  if (_numRead == 0 && _text.starts_with(byteOrderMark)) _text.erase(0, byteOrderMark.size());
  _numRead += count;
  _isComplete = count < _pieceSize;
  dropComments(start);
}

void StackLexer::dropComments(std::size_t start)
{
  std::size_t kept = start; // end of the text that was kept so far
  for (std::size_t next = start; next < _text.size();)
  {
    const std::size_t end = std::min(_text.find(_isInComment ? '\n' : '#', next), _text.size());
    if (!_isInComment)
    {
      std::copy(_text.begin() + static_cast<std::ptrdiff_t>(next), _text.begin() + static_cast<std::ptrdiff_t>(end),
                _text.begin() + static_cast<std::ptrdiff_t>(kept));
      kept += end - next;
    }
    next = end;
    if (end == _text.size()) break;
    if (!_isInComment && kept > 0 && _text[kept - 1] != '\n') --kept; // the character before the "#"
    _isInComment = !_isInComment;                                     // a line's end stays: it is a blank
  }
  _text.resize(kept);
}

std::size_t StackLexer::findEnd()
{
  while (true)
  {
    // A "#" at the beginning of the next piece may still drop the last character.
    const std::size_t certain = _isComplete || _text.empty() ? _text.size() : _text.size() - 1;
    const std::size_t end = std::string_view(_text).substr(0, certain).find(';', _searched);
    if (end != std::string_view::npos) return end;
    _searched = certain;
    if (_isComplete) return _text.size();
    readPiece();
  }
}

std::optional<StackLexer::Statement> StackLexer::readItemString()
{
  const std::size_t end = findEnd();
  if (_position >= _text.size()) return std::nullopt;
  const bool isTerminated = end < _text.size();
  Statement statement = {trimmed(std::string_view(_text).substr(_position, end - _position)), {}, {}, isTerminated};
  _position = _searched = end + (isTerminated ? 1 : 0);
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
