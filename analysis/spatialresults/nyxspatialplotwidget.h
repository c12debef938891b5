#pragma once

#include "analysis/spatialresults/spatialplot.h"

#include <QWidget>

/// Shows a plot in the colours of the desktop.
class NYXSpatialPlotWidget : public QWidget
{
  Q_OBJECT

public:
  explicit NYXSpatialPlotWidget(QWidget* parent = nullptr);

  void setPlot(const SpatialPlot& plot);
  const SpatialPlot& getPlot() const { return _plot; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  SpatialPlot _plot;
};
