#include "app/core/nyxpreferences.h"

#include <QSettings>

int NYXPreferences::_maxNumBackups = 5;
bool NYXPreferences::_autoDecimation = false;
bool NYXPreferences::_highlightSelectedItems = true;
bool NYXPreferences::_enablePanoramaLabels = true;
int NYXPreferences::_clickTolerance = 10;
int NYXPreferences::_regionBrushSize = 1;
QColor NYXPreferences::_imageCanvasBackgroundColor(Qt::darkGray);
QColor NYXPreferences::_selectionColor(85, 170, 255, 255);
int NYXPreferences::_percentMemoryUsage = 50;

namespace
{
/// A stored number from 0 to `largest`; what is none keeps the current value.
int readNumber(const QSettings& store, const QString& key, int current, int largest)
{
  bool isNumber = false;
  const int number = store.value(key, current).toInt(&isNumber);
  return isNumber && number >= 0 && number <= largest ? number : current;
}
} // namespace

void NYXPreferences::load()
{
  QSettings store;
  store.beginGroup("preferences");
  _maxNumBackups = readNumber(store, "maxNumBackups", _maxNumBackups, largestNumBackups);
  _autoDecimation = store.value("autoDecimation", _autoDecimation).toBool();
  _highlightSelectedItems = store.value("highlightSelectedItems", _highlightSelectedItems).toBool();
  _enablePanoramaLabels = store.value("enablePanoramaLabels", _enablePanoramaLabels).toBool();
  _clickTolerance = readNumber(store, "clickTolerance", _clickTolerance, largestClickTolerance);
  _regionBrushSize = readNumber(store, "regionBrushSize", _regionBrushSize, largestRegionBrushSize);
  const auto background = store.value("imageCanvasBackgroundColor", _imageCanvasBackgroundColor).value<QColor>();
  if (background.isValid()) _imageCanvasBackgroundColor = background;
}

void NYXPreferences::save()
{
  QSettings store;
  store.beginGroup("preferences");
  store.setValue("maxNumBackups", _maxNumBackups);
  store.setValue("autoDecimation", _autoDecimation);
  store.setValue("highlightSelectedItems", _highlightSelectedItems);
  store.setValue("enablePanoramaLabels", _enablePanoramaLabels);
  store.setValue("clickTolerance", _clickTolerance);
  store.setValue("regionBrushSize", _regionBrushSize);
  store.setValue("imageCanvasBackgroundColor", _imageCanvasBackgroundColor);
}
