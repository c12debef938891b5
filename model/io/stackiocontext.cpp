#include "model/io/stackiocontext.h"

#include "model/io/imagepath.h"

namespace fs = std::filesystem;

StackIOContext::StackIOContext(const std::string& stackFileName)
  : _stackFileName(stackFileName), _stackDirectory(stackFolder(stackFileName)), _imagesPath(_stackDirectory.string())
{
}

void StackIOContext::setImagesPath(const std::string& path)
{
  _imagesPath = plainPath(_stackDirectory / path).string(); // an absolute path replaces the directory
}

std::string StackIOContext::resolved(const std::string& imageFileName) const
{
  return imageFileName.empty() ? "" : plainPath(fs::path(_imagesPath) / imageFileName).string();
}

bool StackIOContext::fulfils(Need need) const
{
  switch (need)
  {
  case Need::Nothing:
    return true;
  case Need::Stack:
    return _stack;
  case Need::StackOrSlice:
    return _stack && !_hasFailedSlice;
  case Need::Slice:
    return _slice;
  case Need::Mosaic:
    return _slice && _slice->getImageSource()->getType() == ImageSourceType::FileMosaic;
  case Need::StandardImage:
    return _standardImage;
  case Need::Sample:
    return _hasSample;
  case Need::Calibrated:
    return getCalibrated();
  case Need::Curve:
    return _curveOwner;
  case Need::Model:
    return _model;
  case Need::ItemProperties:
    return _itemProperties;
  case Need::Item:
    return _item;
  case Need::Pose:
    return _pose;
  }
  return false;
}

void StackIOContext::openStack(Stack& stack)
{
  if (!_stack) _keeper = &stack;
  if (!_stack) _hasFailedSlice = false; // it failed because there was no stack
  _stack = &stack;
}

void StackIOContext::closeCalibration()
{
  _standardImage = nullptr;
  _hasFailedStandardImage = false;
  _hasSample = false;
  _curveOwner = nullptr;
}

Calibrated* StackIOContext::getCalibrated() const
{
  if (_standardImage) return _standardImage;
  return _hasFailedStandardImage ? nullptr : _slice;
}

void StackIOContext::openStandardImage(StandardImage& image)
{
  closeCalibration();
  _standardImage = &image;
  _keeper = &image;
}

void StackIOContext::openSlice(StackSlice& slice)
{
  closeCalibration();
  _slice = &slice;
  _hasFailedSlice = false;
  _keeper = &slice;
  _slicesByName.try_emplace(slice.getName(), &slice);
}

void StackIOContext::openModel(Model& model)
{
  closeCalibration();
  _model = &model;
  _item = nullptr;
  _itemProperties = &model.getItemProperties();
  _keeper = &model;
  _modelsByName.try_emplace(model.getName(), &model);
}

void StackIOContext::openItem(ModelItem& item)
{
  _item = &item;
  _itemProperties = &item.getProperties();
  _keeper = item.getModel();
}

void StackIOContext::openPose(Pose& pose)
{
  closeCalibration();
  _pose = &pose;
  _keeper = &pose;
}

void StackIOContext::failToOpen(Kind kind)
{
  if (kind == Kind::Curve) _curveOwner = nullptr;
  if (kind == Kind::Sample) _hasSample = false;
  if (kind == Kind::Pose) _pose = nullptr;
  if (kind == Kind::Model) _model = nullptr;
  if (kind == Kind::Model || kind == Kind::Item)
  {
    _item = nullptr;
    _itemProperties = nullptr;
  }
  if (kind == Kind::Slice)
  {
    _slice = nullptr;
    _hasFailedSlice = true;
  }
  const bool isPart = kind == Kind::Curve || kind == Kind::Sample || kind == Kind::Item;
  if (isPart) return;
  closeCalibration();
  _hasFailedStandardImage = kind == Kind::StandardImage;
  _keeper = _stack; // what follows does not belong to the object before either
}

StackSlice* StackIOContext::findSlice(const std::string& name) const
{
  const auto found = _slicesByName.find(name);
  return found == _slicesByName.end() ? nullptr : found->second;
}

Model* StackIOContext::findModel(const std::string& name) const
{
  if (_model && _model->getName() == name) return _model;
  const auto found = _modelsByName.find(name);
  return found == _modelsByName.end() ? nullptr : found->second;
}
