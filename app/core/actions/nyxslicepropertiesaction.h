#pragma once

#include "app/core/actions/nyxsliceaction.h"
#include "image/pixelcalibration.h"

#include <string>

/// What the user can set of a slice.
struct NYXSliceProperties
{
  /// How the depth of a slice is told.
  enum Position
  {
    Default,  ///< at the stack's default distance to the slice before
    Relative, ///< at a distance of its own
    Absolute  ///< by itself
  };

  NYXSliceProperties() = default;
  explicit NYXSliceProperties(const StackSlice& slice);
  /// \throw ValueError  the name cannot be stored
  void setTo(StackSlice& slice) const;
  bool operator==(const NYXSliceProperties& other) const = default;

  std::string name;
  std::string annotation;
  PixelCalibration pixelCalibration;
  float thickness = 0;
  Position position = Default;
  float depth = 0; ///< distance or absolute depth; 0 by default
};

/// A slice gets another name or other properties. The stack's notes of the last segmented and registered slices follow.
class NYXSlicePropertiesAction : public NYXSliceAction
{
public:
  /// \throw UsageError  the slice is in no open stack
  NYXSlicePropertiesAction(StackSlice& slice, NYXSliceProperties properties);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _properties == _oldProperties; }

private:
  bool changes(const StackSlice& slice) const override { return &slice == &getSlice(); }
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;
  void rename(const std::string& name);

  NYXSliceProperties _oldProperties;
  NYXSliceProperties _properties;
  bool _isLastSegmented = false;
  bool _isLastRegistered = false;
};
