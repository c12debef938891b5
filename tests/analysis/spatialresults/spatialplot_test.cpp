#include "analysis/spatialresults/spatialplot.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <cmath>

namespace
{
SpatialEvaluation<double> level(double observed, int numPoints, double precision)
{
  SpatialEvaluation<double> curves;
  for (Vector<double>* values : {&curves.grid, &curves.observed, &curves.average, &curves.lower, &curves.upper})
    values->setSize(numPoints);
  for (int j = 0; j < numPoints; ++j) curves.grid[j] = j * precision;
  curves.observed.fill(observed);
  curves.average.fill(0);
  curves.lower.fill(0);
  curves.upper.fill(0);
  return curves;
}

/// Middle row, left of the legend, of the pixels that the observed curve has coloured; NaN when there is none.
double observedRow(const QImage& picture)
{
  const QRgb color = SpatialPlotColors::forPrint().observed.rgb();
  double sum = 0;
  int number = 0;
  for (int row = 0; row < picture.height(); ++row)
    for (int column = 0; column < picture.width() * 2 / 5; ++column)
      if (picture.pixel(column, row) == color)
      {
        sum += row;
        ++number;
      }
  return sum / number;
}
} // namespace

TEST(SpatialPlot, DrawsTheObservedCurveAtItsHeight)
{
  for (const int numPoints : {2, 1000, 100001})
  {
    SCOPED_TRACE(numPoints);
    const auto row = [&](double observed)
    {
      const SpatialEvaluation<double> curves = level(observed, numPoints, 0.001);
      return observedRow(plotPicture({"title", "distance", &curves}));
    };
    const double bottom = row(0), top = row(1);
    EXPECT_GT(bottom - top, 500);
    EXPECT_NEAR(row(0.5), (bottom + top) / 2, 1.5);
    EXPECT_NEAR(row(0.25), bottom - (bottom - top) / 4, 1.5);
  }
}

TEST(SpatialPlot, SurvivesWhatHasNoExtent)
{
  const SpatialEvaluation<double> empty, single = level(1, 1, 0.1);
  EXPECT_TRUE(std::isnan(observedRow(plotPicture({"no value", "", nullptr}))));
  EXPECT_TRUE(std::isnan(observedRow(plotPicture({"", "", &empty}))));
  plotPicture({"", "", &single});
  QImage tiny(5, 5, QImage::Format_RGB32);
  QPainter painter(&tiny);
  paintPlot(painter, tiny.rect(), {"", "", &single}, SpatialPlotColors::forPrint());
}

TEST(SpatialPlot, IsTheSameDrawingAsThePicture)
{
  const SpatialEvaluation<double> curves = level(0.5, 100, 0.1);
  const SpatialPlot plot = {"G-SDI, slice <1> & 2", "Distance (µm)", &curves};
  QSvgRenderer drawing(plotDrawing(plot));
  ASSERT_TRUE(drawing.isValid());
  const QImage picture = plotPicture(plot);
  QImage rendered(picture.size(), QImage::Format_RGB32);
  QPainter painter(&rendered);
  drawing.render(&painter);
  painter.end();
  EXPECT_NEAR(observedRow(rendered), observedRow(picture), 0.01 * picture.height());
}

TEST(SpatialPlot, StandsOutAgainstLightAndDarkBackgrounds)
{
  QPalette dark;
  dark.setColor(QPalette::Base, QColor(30, 30, 30));
  dark.setColor(QPalette::Text, Qt::white);
  for (const SpatialPlotColors& colors : {SpatialPlotColors::forPrint(), SpatialPlotColors::of(dark)})
  {
    const auto contrast = [&](const QColor& a, const QColor& b) { return std::abs(qGray(a.rgb()) - qGray(b.rgb())); };
    EXPECT_GT(contrast(colors.text, colors.background), 150);
    EXPECT_GT(contrast(colors.observed, colors.background), 90);
    EXPECT_GT(contrast(colors.observed, colors.envelope), 60);
    EXPECT_GT(contrast(colors.text, colors.envelope), 90) << "the average in the band";
    EXPECT_GT(contrast(colors.envelope, colors.background), 30);
  }
}
