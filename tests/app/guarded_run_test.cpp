#include "app/core/nyxexception.h"
#include "app/nyxguardedrun.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QTimer>

#include <stdexcept>

namespace
{
TEST(GuardedRun, GivesTheResultOfTheWindows)
{
  EXPECT_EQ(guardedRun([] { return 3; }), 3);
}

TEST(GuardedRun, ReportsEveryClassOfException)
{
  const std::string library =
      "*** Exception ***\nException raised:\n  What: no contour\n  Where: f()\n  Calls: [0] f()\n\n";
  const struct
  {
    const char* name;
    std::function<int()> windows;
    std::string output;
  } cases[] = {
      {"application", []() -> int { throw NYXException("f()", "no contour"); }, library},
      {"library", []() -> int { throw SizeError("f()", "no contour"); }, library},
      {"standard", []() -> int { throw std::runtime_error("out of luck"); }, "*** Exception ***\nout of luck\n"},
      {"anything else", []() -> int { throw 1; }, "*** Exception ***\nNo details available\n"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    testing::internal::CaptureStdout();
    EXPECT_EQ(guardedRun(c.windows), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.output);
  }
}

TEST(GuardedRun, CatchesWhatAnEventHandlerThrows)
{
  QObject receiver;
  testing::internal::CaptureStdout();
  const int result = guardedRun(
      [&]
      {
        QTimer::singleShot(0, &receiver, [] { throw SizeError("f()", "no contour"); });
        return QApplication::exec();
      });
  EXPECT_EQ(result, 0);
  EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::StartsWith("*** Exception ***\nException raised:\n"));
}
} // namespace
