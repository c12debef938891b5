#pragma once

#include "image/imagesourcefile.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "tests/support/curves.h"

#include <memory>
#include <string>

/// Adds a slice with pixels of size 1, and an image of the given size that need not exist; none for a width of 0.
inline StackSlice& addSlice(Stack& stack, int width, int height, const Registration& registration = Registration())
{
  auto slice = std::make_unique<StackSlice>();
  if (width > 0)
  {
    ImageSourceFile source("missing.tif");
    source.setFallbackSize(height, width);
    slice->setImageSource(source);
  }
  slice->setRegistration(registration);
  slice->setName("slice " + std::to_string(stack.getNumSlices()));
  return stack.addSlice(std::move(slice));
}

inline void setPixelSize(StackSlice& slice, float width, float height)
{
  PixelCalibration calibration;
  calibration.clearFlags();
  calibration.setPixelWidth(width);
  calibration.setPixelHeight(height);
  calibration.compute();
  slice.setPixelCalibration(calibration);
}

inline Model& addModel(Stack& stack, const std::string& name, MPrimitive geometry)
{
  auto model = std::make_unique<Model>(name);
  model->getProperties().setGeometry(geometry);
  return stack.addModel(std::move(model));
}

/// Draws an item through pixels (u, v).
inline ModelItem& addItem(Model& model, StackSlice& slice, const std::vector<std::vector<int>>& pixels)
{
  ModelItem& item = ModelItem::create(model, slice);
  item.setVertices(curveThrough<int>(pixels));
  return item;
}
