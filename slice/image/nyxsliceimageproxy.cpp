#include "slice/image/nyxsliceimageproxy.h"

#include "model/stackslice.h"

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
