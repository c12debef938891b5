#include "model/io/stacklexer.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <stdexcept>
#include <utility>

namespace
{
/// A text and whether a ";" ended it.
using Piece = std::pair<std::string, bool>;

StackLexer::Source sourceOf(std::string text, int& numReads)
{
  return [text, &numReads, position = std::size_t(0)](char* buffer, std::size_t size) mutable
  {
    ++numReads;
    const std::size_t count = text.copy(buffer, size, position);
    position += count;
    return count;
  };
}

std::vector<Piece> statementsOf(const std::string& text, std::size_t pieceSize)
{
  int numReads = 0;
  StackLexer lexer(sourceOf(text, numReads), pieceSize);
  std::vector<Piece> statements;
  while (const auto statement = lexer.readItemString())
  {
    EXPECT_LE(lexer.getPosition(), text.size());
    statements.emplace_back(statement->text, statement->isTerminated);
  }
  EXPECT_EQ(lexer.getPosition(), text.size());
  return statements;
}

std::string withoutComment(const std::string& line)
{
  const std::size_t hash = line.find('#');
  return hash == std::string::npos ? line : line.substr(0, hash == 0 ? 0 : hash - 1);
}

/// The whole text, line by line and then statement by statement.
std::vector<Piece> slowStatementsOf(std::string text)
{
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  std::string plain;
  for (std::size_t start = 0, end = 0; start <= text.size(); start = end + 1)
  {
    end = std::min(text.find('\n', start), text.size());
    plain += withoutComment(text.substr(start, end - start)) + (end < text.size() ? "\n" : "");
  }
  std::vector<Piece> statements;
  for (std::size_t start = 0, end = 0; start < plain.size(); start = end + 1)
  {
    end = std::min(plain.find(';', start), plain.size());
    const std::string statement = plain.substr(start, end - start);
    const std::size_t first = std::min(statement.find_first_not_of(" \n\r\t"), statement.size());
    const std::size_t last = statement.find_last_not_of(" \n\r\t");
    statements.emplace_back(statement.substr(first, last - first + 1), end < plain.size());
  }
  return statements;
}
} // namespace

TEST(StackLexer, CutsATextTheSameWhereverItsPiecesEnd)
{
  constexpr std::string_view characters = "abc;;##\n\n\r\t ";
  std::mt19937 random(3);
  for (int round = 0; round < 3000; ++round)
  {
    std::string text = random() % 4 == 0 ? "\xEF\xBB\xBF" : "";
    for (std::size_t i = random() % 40; i > 0; --i) text += characters[random() % characters.size()];
    const std::vector<Piece> expected = slowStatementsOf(text);
    for (const std::size_t pieceSize : {3, 4, 5, 7, 64})
      ASSERT_EQ(statementsOf(text, pieceSize), expected) << "round " << round << ", pieces of " << pieceSize;
  }
}

TEST(StackLexer, ReadsNoFurtherThanTheStatementAtHand)
{
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "KEYWORD 1;\n"; // 11 characters
  int numReads = 0;
  StackLexer lexer(sourceOf(text, numReads), 100);
  for (const auto& [numStatements, expected] : {std::pair(9, 1), std::pair(1, 2), std::pair(90, 11)})
  {
    for (int i = 0; i < numStatements; ++i) lexer.readItemString();
    EXPECT_EQ(numReads, expected);
  }
}

TEST(StackLexer, PassesOnWhatItsSourceThrows)
{
  bool isFirst = true;
  StackLexer lexer(
      [&isFirst](char* buffer, std::size_t size)
      {
        if (!isFirst) throw std::runtime_error("the disk failed");
        isFirst = false;
        std::fill_n(buffer, size, 'x');
        buffer[1] = ';';
        return size;
      },
      8);
  EXPECT_EQ(lexer.readItemString()->text, "x");
  EXPECT_THROW(lexer.readItemString(), std::runtime_error);
}
