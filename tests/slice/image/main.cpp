// Pictures need an application, though no screen.
#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv)
{
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
