#pragma once

#include "slice/image/nyximageviewport.h"
#include "slice/image/nyxitempainter.h"

#include <QImage>
#include <QRect>
#include <QRegion>

#include <vector>

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

  /// What update() would draw anew, in pixels of the screen.
  QRect staleRect() const;

  /// The items whose boxes come within a distance of a position, both in pixels of the image; in order of their
  /// addresses.
  std::vector<const ModelItem*> itemsNear(const QPoint& position, int distance);

  /// Brings the picture up to date: device pixels of the viewport's canvas, transparent where no item is.
  const QImage& update(const NYXImageViewport& viewport, double pixelRatio);

  /// Whether items were drawn with thin lines that refine() is to replace.
  bool needsRefinement() const { return _needsRefinement; }
  /// Whether refine() has begun and nothing was drawn since that would make it begin anew.
  bool isBeingRefined() const { return !_refined.isNull(); }
  /// Draws items in full for some milliseconds. Returns true when there is nothing more to do before the next update():
  /// the picture is the full one, or it is out of date.
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
    QTransform toCanvas() const; ///< from image pixels, whose centres are whole numbers, to pixels of the screen
  };

  /// An item of the slice, in the slice's order.
  struct Entry
  {
    const ModelItem* item;
    QRect pixels;     ///< of the image; empty without vertices
    long numVertices; ///< or runs
    double margin;    ///< around it, in pixels of the screen
  };

  static Entry entryOf(const ModelItem& item);
  void updateEntries();
  QRect canvasRect(const Entry& entry) const;
  bool isOnSlice(const ModelItem& item) const;
  void scroll(const QPoint& offset);
  void paint(const QRect& rect);
  void prepare(QPainter& painter) const;
  void paintItems(QPainter& painter, const QRect& rect, NYXItemDetail detail) const;
  long visibleComplexity(const QRect& rect) const;

  const StackSlice* _slice = nullptr;
  std::vector<Entry> _entries;
  bool _areEntriesStale = true;
  Frame _frame;
  QImage _picture;
  QRegion _stale; // of the picture
  bool _isAllStale = true;
  bool _needsRefinement = false;
  QImage _refined;             // the full picture while it is being drawn
  std::size_t _numRefined = 0; // items drawn into it
};
