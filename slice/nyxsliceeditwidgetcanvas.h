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

protected:
  void paintForeground(QPainter& painter) override;

private:
  const ModelItem* _extraItem = nullptr;
};
