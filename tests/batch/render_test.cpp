// Pictures of stacks without a display.
#include "batch_fixture.h"

#include <gmock/gmock.h>

namespace
{
using testing::HasSubstr;

/// What the libraries of OpenGL lose when they are unloaded is not ours.
const std::string quietly = "env ASAN_OPTIONS=detect_leaks=0";
const std::string noDisplay = "env -u DISPLAY -u WAYLAND_DISPLAY ASAN_OPTIONS=detect_leaks=0";
const std::string example = " '" MIRELO_EXAMPLE "' ";

/// Width and height that a PNG file's header says.
std::pair<int, int> sizeOfPng(const std::string& png)
{
  const auto number = [&png](std::size_t i)
  {
    int n = 0;
    for (std::size_t k = i; k < i + 4; ++k) n = n << 8 | static_cast<unsigned char>(png.at(k));
    return n;
  };
  return png.starts_with("\x89PNG\r\n\x1a\n") ? std::pair(number(16), number(20)) : std::pair(0, 0);
}
} // namespace

TEST_F(Batch, RendersWithoutADisplay)
{
  const Result result = run("render" + example + "--out a.png --size 320x200 --pose 30,-45,0", noDisplay);
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(sizeOfPng(contents(folder / "a.png")), std::pair(320, 200));
  run("render" + example + "--out b.png --size 320x200 --pose 30,-45,0", noDisplay);
  EXPECT_EQ(contents(folder / "b.png"), contents(folder / "a.png")); // the same once more
  run("render" + example + "--out c.png --size 320x200 --pose 1", noDisplay);
  EXPECT_NE(contents(folder / "c.png"), contents(folder / "a.png"));
}

TEST_F(Batch, RenderRefusesWhatItCannotDo)
{
  const struct
  {
    std::string arguments, error;
  } cases[] = {
      {"--out a.png --size 0x100", "--size 0x100"},
      {"--out a.png --size 100x", "--size 100x"},
      {"--out a.png --size 999999x999999", "999999 x 999999"},
      {"--out a.png --pose nowhere", "no pose nowhere"},
      {"--out a.png --pose 1,2,nan", "no pose 1,2,nan"},
      {"--out a.png --model unknown", "unknown"},
      {"--out missing/a.png", "missing/a.png"},
  };
  for (const auto& c : cases)
  {
    const Result result = run("render" + example + c.arguments, quietly);
    EXPECT_EQ(result.status, 2) << c.arguments;
    EXPECT_THAT(result.errors, HasSubstr(c.error));
    EXPECT_FALSE(std::filesystem::exists(folder / "a.png"));
  }
  write(folder / "a.png", "mine");
  EXPECT_EQ(run("render" + example + "--out a.png", quietly).status, 2);
  EXPECT_EQ(contents(folder / "a.png"), "mine");
  EXPECT_EQ(run("render" + example + "--out a.png --overwrite --size 64x64", quietly).status, 0);
  EXPECT_EQ(sizeOfPng(contents(folder / "a.png")), std::pair(64, 64));
}
