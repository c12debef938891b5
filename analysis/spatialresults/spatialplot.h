#pragma once

#include "analysis/spatial/spatialmodelevaluatorbase.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QString>

class QPainter;
class QPalette;
class QRectF;

/// The curves of a distance function and what is written around them.
struct SpatialPlot
{
  QString title;
  QString distanceLabel;                             ///< of the horizontal axis
  const SpatialEvaluation<double>* curves = nullptr; ///< borrowed; nullptr: there is nothing to draw
};

struct SpatialPlotColors
{
  QColor background;
  QColor text;
  QColor lines; ///< of the grid
  QColor observed;
  QColor envelope;

  /// Those that stand out against the palette's base, light or dark.
  static SpatialPlotColors of(const QPalette& palette);
  /// On white, for paper.
  static SpatialPlotColors forPrint();
};

/// Draws the observed curve, the dashed average and the band of the envelope over the distance, with axes and legend,
/// in the painter's font.
void paintPlot(QPainter& painter, const QRectF& area, const SpatialPlot& plot, const SpatialPlotColors& colors);

/// The plot as a picture of 300 dots per inch, and as a drawing; both of one size, whatever window shows it.
/// @{
QImage plotPicture(const SpatialPlot& plot);
QByteArray plotDrawing(const SpatialPlot& plot);
/// @}
