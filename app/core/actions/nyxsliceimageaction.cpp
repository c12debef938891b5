#include "app/core/actions/nyxsliceimageaction.h"

#include "app/core/nyxstack.h"
#include "image/imagesourcefile.h"

NYXSliceImageAction::NYXSliceImageAction(StackSlice& slice, const ImageSource& source)
  : NYXSliceAction(slice),
    _oldSource(slice.getImageSource() ? slice.getImageSource()->clone() : std::make_unique<ImageSourceFile>()),
    _source(source.clone())
{
}

void NYXSliceImageAction::apply()
{
  getSlice().Slice::setImageSource(*_source);
  NYXSliceAction::apply();
}

void NYXSliceImageAction::revert()
{
  getSlice().Slice::setImageSource(*_oldSource);
  NYXSliceAction::revert();
}

QString NYXSliceImageAction::description(bool isDetailed) const
{
  return isDetailed ? tr("Slice image: ") + QString::fromStdString(getSlice().getName()) : tr("Slice image");
}

/// There is no event of its own: who shows the image or counts on its scale listens to this one.
void NYXSliceImageAction::postEvents()
{
  post(NYXSliceImageCalibrationEvent(getSlice()));
}
