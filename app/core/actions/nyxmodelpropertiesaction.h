#pragma once

#include "app/core/actions/nyxmodelaction.h"
#include "model/modelitemproperties.h"
#include "model/modelproperties.h"

#include <string>

/// What the user can set of a model.
struct NYXModelProperties
{
  NYXModelProperties() = default;
  explicit NYXModelProperties(const Model& model);
  /// \throw ValueError  the name cannot be stored
  void setTo(Model& model) const;
  bool operator==(const NYXModelProperties& other) const = default;

  std::string name;
  ModelProperties properties;
  ModelItemProperties itemProperties; ///< defaults for the items
};

/// A model gets another name or other properties.
class NYXModelPropertiesAction : public NYXModelAction
{
public:
  /// \throw UsageError  the model is in no open stack, or has items that are of another kind in the new geometry
  NYXModelPropertiesAction(Model& model, NYXModelProperties properties);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _properties == _oldProperties; }
  /// A change of geometry does.
  bool touchesSlices() const override;

private:
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;

  NYXModelProperties _oldProperties;
  NYXModelProperties _properties;
};
