#include "app/nyxpluginserver.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

namespace
{
TEST(PluginServer, NamesWhatIsNoPluginInOneLine)
{
  const QTemporaryDir folder;
  QFile library(folder.filePath("broken.so"));
  ASSERT_TRUE(library.open(QIODevice::WriteOnly));
  library.write("no library\n");
  library.close();
  qputenv("MIRELO_PLUGIN_PATH", folder.path().toLocal8Bit());
  testing::internal::CaptureStderr();
  NYXPluginServer::server().loadPlugins();
  const std::string said = testing::internal::GetCapturedStderr();
  qunsetenv("MIRELO_PLUGIN_PATH");
  EXPECT_EQ(NYXPluginServer::server().getNumPlugins(), 0);
  EXPECT_THAT(said, testing::StartsWith("mirelo: cannot load plug-in "));
  EXPECT_THAT(said, testing::HasSubstr("broken.so"));
  EXPECT_EQ(std::ranges::count(said, '\n'), 1);
}
} // namespace
