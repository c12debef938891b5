#pragma once

#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyxsliceitemlayer.h"

#include <QTimer>
#include <QTransform>

class ModelItem;
class NYXSliceImageProxy;
class StackSlice;

/// What a slice canvas shows.
enum class CanvasMode
{
  Background = 0, ///< the image only
  Foreground = 1, ///< the items only
  Allground = 2   ///< the image and the items over it
};

/// Shows the image of a slice and the items drawn on it.
class NYXSliceWidgetCanvas : public NYXImageWidgetCanvas
{
  Q_OBJECT

public:
  explicit NYXSliceWidgetCanvas(QWidget* parent = nullptr);

  bool hasSlice() const { return _slice != nullptr; }
  /// \throw ProgramError  none was set
  StackSlice& getSlice() const;
  /// Borrowed until another one is set; nullptr for none. The proxy gets the slice's image, which nobody loads yet.
  void setSlice(StackSlice* slice);
  void clear() override;
  NYXSliceImageProxy& getSliceImageProxy();

  CanvasMode getCanvasMode() const { return _mode; }
  void setCanvasMode(CanvasMode mode) { _mode = mode; }

  /// Repaints one item of the slice, also one that has just left it, or all of them.
  /// @{
  void repaintItem(const ModelItem& item);
  void repaintItems();
  /// @}

  /// The items whose boxes come within a distance of a position, both in pixels of the image; in order of their
  /// addresses.
  std::vector<const ModelItem*> itemsNear(const QPoint& position, int distance)
  {
    return _items.itemsNear(position, distance);
  }

protected:
  std::unique_ptr<NYXImageProxy> newImageProxy() const override;
  /// As large as the items need it.
  QSize fallbackImageSize() const override;
  bool isImageShown() const override { return _mode != CanvasMode::Foreground; }
  void paintForeground(QPainter& painter) override;
  /// From pixels of the image, whose centres are whole numbers, to those of the canvas.
  QTransform itemsToCanvas() const;

private:
  void refineItems();

  StackSlice* _slice = nullptr;
  CanvasMode _mode = CanvasMode::Allground;
  NYXSliceItemLayer _items;
  QTimer _refinement; // runs while items are drawn with thin lines for lack of time
};
