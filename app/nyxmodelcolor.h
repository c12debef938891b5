#pragma once

#include "model/modelitemproperties.h"

#include <QColor>

/// The colour of items with these properties.
inline QColor colorOf(const ModelItemProperties& properties)
{
  const ModelItemProperties::Color color = properties.getColor();
  return QColor(color[0], color[1], color[2]);
}
