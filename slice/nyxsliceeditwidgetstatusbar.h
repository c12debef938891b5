#pragma once

#include "slice/image/nyxslicewidgetstatusbar.h"

/// Tells also which tool is at work.
class NYXSliceEditWidgetStatusBar : public NYXSliceWidgetStatusBar
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetStatusBar(QWidget* parent = nullptr);

  /// "READY" while no tool is active.
  void setEditModeInfo(const QString& text);

private:
  QLabel* _editMode;
};
