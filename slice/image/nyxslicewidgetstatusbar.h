#pragma once

#include "slice/image/nyximagewidgetstatusbar.h"

class StackSlice;

/// Tells also how many contours and points the slice has.
class NYXSliceWidgetStatusBar : public NYXImageWidgetStatusBar
{
  Q_OBJECT

public:
  explicit NYXSliceWidgetStatusBar(QWidget* parent = nullptr);

  /// nullptr for no slice.
  void setSliceInfo(const StackSlice* slice);

  /// The number of items that are not points, and of all vertices of those that are; each only when there are some.
  static QString sliceText(const StackSlice& slice);

private:
  QLabel* _slice;
};
