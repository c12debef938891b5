#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Cuts the text of a stack file into statements and tokens while it is read piece by piece: only the statement at hand
/// and the rest of its piece are held.
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

  /// Fills a buffer of the given size with the next characters. \return their number, less than the size at the end
  using Source = std::function<std::size_t(char* buffer, std::size_t size)>;

  static constexpr std::size_t defaultPieceSize = std::size_t(1) << 20;
  static constexpr std::size_t minPieceSize = 3; ///< a byte-order mark

  explicit StackLexer(Source source, std::size_t pieceSize = defaultPieceSize);

  /// The next statement, which may be empty; nothing at the end of the text. All of it are views that the next call
  /// ends. What the source throws passes through.
  std::optional<Statement> readItemString();
  /// The tokens of a statement's arguments, at most maxTokens + 1 of them: a token that begins with a double quote
  /// goes on to the next one that ends a token, and loses both. Nothing when that one is missing.
  std::optional<std::vector<std::string_view>> splitItemString(std::string_view arguments);

  static constexpr std::size_t maxTokens = 8; ///< more than any keyword takes

  /// Number of characters of the source that are behind, comments counted as soon as they are read.
  std::size_t getPosition() const { return _numRead - (_text.size() - _position); }

  static bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

private:
  /// Index of the ";" that ends the statement at hand, or of the text's end.
  std::size_t findEnd();
  void readPiece();
  /// Drops the comments of what was read to the given index and behind.
  void dropComments(std::size_t start);
  /// Takes the first token off the text. \return false  a quoted token does not end
  bool takeToken(std::string_view& text, std::string_view& token);
  void blankWhiteSpace(std::string_view piece);

  Source _source;
  std::size_t _pieceSize;
  std::string _text;         // what was read without its comments, from the last statement on
  std::size_t _position = 0; // behind the last statement
  std::size_t _searched = 0; // there is no ";" from the position up to here
  std::size_t _numRead = 0;  // characters of the source
  bool _isInComment = false; // at the end of what was read
  bool _isComplete = false;  // the source is at its end
};
