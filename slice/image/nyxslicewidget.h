#pragma once

#include "slice/image/nyximagewidget.h"

class NYXSliceWidgetCanvas;
class NYXSliceWidgetMediator;
class NYXSliceWidgetStatusBar;
class StackSlice;

/// Shows one slice with what is drawn on it.
class NYXSliceWidget : public NYXImageWidget
{
  Q_OBJECT

public:
  explicit NYXSliceWidget(QWidget* parent = nullptr);

  NYXSliceWidgetCanvas& sliceCanvas() const;
  NYXSliceWidgetMediator& sliceMediator() const;

  /// nullptr for none.
  void setSlice(StackSlice* slice);

protected:
  /// Of a kind of its own, which then calls setMediator().
  NYXSliceWidget(NYXSliceWidgetCanvas* canvas, NYXSliceWidgetStatusBar* statusBar, QWidget* parent);
};
