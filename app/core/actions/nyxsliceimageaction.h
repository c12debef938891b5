#pragma once

#include "app/core/actions/nyxsliceaction.h"
#include "image/imagesource.h"

#include <memory>

/// A slice gets another image of the same size.
class NYXSliceImageAction : public NYXSliceAction
{
public:
  /// The name of the image is not resolved against the images path. \throw UsageError  the slice is in no open stack
  NYXSliceImageAction(StackSlice& slice, const ImageSource& source);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;

private:
  bool changes(const StackSlice& slice) const override { return &slice == &getSlice(); }
  void postEvents() override;

  std::unique_ptr<ImageSource> _oldSource;
  std::unique_ptr<ImageSource> _source;
};
