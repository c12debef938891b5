#include "tests/numeric/support.h"

#include <memory>
#include <sstream>

namespace
{
std::string printed(const Exception& exception)
{
  std::ostringstream stream;
  stream << exception;
  return stream.str();
}
} // namespace

TEST(ExceptionFamily, HasItsDefaultTexts)
{
  const std::pair<std::unique_ptr<Exception>, const char*> cases[] = {
      {std::make_unique<Exception>(), "Undocumented error"},
      {std::make_unique<FileError>(), "Undocumented file error"},
      {std::make_unique<FileFormatError>(), "Undocumented file format error"},
      {std::make_unique<FileReadError>(), "Undocumented file read error"},
      {std::make_unique<FileWriteError>(), "Undocumented file write error"},
      {std::make_unique<MathError>(), "Undocumented mathematical error"},
      {std::make_unique<ProgramError>(), "Undocumented program error"},
      {std::make_unique<SizeError>(), "Undocumented size error"},
      {std::make_unique<TypeError>(), "Undocumented type error"},
      {std::make_unique<UsageError>(), "Undocumented usage error"},
      {std::make_unique<ValueError>(), "Undocumented value error"},
      {std::make_unique<RangeError>(), "Undocumented range error"},
      {std::make_unique<NameError>(), "Undocumented name error"}};
  for (const auto& [error, what] : cases)
  {
    EXPECT_EQ(error->getWhat(), what);
    EXPECT_EQ(error->getWhere(), "<unknown>");
    EXPECT_EQ(error->getNumCalls(), 0);
  }
}

TEST(ExceptionFamily, DerivesAsHandlersExpect)
{
  EXPECT_THROW(throw RangeError(), ValueError);
  EXPECT_THROW(throw FileFormatError(), FileError);
  EXPECT_THROW(throw FileReadError(), FileError);
  EXPECT_THROW(throw FileWriteError(), FileError);
  EXPECT_FALSE((std::is_base_of_v<std::exception, Exception>));
}

TEST(ExceptionFamily, RecordsTheCallsItPassesThrough)
{
  SizeError error("T Vector<T>::mean() const", "This vector is empty.");
  EXPECT_EQ(error.callStack(), "[0] T Vector<T>::mean() const");
  error.addWhere("void f()");
  error.addCall("void g()");
  EXPECT_EQ(error.getNumCalls(), 2);
  EXPECT_EQ(error.callStack(), "[0] T Vector<T>::mean() const [1] void f() [2] void g()");
  EXPECT_EQ(printed(error), "Exception raised:\n"
                            "  What: This vector is empty.\n"
                            "  Where: T Vector<T>::mean() const\n"
                            "  Calls: [0] T Vector<T>::mean() const [1] void f() [2] void g()\n");
}

TEST(ExceptionFamily, FileErrorsPrintTheFilename)
{
  EXPECT_EQ(printed(FileReadError("void load()", "The file does not exist", "a.txt")),
            "Exception raised:\n  What: The file does not exist\n  Where: void load()\n  Calls: [0] void load()\n"
            "  Filename: a.txt\n");
}

TEST(ExceptionFamily, RowErrorsOfAMatrixNameBothPlaces)
{
  try
  {
    Matrix<double>(2, 0).max();
    FAIL();
  }
  catch (const SizeError& error)
  {
    EXPECT_EQ(error.callStack(), "[0] T Vector<T>::max() const [1] Vector<T> Matrix<T>::max() const");
  }
}
