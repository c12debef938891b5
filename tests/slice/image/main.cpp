// Pictures need an application, though no screen.
#include "tests/support/leaks.h"

#include <gtest/gtest.h>

#include <QGuiApplication>

#ifdef __SANITIZE_THREAD__
/// How Qt, which is not built for the thread sanitizer, locks its own data cannot be seen.
extern "C" const char* __tsan_default_options()
{
  return "ignore_noninstrumented_modules=1";
}
#endif

int main(int argc, char** argv)
{
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const int result = RUN_ALL_TESTS();
  reportLeaks();
  return result;
}
