#include "slice/image/nyxsliceimageproxy.h"

#include "model/modelitem.h"
#include "model/stackslice.h"

namespace
{
/// Large enough for the items; not valid without any.
QSize sizeOfItems(const StackSlice& slice)
{
  QSize size;
  for (int i = 0; i < slice.getNumItems(); ++i)
  {
    const BoundingBox<int> box = slice.getItem(i)->boundingBox();
    if (!box.isEmpty()) size = size.expandedTo(QSize(box.getMaximum()[0] + 1, box.getMaximum()[1] + 1));
  }
  return size.isValid() ? size.expandedTo(QSize(1, 1)) : size;
}
} // namespace

NYXSliceImageProxy::NYXSliceImageProxy(const StackSlice* slice, QObject* parent) : NYXImageProxy(parent)
{
  setSlice(slice);
}

void NYXSliceImageProxy::setSlice(const StackSlice* slice)
{
  _slice = slice;
  setPixelCalibration(slice ? slice->getPixelCalibration() : PixelCalibration());
  setImageSource(slice ? slice->getImageSource() : nullptr);
}

QSize NYXSliceImageProxy::fallbackImageSize(const StackSlice& slice)
{
  const ImageSource* const source = slice.getImageSource();
  if (source != nullptr && source->getFallbackSize1() > 0 && source->getFallbackSize2() > 0)
    return {source->getFallbackSize2(), source->getFallbackSize1()};
  return sizeOfItems(slice);
}
