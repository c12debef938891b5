#include "slice/image/nyxsliceimageserverdata.h"

#include "image/imagesource.h"
#include "model/stackslice.h"
#include "slice/image/nyxsliceimageproxy.h"

NYXSliceImageServerData::NYXSliceImageServerData(const NYXSliceImageProxy& proxy, NYXImageReader::ReadFunction read)
  : NYXImageServerData(*proxy.getImageSource(), proxy.key(), std::move(read)),
    _slice(proxy.getSlice()),
    _stack(_slice ? _slice->getStack() : nullptr)
{
}
