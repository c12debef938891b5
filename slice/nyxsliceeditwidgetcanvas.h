#pragma once

#include "slice/image/nyxslicewidgetcanvas.h"

/// A slice canvas with an item that is being made: not part of the slice yet, and painted with the slice's items.
class NYXSliceEditWidgetCanvas : public NYXSliceWidgetCanvas
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetCanvas(QWidget* parent = nullptr);

  /// Borrowed; nullptr for none.
  void setExtraItem(const ModelItem* item);
  const ModelItem* getExtraItem() const { return _extraItem; }

  /// Items of another slice that are shown faintly, below those of the slice. Borrowed; nullptr for none.
  void setFaintItems(const StackSlice* items);
  const StackSlice* getFaintItems() const { return _faintItems; }

  /// Draws an item of the slice so that it stands out.
  void highlight(QPainter& painter, const ModelItem& item, const QColor& color) const;

protected:
  void paintForeground(QPainter& painter) override;

private:
  const ModelItem* _extraItem = nullptr;
  const StackSlice* _faintItems = nullptr;
  NYXSliceItemLayer _faintLayer;
};
