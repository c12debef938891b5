#include "viewer/painters/strokefont.h"

#include <map>

namespace
{
constexpr float advance = 6; // of the grid
constexpr float capital = 6; // height
constexpr int baseline = 2;

/// Points of a grid, column and row, along each stroke; a bar ends one. Capitals reach from row 2 to row 8.
const std::map<char32_t, const char*> glyphs = {
    {U'0', "12 32 43 47 38 18 07 03 12"},
    {U'1', "06 28 22|12 32"},
    {U'2', "07 18 38 47 46 02 42"},
    {U'3', "07 18 38 47 46 35 15|35 44 43 32 12 03"},
    {U'4', "32 38 04 44"},
    {U'5', "48 08 05 35 44 43 32 12 03"},
    {U'6', "47 38 18 07 03 12 32 43 44 35 15 04"},
    {U'7', "08 48 22"},
    {U'8', "15 06 07 18 38 47 46 35 15 04 03 12 32 43 44 35"},
    {U'9', "03 12 32 43 47 38 18 07 06 15 35 46"},
    {U'.', "22 23"},
    {U'-', "05 45"},
    {U'+', "05 45|27 23"},
    {U'?', "07 18 38 47 46 25 24|22 23"},
    {U'a', "46 42|45 36 16 05 03 12 32 43"},
    {U'c', "45 36 16 05 03 12 32 43"},
    {U'd', "48 42|45 36 16 05 03 12 32 43"},
    {U'e', "04 44 45 36 16 05 03 12 42"},
    {U'f', "47 38 28 17 12|05 35"},
    {U'h', "02 08|05 16 36 45 42"},
    {U'k', "02 08|46 04 42"},
    {U'm', "02 06|05 16 25 22|25 36 45 42"},
    {U'n', "02 06|05 16 36 45 42"},
    {U'p', "00 06|05 16 36 45 43 32 12 03"},
    {U'x', "02 46|06 42"},
    {U'y', "06 23|46 10"},
    {U'z', "06 46 02 42"},
    {U'µ', "00 06|03 12 32 43|46 42"},
    {U'μ', "00 06|03 12 32 43|46 42"},
    {U'E', "48 08 02 42|05 35"},
    {U'G', "47 38 18 07 03 12 32 43 45 25"},
    {U'M', "02 08 25 48 42"},
    {U'P', "02 08 38 47 46 35 05"},
    {U'T', "08 48|28 22"},
    {U'X', "02 48|08 42"},
    {U'Y', "08 25 48|25 22"},
    {U'Z', "08 48 02 42"},
};

/// The characters of a text of one- and two-byte codes, which are all that the font has.
std::u32string characters(const std::string& text)
{
  std::u32string result;
  for (std::size_t i = 0; i < text.size(); ++i)
  {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0xC0 && byte < 0xE0 && i + 1 < text.size())
      result += static_cast<char32_t>((byte & 0x1F) << 6 | (static_cast<unsigned char>(text[++i]) & 0x3F));
    else
      result += static_cast<char32_t>(byte);
  }
  return result;
}

void addGlyph(const char* glyph, float left, std::vector<float>& ends)
{
  bool isPenDown = false;
  float x = 0, y = 0;
  for (const char* p = glyph; *p != 0;)
  {
    if (*p == ' ' || *p == '|')
    {
      isPenDown = *p++ == ' ';
      continue;
    }
    const float nextX = (left + static_cast<float>(p[0] - '0')) / capital;
    const float nextY = static_cast<float>(p[1] - '0' - baseline) / capital;
    if (isPenDown) ends.insert(ends.end(), {x, y, nextX, nextY});
    x = nextX;
    y = nextY;
    p += 2;
  }
}
} // namespace

std::vector<float> StrokeFont::strokes(const std::string& text)
{
  std::vector<float> ends;
  float left = 0;
  for (const char32_t character : characters(text))
  {
    if (const auto glyph = glyphs.find(character); glyph != glyphs.end()) addGlyph(glyph->second, left, ends);
    left += advance;
  }
  return ends;
}

float StrokeFont::width(const std::string& text)
{
  const std::size_t count = characters(text).size();
  return count == 0 ? 0 : (advance * static_cast<float>(count) - (advance - 4)) / capital;
}
