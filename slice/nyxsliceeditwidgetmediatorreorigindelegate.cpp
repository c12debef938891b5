#include "slice/nyxsliceeditwidgetmediatorreorigindelegate.h"

#include "model/modelitem.h"
#include "slice/image/nyxintegerbox.h"

#include <QFormLayout>
#include <QSpinBox>

#include <algorithm>

bool NYXSliceEditWidgetMediatorReoriginDelegate::isApplicable(const ModelItem& item) const
{
  return item.isClosed() && item.getSize() > 0;
}

void NYXSliceEditWidgetMediatorReoriginDelegate::addControls(QFormLayout& form, const ModelItem& item)
{
  _origin = 0;
  _number = new NYXIntegerBox;
  _number->setObjectName("origin");
  _number->setRange(0, item.getSize() - 1);
  _number->setToolTip(tr("Number of the vertex that becomes the first one"));
  connect(_number, QOverload<int>::of(&QSpinBox::valueChanged), this,
          [this](int value)
          {
            _origin = value;
            updatePreview();
          });
  form.addRow("Origin", _number);
}

std::optional<Vertices<int>> NYXSliceEditWidgetMediatorReoriginDelegate::changed(const ModelItem& item) const
{
  Vertices<int> vertices = item.getVertices();
  vertices.setOrigin(std::min(_origin, vertices.getNumVertices() - 1));
  return vertices;
}

void NYXSliceEditWidgetMediatorReoriginDelegate::press(const NYXPointerEvent& event)
{
  const int vertex = firstItem().findNearestVertex(pointOnImage(event.position), pickTolerance(firstItem()));
  if (vertex >= 0 && _number) _number->setValue(vertex);
}
