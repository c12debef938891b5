#include "analysis/spatialresults/spatialplot.h"

#include "analysis/spatialresults/axisticks.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QSvgGenerator>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int maxNumPoints = 4000;    // of a drawn curve
constexpr QSizeF printSize(480, 320); // in points of 1/72 inch
constexpr int printResolution = 300;  // dots per inch
constexpr int printFontSize = 10;     // points

QString text(const char* source)
{
  return QCoreApplication::translate("SpatialPlot", source);
}

class PlotPainter
{
public:
  PlotPainter(QPainter& painter, const QRectF& area, const SpatialPlot& plot, const SpatialPlotColors& colors)
    : _painter(painter),
      _area(area),
      _plot(plot),
      _colors(colors),
      _em(QFontMetricsF(painter.font(), painter.device()).height())
  {
  }

  void paint()
  {
    _painter.fillRect(_area, _colors.background);
    if (!_plot.curves || _plot.curves->grid.getSize() == 0) return paintTextAlone();
    const Vector<double>& grid = _plot.curves->grid;
    _last = grid[grid.getSize() - 1] > 0 ? grid[grid.getSize() - 1] : 1;
    _frame = _area.adjusted(4.5 * _em, 2.2 * _em, -1.2 * _em, -3.6 * _em);
    if (_frame.width() < 2 * _em || _frame.height() < 2 * _em) return;
    paintAxes();
    paintEnvelope();
    paintCurve(_plot.curves->average, averagePen());
    paintCurve(_plot.curves->observed, observedPen());
    paintLegend();
  }

private:
  void paintTextAlone()
  {
    _painter.setPen(_colors.text);
    _painter.drawText(_area, Qt::AlignCenter | Qt::TextWordWrap, _plot.title);
  }

  QPen averagePen() const { return QPen(_colors.text, 0.09 * _em, Qt::DashLine); }
  QPen observedPen() const { return QPen(_colors.observed, 0.16 * _em, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin); }

  double x(double distance) const { return _frame.left() + distance / _last * _frame.width(); }
  double y(double share) const { return _frame.bottom() - share * _frame.height(); }

  void paintAxes()
  {
    for (const double tick : axisTicks(_last, static_cast<int>(_frame.width() / (3.5 * _em))))
      paintTick({x(tick), _frame.bottom()}, {x(tick), _frame.top()}, tick);
    for (const double tick : axisTicks(1, std::min(10, static_cast<int>(_frame.height() / (2 * _em)))))
      paintTick({_frame.left(), y(tick)}, {_frame.right(), y(tick)}, tick);
    _painter.setPen(QPen(_colors.text, 0.06 * _em));
    _painter.drawLine(_frame.bottomLeft(), _frame.bottomRight());
    _painter.drawLine(_frame.bottomLeft(), _frame.topLeft());
    _painter.drawText(QRectF(_area.left(), _area.top(), _area.width(), 2 * _em), Qt::AlignCenter, _plot.title);
    _painter.drawText(QRectF(_frame.left(), _frame.bottom() + 1.7 * _em, _frame.width(), 1.6 * _em), Qt::AlignCenter,
                      _plot.distanceLabel);
    _painter.save();
    _painter.translate(_area.left(), _frame.bottom());
    _painter.rotate(-90);
    _painter.drawText(QRectF(0, 0.3 * _em, _frame.height(), 1.5 * _em), Qt::AlignCenter, text("Cumulative frequency"));
    _painter.restore();
  }

  /// A line of the grid from an axis, and the number at its start.
  void paintTick(const QPointF& start, const QPointF& end, double number)
  {
    _painter.setPen(QPen(_colors.lines, 0.04 * _em));
    _painter.drawLine(start, end);
    _painter.setPen(_colors.text);
    const bool isBelow = start.x() == end.x();
    const QRectF place = isBelow ? QRectF(start.x() - 4 * _em, start.y() + 0.2 * _em, 8 * _em, 1.4 * _em)
                                 : QRectF(start.x() - 4.4 * _em, start.y() - _em, 4 * _em, 2 * _em);
    _painter.drawText(place, isBelow ? Qt::AlignCenter : Qt::AlignRight | Qt::AlignVCenter,
                      QString::number(number, 'g', 6));
  }

  /// A curve as drawn: not all of its points when they lie closer than can be seen.
  QPolygonF polyline(const Vector<double>& values) const
  {
    const Vector<double>& grid = _plot.curves->grid;
    const int numPoints = grid.getSize();
    const int step = 1 + numPoints / maxNumPoints;
    QPolygonF points;
    for (int i = 0; i < numPoints; i += step) points << QPointF(x(grid[i]), y(values[i]));
    points << QPointF(x(grid[numPoints - 1]), y(values[numPoints - 1]));
    return points;
  }

