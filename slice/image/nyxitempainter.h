#pragma once

#include <QRectF>

class ModelItem;
class QPainter;
class QTransform;

/// How model items are drawn on a slice.
enum class NYXItemDetail
{
  Full, ///< with a halo that keeps them visible on bright tissue, and at their own line width
  Thin  ///< as lines one pixel wide, for views with very many of them
};

/// Draws an item; `toCanvas` maps image pixels, whose centres are whole numbers, to the painter's pixels. Lines and
/// points keep their size on the screen. Curves with many more vertices than pixels are drawn reduced.
void drawModelItem(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, NYXItemDetail detail);

/// How far an item is drawn beyond its vertices at the most, in pixels of the screen.
double modelItemMargin(const ModelItem& item);
