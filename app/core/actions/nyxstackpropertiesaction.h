#pragma once

#include "app/core/actions/nyxstackaction.h"
#include "image/pixelcalibration.h"

#include <string>

/// What the user can set of a stack.
struct NYXStackProperties
{
  NYXStackProperties() = default;
  explicit NYXStackProperties(const NYXStack& stack);
  /// \throw ValueError  the name or the path cannot be stored; the stack is as it was
  void setTo(NYXStack& stack) const;
  bool operator==(const NYXStackProperties& other) const = default;

  std::string name;
  std::string annotation;
  std::string imagesPath;
  bool absoluteImagesPathPolicy = false;
  bool invertZAxis = false;
  float defaultSliceThickness = 0;
  float defaultRelativePosition = 0;
  PixelCalibration defaultPixelCalibration; ///< with the length unit of the stack
};

/// A stack gets another name or other properties. Its slices keep their own.
class NYXStackPropertiesAction : public NYXStackAction
{
public:
  NYXStackPropertiesAction(NYXStack& stack, NYXStackProperties properties);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _properties == _oldProperties; }
  bool touchesSlices() const override { return false; }

private:
  bool changes(const StackSlice& slice) const override;
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;

  NYXStackProperties _oldProperties;
  NYXStackProperties _properties;
};
