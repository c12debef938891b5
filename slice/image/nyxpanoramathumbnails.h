#pragma once

#include <QObject>
#include <QPixmap>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QTimer>

#include <map>
#include <memory>
#include <vector>

class NYXImageServer;
class NYXSliceImageProxy;
class NYXSlicePixmapCache;
class NYXStack;
class StackSlice;

/// The small pictures of the slices that a panorama shows at the moment.
///
/// Images are read by the stack's panorama image server and kept in its pixmap cache; what is not shown any more before
/// it was loaded is given up. The items are drawn over them in steps of a few milliseconds.
class NYXPanoramaThumbnails : public QObject
{
  Q_OBJECT

public:
  struct Thumbnail
  {
    QRectF place;    ///< in the box into which it is fitted, with square pixels; empty while the size is not known
    QPixmap image;   ///< to be stretched to that; null while it is not loaded
    QPixmap items;   ///< as large as the box; null while none are drawn
    QString problem; ///< why there is no image; empty when nothing failed
  };

  explicit NYXPanoramaThumbnails(QObject* parent);
  ~NYXPanoramaThumbnails() override;

  /// Gives up everything; makes server and cache when the stack has none yet. nullptr for no stack.
  void setStack(NYXStack* stack);
  /// The size of the box, and how many pixels of the screen each of its pixels has.
  void setBox(const QSize& box, double pixelRatio);

  /// Asks for the thumbnails of these slices of the stack and for no others.
  void show(const std::vector<const StackSlice*>& slices);
  /// Of a slice that is shown, or nullptr.
  const Thumbnail* find(const StackSlice& slice) const;

  /// The items of a slice, or of all, may look different.
  /// @{
  void invalidateItems(const StackSlice& slice);
  void invalidateItems();
  /// @}
  /// The slices may have other calibrations: they are to be shown again.
  void reset();
  /// A slice of any stack has another image, or has left the stack.
  void forget(NYXStack& stack, const StackSlice& slice);

signals:
  /// A thumbnail looks different.
  void changed();

private:
  struct Entry
  {
    std::unique_ptr<NYXSliceImageProxy> proxy;
    Thumbnail thumbnail;
    bool areItemsStale = true;
    int number = 0; // in the order in which they were asked for
  };

  void drop(std::vector<const StackSlice*> slices);
  void add(const StackSlice& slice);
  bool isAsLargeAsTheBox(const QPixmap& picture) const;
  void takeImage(const StackSlice& slice);
  void drawStaleItems();
  void drawItems(const StackSlice& slice, Entry& entry) const;

  NYXImageServer* _server = nullptr; // the stack's
  NYXSlicePixmapCache* _cache = nullptr;
  QSize _box;
  double _pixelRatio = 1;
  std::map<const StackSlice*, Entry> _entries;
  std::map<const StackSlice*, QString> _keptKeys; // of the images in the cache, which may have been written anew
  int _numAdded = 0;
  QTimer _drawing; // runs while items are to be drawn
};
