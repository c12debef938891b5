#include "numeric/atomicfile.h"
#include "numeric/dataset.h"
#include "tests/numeric/support.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

namespace
{
namespace fs = std::filesystem;

/// A folder of its own for every test, removed at its end.
class Files : public ::testing::Test
{
protected:
  Files()
  {
    std::string name = (fs::temp_directory_path() / "mirelo-XXXXXX").string();
    _folder = mkdtemp(name.data());
  }
  ~Files() override { fs::remove_all(_folder); }

  std::string path(const std::string& name) const { return (_folder / name).string(); }
  void write(const std::string& name, const std::string& text) const { std::ofstream(path(name)) << text; }
  std::string read(const std::string& name) const
  {
    std::ostringstream text;
    text << std::ifstream(path(name)).rdbuf();
    return text.str();
  }
  long numFiles() const { return std::distance(fs::directory_iterator(_folder), fs::directory_iterator()); }

private:
  fs::path _folder;
};
using DataSetFiles = Files;
using FileWriting = Files;

DataSet parsed(const std::string& text, char separator = ',')
{
  DataSet dataSet(separator);
  std::istringstream stream(text);
  stream >> dataSet;
  return dataSet;
}

std::string textOf(const DataSet& dataSet)
{
  std::ostringstream stream;
  stream << dataSet;
  return stream.str();
}

DataSet threeRows()
{
  DataSet dataSet(',');
  dataSet.setValues("name", Vector<std::string>{"a", "b", "a"});
  dataSet.setValues("n", Vector<int>{1, -2, 3});
  dataSet.setValues("long", Vector<long>{1L << 40, 0, -1});
  dataSet.setValues("f", Vector<float>{0.1f, 5, 1e20f});
  dataSet.setValues("d", Vector<double>{1.0 / 3, -0.0, 1e-300});
  dataSet.setValues("ld", Vector<long double>{0.5L, 1, 2});
  return dataSet;
}
} // namespace

TEST(DataSetText, ShowsDecimalPointsAndShortestNumbers)
{
  EXPECT_EQ(textOf(threeRows()), "name,n,long,f,d,ld\n"
                                 "a,1,1099511627776,0.1,0.3333333333333333,0.5\n"
                                 "b,-2,0,5.0,-0.0,1.0\n"
                                 "a,3,-1,1.0e+20,1.0e-300,2.0\n");
  EXPECT_EQ(textOf(DataSet()), "\n");
}

TEST(DataSetText, FindsColumnTypesInTheFirstRow)
{
  const DataSet d = parsed("'i';\"x\";t;u;l;q\n-12;1e3;1x;;3000000000;'7'\r\n+5;nan;2;v;1;8\n\n", ';');
  const char* const types[] = {"%d", "%f", "%s", "%s", "%ld", "%d"};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(d.columnType(i), types[i]) << i;
  EXPECT_EQ(d.getNumRows(), 2);
  EXPECT_EQ(d.getValues<int>("i"), (Vector<int>{-12, 5}));
  EXPECT_EQ(d.getValue<float>("x", 0), 1000.0f);
  EXPECT_TRUE(std::isnan(d.getValue<float>("x", 1)));
  EXPECT_EQ(d.getValue<std::string>("u", 0), "");
  EXPECT_EQ(d.getValue<int>("q", 1), 8);
  EXPECT_THROW(d.columnType(6), RangeError);
  DataSet wide;
  wide.setValues("d", Vector<double>{1});
  wide.setValues("ld", Vector<long double>{1});
  EXPECT_EQ(wide.columnType(0) + wide.columnType(1), "%lftype error");
}

TEST(DataSetText, ReadsBackTheFloatsItWrote)
{
  RandomGenerator generator(9);
  Vector<float> floats(1000);
  floats.apply(
      [&](float)
      {
        return std::ldexp(static_cast<float>(generator.uniformLF(-1, 1)),
                          static_cast<int>(generator.uniformLL(-120, 120)));
      });
  floats.append(Vector<float>{std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min(),
                              std::numeric_limits<float>::infinity()});
  DataSet d(',');
  d.setValues("f", floats);
  EXPECT_EQ(parsed(textOf(d)).getValues<float>("f"), floats);
  EXPECT_EQ(parsed("a\n-1e-300\n").getValue<float>("a", 0), 0);
}

TEST(DataSetText, WidensColumnsThatALaterFieldDoesNotFit)
{
  const struct
  {
    const char *first, *second, *type;
  } cases[] = {{"1", "-2", "%d"},
               {"3", "1099511627776", "%ld"},
               {"1", "2.5", "%f"},
               {"16777217", "2.5", "%lf"},                // float would round it
               {"9007199254740993", "0.5", "type error"}, // double would, too
               {"1.5", "16777217", "%f"},
               {"1.5", "2", "%f"},
               {"0.1", "1e300", "%lf"},
               {"1e300", "1", "%lf"},
               {"1", "-1e400", "type error"},
               {"1.5", "x", "%s"},
               {"007", "ab", "%s"},
               {"1.50", "", "%s"},
               {"1e5000", "2", "%s"},
               {"99999999999999999999", "1", "%f"}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(::testing::Message() << c.first << ", " << c.second);
    const DataSet d = parsed(std::string("a\n") + c.first + "\n" + c.second + "\n");
    ASSERT_EQ(d.columnType(0), c.type);
    if (c.type == std::string("%s"))
    {
      EXPECT_EQ(d.getValues<std::string>("a"), (Vector<std::string>{c.first, c.second}));
    }
    else if (c.type == std::string("%ld"))
    {
      EXPECT_EQ(d.getValues<long>("a"), (Vector<long>{3, 1L << 40}));
    }
    else if (c.type == std::string("%lf"))
    {
      EXPECT_EQ(d.getValue<double>("a", 0), std::strtod(c.first, nullptr));
    }
  }
}

