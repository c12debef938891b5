// The tests of the windows need an application, and settings of their own that leave the user's alone.
#include "tests/support/leaks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

int main(int argc, char** argv)
{
  testing::InitGoogleTest(&argc, argv);
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("VELK");
  QCoreApplication::setApplicationName("Mirelo");
  QApplication::setQuitOnLastWindowClosed(false);
  const int result = RUN_ALL_TESTS();
  reportLeaks();
  return result;
}
