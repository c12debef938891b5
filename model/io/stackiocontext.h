#pragma once

#include "model/modelitemproperties.h"
#include "model/stack.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>

/// What the statements read so far have made current: the objects that the next statements apply to.
class StackIOContext
{
public:
  /// What must be current for a statement to be valid.
  enum class Need
  {
    Nothing,
    Stack,
    StackOrSlice, ///< the slice when one is current, else the stack
    Slice,
    Mosaic,        ///< a slice whose image is a mosaic
    StandardImage, ///< and its samples
    Sample,
    Calibrated, ///< what a calibration curve is stated for: the standard image when one is current, else the slice
    Curve,      ///< the calibration curve stated last
    Model,
    ItemProperties, ///< the model's defaults behind "MODEL", the item's own behind "MODELITEM"
    Item,
    Pose
  };

  /// Kinds of objects that statements open.
  enum class Kind
  {
    Slice,
    StandardImage,
    Sample,
    Curve,
    Model,
    Item,
    Pose
  };

  StackIOContext() = default;
  explicit StackIOContext(const std::string& stackFileName);

  const std::string& getStackFileName() const { return _stackFileName; }
  /// The directory against which image file names are resolved now.
  const std::string& getImagesPath() const { return _imagesPath; }
  /// Sets it, itself resolved against the stack file's directory.
  void setImagesPath(const std::string& path);
  /// Absolute name of an image file; an empty name stays empty.
  std::string resolved(const std::string& imageFileName) const;

  bool fulfils(Need need) const;

  Stack* getStack() const { return _stack; }
  StackSlice* getSlice() const { return _slice; }
  StandardImage* getStandardImage() const { return _standardImage; }
  StandardSample& getSample() const { return _standardImage->getSamples().back(); }
  /// What a calibration curve is stated for now, or nullptr.
  Calibrated* getCalibrated() const;
  /// What has the calibration curve that was stated last, or nullptr.
  Calibrated* getCurveOwner() const { return _curveOwner; }
  Model* getModel() const { return _model; }
  ModelItem* getItem() const { return _item; }
  Pose* getPose() const { return _pose; }
  /// The item properties that statements apply to now, or nullptr.
  ModelItemProperties* getItemProperties() const { return _itemProperties; }
  /// What holds statements that are kept: the object opened last (of an item its model), the stack behind one that
  /// failed to open; nullptr before the stack.
  KeptStatements* getKeeper() const { return _keeper; }
  float getRelativePosition() const { return _relativePosition; }
  void setRelativePosition(float distance) { _relativePosition = distance; }

  void openStack(Stack& stack);
  /// Makes a new object of the stack current. Opening a model closes the item; opening a slice, a standard image, a
  /// model or a pose closes the standard image, its sample and the calibration curve.
  void openSlice(StackSlice& slice);
  void openStandardImage(StandardImage& image);
  void openSample() { _hasSample = true; }
  void openCurve() { _curveOwner = getCalibrated(); }
  void openModel(Model& model);
  void openItem(ModelItem& item);
  void openPose(Pose& pose);
  /// Notes that a statement failed to open an object: what follows must not change the one that was current.
  void failToOpen(Kind kind);

  /// The slice and the model of a name, the first one on a duplicate; the current model comes before others.
  StackSlice* findSlice(const std::string& name) const;
  Model* findModel(const std::string& name) const;

private:
  void closeCalibration();

  std::string _stackFileName;
  std::filesystem::path _stackDirectory;
  std::string _imagesPath;
  Stack* _stack = nullptr;
  StackSlice* _slice = nullptr;
  Model* _model = nullptr;
  ModelItem* _item = nullptr;
  Pose* _pose = nullptr;
  ModelItemProperties* _itemProperties = nullptr;
  KeptStatements* _keeper = nullptr;
  bool _hasFailedSlice = false;
  StandardImage* _standardImage = nullptr;
  bool _hasFailedStandardImage = false;
  bool _hasSample = false; // the last one of the standard image
  Calibrated* _curveOwner = nullptr;
  float _relativePosition = 0;
  std::unordered_map<std::string, StackSlice*> _slicesByName;
  std::unordered_map<std::string, Model*> _modelsByName;
};
