#pragma once

#include <QColor>

/// The options that the user sets in the preferences dialog. All values are shared by the whole program.
///
/// Loaded once at start-up and saved once at the end; the selection colour and the memory share live in memory only.
class NYXPreferences
{
public:
  /// The largest values that the numbers can have; the smallest is 0.
  static constexpr int largestNumBackups = 99;
  static constexpr int largestClickTolerance = 100;
  static constexpr int largestRegionBrushSize = 1000;

  /// Reads each key of the settings store; a missing key, or one without a possible value, keeps that in memory.
  static void load();
  static void save();

  /// Backups kept beside a saved stack; below 1 none is made.
  static int getMaxNumBackups() { return _maxNumBackups; }
  static void setMaxNumBackups(int number) { _maxNumBackups = number; }

  static bool autoDecimationEnabled() { return _autoDecimation; }
  static void enableAutoDecimation(bool flag) { _autoDecimation = flag; }

  static bool getHighlightSelectedItems() { return _highlightSelectedItems; }
  static void setHighlightSelectedItems(bool flag) { _highlightSelectedItems = flag; }

  static bool isPanoramaLabelEnabled() { return _enablePanoramaLabels; }
  static void setPanoramaLabelEnabled(bool flag) { _enablePanoramaLabels = flag; }

  /// How far from an item a click still hits it, in screen pixels.
  static int getClickTolerance() { return _clickTolerance; }
  static void setClickTolerance(int pixels) { _clickTolerance = pixels; }

  /// Radius of the brush that paints regions, in image pixels.
  static int getRegionBrushSize() { return _regionBrushSize; }
  static void setRegionBrushSize(int size) { _regionBrushSize = size; }

  static QColor getImageCanvasBackgroundColor() { return _imageCanvasBackgroundColor; }
  static void setImageCanvasBackgroundColor(const QColor& color) { _imageCanvasBackgroundColor = color; }

  static QColor getSelectionColor() { return _selectionColor; }
  static void setSelectionColor(const QColor& color) { _selectionColor = color; }

  /// Share of the machine's memory that images may take, in percent.
  static int getPercentMemoryUsage() { return _percentMemoryUsage; }
  static void setPercentMemoryUsage(int percent) { _percentMemoryUsage = percent; }

private:
  static int _maxNumBackups;
  static bool _autoDecimation;
  static bool _highlightSelectedItems;
  static bool _enablePanoramaLabels;
  static int _clickTolerance;
  static int _regionBrushSize;
  static QColor _imageCanvasBackgroundColor;
  static QColor _selectionColor;
  static int _percentMemoryUsage;
};