  void paintCurve(const Vector<double>& values, const QPen& pen)
  {
    _painter.setPen(pen);
    _painter.drawPolyline(polyline(values));
  }

  void paintEnvelope()
  {
    QPolygonF band = polyline(_plot.curves->upper);
    const QPolygonF lower = polyline(_plot.curves->lower);
    std::reverse_copy(lower.begin(), lower.end(), std::back_inserter(band));
    _painter.setPen(Qt::NoPen);
    _painter.setBrush(_colors.envelope);
    _painter.drawPolygon(band);
    _painter.setBrush(Qt::NoBrush);
  }

  /// At the lower right, where curves that rise to 1 leave room.
  void paintLegend()
  {
    const QString names[] = {text("observed"), text("average of the model"), text("95% of the model")};
    const QFontMetricsF metrics(_painter.font(), _painter.device());
    double width = 0;
    for (const QString& name : names) width = std::max(width, metrics.horizontalAdvance(name));
    const double left = _frame.right() - width - 3.5 * _em, top = _frame.bottom() - 4.6 * _em;
    QColor veil = _colors.background;
    veil.setAlpha(200);
    _painter.fillRect(QRectF(left - 0.4 * _em, top, width + 3.5 * _em, 4.2 * _em), veil);
    for (int i = 0; i < 3; ++i)
    {
      const double middle = top + (0.7 + 1.4 * i) * _em;
      if (i == 2) _painter.fillRect(QRectF(left, middle - 0.4 * _em, 2.2 * _em, 0.8 * _em), _colors.envelope);
      _painter.setPen(i == 0 ? observedPen() : averagePen());
      if (i < 2) _painter.drawLine(QPointF(left, middle), QPointF(left + 2.2 * _em, middle));
      _painter.setPen(_colors.text);
      _painter.drawText(QRectF(left + 2.7 * _em, middle - _em, width + _em, 2 * _em), Qt::AlignLeft | Qt::AlignVCenter,
                        names[i]);
    }
  }

  QPainter& _painter;
  QRectF _area;
  const SpatialPlot& _plot;
  const SpatialPlotColors& _colors;
  double _em;       // height of a line of text
  double _last = 1; // distance at the right end
  QRectF _frame;    // of the curves
};

QFont printFont()
{
  QFont font = QGuiApplication::font();
  font.setPointSize(printFontSize);
  return font;
}
} // namespace

SpatialPlotColors SpatialPlotColors::of(const QPalette& palette)
{
  SpatialPlotColors colors = forPrint();
  colors.background = palette.color(QPalette::Base);
  colors.text = palette.color(QPalette::Text);
  if (colors.background.lightness() > 127) return colors;
  colors.lines = QColor(80, 80, 80);
  colors.observed = QColor(86, 180, 233);
  colors.envelope = QColor(70, 84, 96);
  return colors;
}

SpatialPlotColors SpatialPlotColors::forPrint()
{
  return {Qt::white, Qt::black, QColor(225, 225, 225), QColor(0, 114, 178), QColor(205, 217, 228)};
}

void paintPlot(QPainter& painter, const QRectF& area, const SpatialPlot& plot, const SpatialPlotColors& colors)
{
  painter.setRenderHint(QPainter::Antialiasing);
  PlotPainter(painter, area, plot, colors).paint();
}

QImage plotPicture(const SpatialPlot& plot)
{
  constexpr double dotsPerPoint = printResolution / 72.0;
  constexpr double inchesPerMeter = 1000 / 25.4;
  QImage picture((printSize * dotsPerPoint).toSize(), QImage::Format_RGB32);
  picture.setDotsPerMeterX(qRound(printResolution * inchesPerMeter));
  picture.setDotsPerMeterY(qRound(printResolution * inchesPerMeter));
  QPainter painter(&picture);
  painter.setFont(printFont());
  paintPlot(painter, picture.rect(), plot, SpatialPlotColors::forPrint());
  return picture;
}

QByteArray plotDrawing(const SpatialPlot& plot)
{
  QBuffer buffer;
  QSvgGenerator drawing;
  drawing.setOutputDevice(&buffer);
  drawing.setResolution(72);
  drawing.setSize(printSize.toSize());
  drawing.setViewBox(QRectF(QPointF(), printSize));
  drawing.setTitle(plot.title.toHtmlEscaped()); // which it does not do itself
  QPainter painter(&drawing);
  painter.setFont(printFont());
  paintPlot(painter, QRectF(QPointF(), printSize), plot, SpatialPlotColors::forPrint());
  painter.end();
  return buffer.data();
}
