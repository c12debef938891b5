#pragma once

#include "slice/image/nyximageviewport.h"
#include "slice/image/nyxitempainter.h"

#include <QImage>
#include <QRect>
#include <QRegion>

#include <unordered_map>

class ModelItem;
class QTransform;
class StackSlice;

/// The items of a slice, drawn into a picture of the canvas that is kept from frame to frame.
///
/// Panning moves the picture and draws the strips that come into view, an edit draws the place of the edited item.
/// Views with so many vertices that a frame could not wait for them are drawn with thin lines at once, and in full by
/// refine(), step by step, when there is time.
class NYXSliceItemLayer
{
public:
  /// Borrowed; nullptr for none.
  void setSlice(const StackSlice* slice);

  /// Anything may have changed.
  void invalidate();
  /// An item of the slice is new, has changed or has left the slice; it is looked up by its address only.
  void invalidate(const ModelItem& item);

  /// Brings the picture up to date: device pixels of the viewport's canvas, transparent where no item is.
  const QImage& update(const NYXImageViewport& viewport, double pixelRatio);

  /// Whether items were drawn with thin lines that refine() is to replace.
  bool needsRefinement() const { return _needsRefinement; }
  /// Draws items in full for some milliseconds. Returns true when all are drawn and the picture is the full one.
  bool refine(int milliseconds);

private:
  /// What the picture shows: device pixels per image pixel, the place of the image's corner, and the size.
  struct Frame
  {
    double scaleX = 0;
    double scaleY = 0;
    QPoint offset; ///< of the canvas's corner from the image's, in device pixels
    QSize size;
    double pixelRatio = 1;

    bool hasSameScale(const Frame& other) const;
    QTransform toCanvas() const;
  };

  struct Bounds
  {
    QRect pixels;    ///< of the image; empty without vertices
    long numVertices; ///< or runs
    double margin;   ///< around it, in pixels of the screen
  };

  const Bounds& boundsOf(const ModelItem& item);
  QRect canvasRect(const Bounds& bounds) const;
  /// The item's place; forgets what was known of it.
  void addStale(const ModelItem& item);
  void scroll(const QPoint& offset);
  void paint(const QRegion& region);
  void paintItems(QPainter& painter, const QRegion& region, NYXItemDetail detail);
  long visibleComplexity(const QRegion& region);
  bool isOnSlice(const ModelItem& item) const;

  const StackSlice* _slice = nullptr;
  std::unordered_map<const ModelItem*, Bounds> _bounds; // of items that were asked for
  Frame _frame;
  QImage _picture;
  QRegion _stale; // of the picture
  bool _isAllStale = true;
  bool _needsRefinement = false;
  QImage _refined;      // the full picture while it is being drawn
  int _numRefined = 0;  // items drawn into it
};
