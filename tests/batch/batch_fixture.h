#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

inline std::string contents(const std::filesystem::path& file)
{
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void write(const std::filesystem::path& file, const std::string& text)
{
  std::ofstream(file, std::ios::binary) << text;
}

struct Result
{
  int status;
  std::string output;
  std::string errors;
};

/// A folder of its own for each test, and the program run in it.
class Batch : public testing::Test
{
protected:
  Batch() : folder(std::filesystem::path(testing::TempDir()) / ("mirelo-batch-" + std::to_string(getpid())))
  {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
  }
  ~Batch() override { std::filesystem::remove_all(folder); }

  Result run(const std::string& arguments, const std::string& before = "") const
  {
    const std::string command =
        "cd " + folder.string() + "; " + before + " " MIRELO_BATCH " " + arguments + " >out 2>err";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(folder / "out"), contents(folder / "err")};
  }

  std::filesystem::path folder;
};