TEST(DataSetText, ReadsBackEveryColumnItWrote)
{
  DataSet d(',');
  d.setValues("double", Vector<double>{0.1, 1e300});
  d.setValues("long", Vector<long>{3, 1L << 40});
  d.setValues("text", Vector<std::string>{"12", "ab"});
  const DataSet back = parsed(textOf(d));
  EXPECT_EQ(back.getValues<double>("double"), d.getValues<double>("double"));
  EXPECT_EQ(back.getValues<long>("long"), d.getValues<long>("long"));
  EXPECT_EQ(back.getValues<std::string>("text"), d.getValues<std::string>("text"));
}

TEST(DataSetText, NamesTheLineOfAnError)
{
  const std::pair<const char*, const char*> cases[] = {{"", "Line 1: there are no column names"},
                                                       {"a,a\n", "Line 1: two columns have the name 'a'"},
                                                       {"a,b\n1,2\n3\n", "Line 3: 1 fields for 2 columns"},
                                                       {"a,b\n1,2\n\n3,4,5\n", "Line 4: 3 fields for 2 columns"}};
  for (const auto& [text, what] : cases) expectError<FileFormatError>(what, [text = text] { parsed(text); });
}

TEST(DataSetColumns, RefuseUnknownNamesTypesAndRows)
{
  DataSet d = threeRows();
  expectError<NameError>("Variable name not found. Known variables are: name, n, long, f, d, ld",
                         [&] { d.getValues<int>("x"); });
  EXPECT_THROW(d.getValues<float>("n"), TypeError);
  EXPECT_THROW(d.getValue<int>("n", 3), RangeError);
  EXPECT_THROW(d.setValue<int>("n", -1, 0), RangeError);
  EXPECT_THROW(d.setValue<int>("f", 0, 0), TypeError);
  EXPECT_THROW(d.setValues("m", Vector<int>{1}), SizeError);
  DataSet other;
  other.setValues("n", Vector<int>{1});
  EXPECT_THROW(d.append(other), NameError);
}

TEST(DataSetColumns, GrowCropAndAppend)
{
  DataSet d = threeRows();
  d.setValue<int>("n", 4, 9);
  d.setValue<std::string>("new", 0, "x");
  EXPECT_EQ(d.getNumRows(), 5);
  EXPECT_EQ(d.getValues<int>("n"), (Vector<int>{1, -2, 3, 0, 9}));
  EXPECT_EQ(d.getValue<std::string>("name", 4), "");
  d.setValues<int>("same", 7);
  EXPECT_EQ(d.getValue<int>("same", 4), 7);
  d.crop<std::string>("name", "a");
  EXPECT_EQ(d.getValues<int>("n"), (Vector<int>{1, 3}));
  d.ensureRow<int>("n", 2); // rows that were cropped away leave nothing behind
  EXPECT_EQ(d.getValues<int>("n"), (Vector<int>{1, 3, 0}));
  d.append(d);
  EXPECT_EQ(d.getValues<int>("n"), (Vector<int>{1, 3, 0, 1, 3, 0}));
  DataSet all;
  all.append(d);
  EXPECT_EQ(all.getNames(), d.getNames());
}

TEST_F(DataSetFiles, SaveAndLoad)
{
  const DataSet d = threeRows();
  d.save(path("d.txt"));
  expectError<FileWriteError>("File exists", [&] { d.save(path("d.txt")); });
  d.save(path("d.txt"), true);
  EXPECT_EQ(read("d.txt"), textOf(d));
  DataSet loaded(',');
  loaded.load(path("d.txt"));
  EXPECT_EQ(loaded.getValues<std::string>("name"), d.getValues<std::string>("name"));
  expectError<FileReadError>("The file does not exist", [&] { loaded.load(path("none")); });
  EXPECT_THROW(loaded.load(fs::path(path("d.txt")).parent_path()), FileReadError);
  write("bad.txt", "a,b\n1\n");
  expectError<FileFormatError>(path("bad.txt") + ": Line 2: 1 fields for 2 columns",
                               [&] { loaded.load(path("bad.txt")); });
  EXPECT_EQ(loaded.getNumRows(), 3); // what was loaded before
}

TEST_F(FileWriting, ReplacesTheTargetOnlyWhenComplete)
{
  write("old", "old");
  fs::permissions(path("old"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink(path("old"), path("link"));
  AtomicFile(path("link")).write("half");
  EXPECT_EQ(read("old"), "old");
  AtomicFile file(path("link"));
  file.write("new");
  file.commit();
  EXPECT_EQ(read("old"), "new");
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(fs::status(path("old")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(numFiles(), 2);
  EXPECT_THROW(AtomicFile(path("no/file")), FileWriteError);
  EXPECT_THROW(AtomicFile(fs::path(path("old")).parent_path()), FileWriteError);
}
