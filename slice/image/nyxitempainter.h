#pragma once

#include <QRectF>

class ModelItem;
class QColor;
class QPainter;
class QTransform;

/// How model items are drawn on a slice.
enum class NYXItemDetail
{
  Full, ///< with a halo that keeps them visible on bright tissue, and at their own line width
  Thin  ///< as lines one pixel wide, for views with very many of them
};

/// Draws an item; `toCanvas` maps image pixels, whose centres are whole numbers, to the painter's pixels. Lines and
/// points keep their size on the screen. Curves with many more vertices than pixels are drawn reduced, and what lies
/// outside of `visible`, the painter's clip or a rectangle around it, may be left out.
void drawModelItem(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible,
                   NYXItemDetail detail);

/// Draws the curve or region again in a colour, so that it stands out. Points are left alone.
void highlightModelItem(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible,
                        const QColor& color);

/// How far an item is drawn beyond its vertices at the most, in pixels of the screen.
double modelItemMargin(const ModelItem& item);
