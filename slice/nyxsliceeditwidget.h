#pragma once

#include "slice/image/nyxslicewidget.h"

class NYXSliceEditWidgetCanvas;
class NYXSliceEditWidgetMediator;
class NYXSliceEditWidgetStatusBar;

/// Shows one slice, on which model items are drawn, selected, edited and removed.
class NYXSliceEditWidget : public NYXSliceWidget
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidget(QWidget* parent = nullptr);

  NYXSliceEditWidgetCanvas& editCanvas() const;
  NYXSliceEditWidgetMediator& editMediator() const;
  NYXSliceEditWidgetStatusBar& editStatusBar() const;
};
