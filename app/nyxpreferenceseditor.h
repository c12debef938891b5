#pragma once

#include <QWidget>

class NYXColorButton;
class QCheckBox;
class QSpinBox;

/// One control per preference. Holds the values of its controls until apply() hands them to NYXPreferences.
class NYXPreferencesEditor : public QWidget
{
  Q_OBJECT

public:
  explicit NYXPreferencesEditor(QWidget* parent = nullptr);

  /// Copies the controls' values into NYXPreferences.
  void apply() const;

signals:
  void preferencesChanged();

private:
  QCheckBox* addCheckBox(const char* name, const QString& label, const QString& toolTip, bool value);
  QSpinBox* addSpinBox(const char* name, const QString& label, const QString& toolTip, int minimum, int maximum,
                       int value);
  NYXColorButton* addColorButton(const char* name, const QString& label, const QString& toolTip, const QColor& color);

  QSpinBox* _maxNumBackups;
  QCheckBox* _autoDecimation;
  QCheckBox* _highlightSelectedItems;
  QCheckBox* _panoramaLabels;
  QSpinBox* _clickTolerance;
  QSpinBox* _regionBrushSize;
  NYXColorButton* _backgroundColor;
  NYXColorButton* _selectionColor;
};
