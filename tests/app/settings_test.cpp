#include "app/core/nyxpreferences.h"
#include "app/core/nyxsettings.h"
#include "app/nyxpreferencesdialog.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>

namespace
{
TEST(Settings, DefaultsWithoutAStore)
{
  QSettings().clear();
  NYXSettings::load();
  NYXPreferences::load();
  EXPECT_EQ(NYXSettings::settings().getInputDirectory(), QDir::homePath());
  EXPECT_EQ(NYXSettings::settings().getOutputDirectory(), QDir::homePath());
  EXPECT_EQ(NYXPreferences::getMaxNumBackups(), 5);
  EXPECT_FALSE(NYXPreferences::autoDecimationEnabled());
  EXPECT_TRUE(NYXPreferences::getHighlightSelectedItems());
  EXPECT_TRUE(NYXPreferences::isPanoramaLabelEnabled());
  EXPECT_EQ(NYXPreferences::getClickTolerance(), 10);
  EXPECT_EQ(NYXPreferences::getRegionBrushSize(), 1);
  EXPECT_EQ(NYXPreferences::getImageCanvasBackgroundColor(), QColor(Qt::darkGray));
  EXPECT_EQ(NYXPreferences::getSelectionColor(), QColor(85, 170, 255, 255));
  EXPECT_EQ(NYXPreferences::getPercentMemoryUsage(), 50);
}

TEST(Settings, AreStoredUnderTheirKeys)
{
  NYXSettings::settings().setInputDirectory("/in");
  NYXSettings::save();
  NYXPreferences::setMaxNumBackups(2);
  NYXPreferences::setImageCanvasBackgroundColor(QColor(1, 2, 3));
  NYXPreferences::save();
  EXPECT_EQ(QSettings().value("inputDirectory").toString(), "/in");
  EXPECT_EQ(QSettings().value("preferences/maxNumBackups").toInt(), 2);
  EXPECT_FALSE(QSettings().contains("preferences/selectionColor"));

  NYXSettings::settings().setInputDirectory("/elsewhere");
  NYXPreferences::setMaxNumBackups(7);
  NYXPreferences::setImageCanvasBackgroundColor(Qt::red);
  NYXSettings::load();
  NYXPreferences::load();
  EXPECT_EQ(NYXSettings::settings().getInputDirectory(), "/in");
  EXPECT_EQ(NYXPreferences::getMaxNumBackups(), 2);
  EXPECT_EQ(NYXPreferences::getImageCanvasBackgroundColor(), QColor(1, 2, 3));
}

TEST(Settings, RecentFilesAreTenAndDoNotMove)
{
  NYXSettings& settings = NYXSettings::settings();
  QSettings().setValue("recentFiles", QStringList());
  NYXSettings::load();
  for (int i = 1; i <= 11; ++i) settings.addRecentFile("/" + QString::number(i));
  EXPECT_EQ(settings.getRecentFilesList().size(), 10);
  EXPECT_EQ(settings.getRecentFilesList().first(), "/11");
  EXPECT_FALSE(settings.getRecentFilesList().contains("/1"));
  settings.addRecentFile("/5");
  EXPECT_EQ(settings.getRecentFilesList().first(), "/11");
  settings.addRecentFile("/A");
  settings.addRecentFile("/a");
  EXPECT_EQ(settings.getRecentFilesList().mid(0, 2), QStringList({"/a", "/A"}));
}

TEST(PreferencesDialog, AppliesOnlyWhenAsked)
{
  const struct
  {
    QDialogButtonBox::StandardButton button;
    int numBackups;
    bool closes;
  } cases[] = {
      {QDialogButtonBox::Cancel, 5, true},
      {QDialogButtonBox::Apply, 8, false},
      {QDialogButtonBox::Ok, 8, true},
  };
  for (const auto& c : cases)
  {
    NYXPreferences::setMaxNumBackups(5);
    NYXPreferences::setHighlightSelectedItems(true);
    NYXPreferencesDialog dialog;
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), "Preferences");
    dialog.findChild<QSpinBox*>("maxNumBackups")->setValue(8);
    dialog.findChild<QCheckBox*>("highlightSelectedItems")->setChecked(false);
    EXPECT_EQ(NYXPreferences::getMaxNumBackups(), 5);
    dialog.findChild<QDialogButtonBox*>()->button(c.button)->click();
    EXPECT_EQ(NYXPreferences::getMaxNumBackups(), c.numBackups);
    EXPECT_EQ(NYXPreferences::getHighlightSelectedItems(), c.numBackups == 5);
    EXPECT_EQ(dialog.isVisible(), !c.closes);
  }
}
} // namespace
