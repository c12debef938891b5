// No folder includes from a folder above it, and the libraries without windows include no Qt header.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <vector>

namespace
{
namespace fs = std::filesystem;

struct Room
{
  std::string folder; // a file belongs to the longest folder that its path begins with
  int floor;          // may include from its own folder and from lower floors
  bool mayUseQt;
};

const std::vector<Room> house = {
    {"numeric", 1, false},
    {"geometry", 2, false},
    {"image", 3, false},
    {"model", 4, false},
    {"geometry/reconstruction", 5, false},
    {"analysis/measures", 6, false},
    {"analysis/spatial", 6, false},
    {"viewer/painters", 5, false},
    {"viewer/scene", 6, false},
    {"app/core", 7, true},
    {"slice/image", 8, true},
    {"slice", 9, true},
    {"registration", 9, true},
    {"viewer", 9, true},
    {"analysis", 9, true},
    {"app", 10, true},
    {"batch", 10, false},
};

const Room* roomOf(const std::string& path)
{
  const Room* best = nullptr;
  for (const Room& room : house)
  {
    const bool inside = path.starts_with(room.folder + "/");
    if (inside && (best == nullptr || room.folder.size() > best->folder.size())) best = &room;
  }
  return best;
}

std::optional<std::string> violation(const Room& from, const std::string& included)
{
  static const std::regex qtHeader("Qt?[A-Z][A-Za-z0-9/]*|q[a-z]+\\.h");
  if (!from.mayUseQt && std::regex_match(included, qtHeader)) return "a library without windows includes " + included;
  if (included.find("..") != std::string::npos) return "the include " + included + " does not begin at the root";
  const Room* to = roomOf(included);
  if (to == nullptr || to == &from) return std::nullopt;
  if (!from.mayUseQt && to->mayUseQt) return from.folder + " has no windows and includes " + included;
  if (to->floor < from.floor) return std::nullopt;
  return from.folder + " reaches up to " + included;
}

std::vector<std::string> violations(const fs::path& root)
{
  static const std::regex includeLine("\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"].*");
  std::vector<std::string> found;
  for (const Room& room : house)
  {
    if (!fs::exists(root / room.folder)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / room.folder))
    {
      const std::string path = fs::relative(entry.path(), root).generic_string();
      if (!entry.is_regular_file() || roomOf(path) != &room) continue;
      std::ifstream file(entry.path());
      std::smatch match;
      for (std::string line; std::getline(file, line);)
      {
        if (!std::regex_match(line, match, includeLine)) continue;
        const std::string included = match[1];
        const bool isRelative = fs::exists(entry.path().parent_path() / included) && !fs::exists(root / included);
        if (isRelative && included.find('/') != std::string::npos)
          found.push_back(path + ": the include " + included + " does not begin at the root");
        else if (const auto text = violation(room, included))
          found.push_back(path + ": " + *text);
      }
    }
  }
  return found;
}

void write(const fs::path& path, const std::string& text)
{
  fs::create_directories(path.parent_path());
  std::ofstream(path) << text;
}

TEST(Layering, NoFolderReachesUp)
{
  ASSERT_TRUE(fs::exists(fs::path(MIRELO_SOURCE_DIR) / "numeric"));
  EXPECT_THAT(violations(MIRELO_SOURCE_DIR), testing::IsEmpty());
}

TEST(Layering, FindsEachKindOfViolation)
{
  const fs::path root = fs::path(testing::TempDir()) / "mirelo-layering";
  fs::remove_all(root);
  write(root / "image/a.h", "#include \"numeric/vector.h\"\n#include \"model/stack.h\"\n");
  write(root / "geometry/b.cpp", "# include \"geometry/reconstruction/stackreconstruction.h\"\n");
  write(root / "viewer/c.h", "#include \"slice/image/canvas.h\"\n#include \"slice/editor.h\"\n#include <QWidget>\n");
  write(root / "model/io/d.cpp", "#include <QtCore/QString>\n#include <queue>\n");
  write(root / "image/e.cpp", "#include \"../model/stack.h\"\n");
  write(root / "geometry/reconstruction/stackreconstruction.h", "");
  write(root / "geometry/g.cpp", "#include \"reconstruction/stackreconstruction.h\"\n");
  write(root / "batch/f.cpp", "#include \"app/core/nyxsettings.h\"\n#include \"model/stack.h\"\n");
  EXPECT_THAT(violations(root),
              testing::UnorderedElementsAre(
                  "image/a.h: image reaches up to model/stack.h",
                  "geometry/b.cpp: geometry reaches up to geometry/reconstruction/stackreconstruction.h",
                  "viewer/c.h: viewer reaches up to slice/editor.h",
                  "model/io/d.cpp: a library without windows includes QtCore/QString",
                  "geometry/g.cpp: the include reconstruction/stackreconstruction.h does not begin at the root",
                  "image/e.cpp: the include ../model/stack.h does not begin at the root",
                  "batch/f.cpp: batch has no windows and includes app/core/nyxsettings.h"));
  fs::remove_all(root);
}
} // namespace
