#include "analysis/spatialresults/nyxspatialplotwidget.h"

#include <QPainter>

NYXSpatialPlotWidget::NYXSpatialPlotWidget(QWidget* parent) : QWidget(parent) {}

void NYXSpatialPlotWidget::setPlot(const SpatialPlot& plot)
{
  _plot = plot;
  setAccessibleName(plot.title);
  update();
}

QSize NYXSpatialPlotWidget::sizeHint() const
{
  return QSize(36, 24) * fontMetrics().height();
}

QSize NYXSpatialPlotWidget::minimumSizeHint() const
{
  return QSize(20, 14) * fontMetrics().height();
}

void NYXSpatialPlotWidget::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  paintPlot(painter, rect(), _plot, SpatialPlotColors::of(palette()));
}
