#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Cuts the text of a stack file into statements and tokens, all of them views into the text.
///
/// A line that begins with "#" is dropped; elsewhere a "#" drops the rest of its line and the character before it.
/// A statement ends with ";", a line's end is a blank, and so is every other white space.
class StackLexer
{
public:
  struct Statement
  {
    std::string_view text;      ///< all of it, without white space around and without ";"
    std::string_view keyword;   ///< its first token
    std::string_view arguments; ///< what follows
    bool isTerminated;          ///< false for what stands behind the last ";"
  };

  explicit StackLexer(std::string text);

  /// The next statement, which may be empty; nothing at the end of the text.
  std::optional<Statement> readItemString();
  /// The tokens of a statement's arguments, at most maxTokens + 1 of them: a token that begins with a double quote
  /// goes on to the next one that ends a token, and loses both. Nothing when that one is missing.
  std::optional<std::vector<std::string_view>> splitItemString(std::string_view arguments);

  static constexpr std::size_t maxTokens = 8; ///< more than any keyword takes

  /// Number of characters behind and of all characters.
  std::size_t getPosition() const { return _position; }
  std::size_t getSize() const { return _text.size(); }

  static bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

private:
  void dropComments();
  /// Takes the first token off the text. \return false  a quoted token does not end
  bool takeToken(std::string_view& text, std::string_view& token);
  void blankWhiteSpace(std::string_view piece);

  std::string _text;
  std::size_t _position = 0;
};
