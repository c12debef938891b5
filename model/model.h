#pragma once

#include "image/activecontour/snakeconfig.h"
#include "model/keptstatements.h"
#include "model/modelitemowner.h"
#include "model/modelitemproperties.h"
#include "model/modelproperties.h"

#include <optional>
#include <string>

class Stack;

/// Named class of structures: one geometry for all its items, and how they are displayed.
///
/// The items belong to their slices; a model that is destroyed leaves them without a model.
class Model : public ModelItemOwner, public KeptStatements
{
public:
  Model() = default;
  /// \throw ValueError  the name cannot be stored
  explicit Model(const std::string& name) { setName(name); }
  ~Model() override;

  const std::string& getName() const { return _name; }
  /// \throw ValueError  the name cannot be stored
  void setName(const std::string& name);

  /// The stack that holds this model, or nullptr, and the place there.
  Stack* getStack() const { return _stack; }
  int getIndex() const { return _index; }
  /// Called by the stack.
  void setStack(Stack* stack, int index);

  const ModelProperties& getProperties() const { return _properties; }
  ModelProperties& getProperties() { return _properties; }
  void setProperties(const ModelProperties& properties) { _properties = properties; }
  MPrimitive getGeometry() const { return _properties.getGeometry(); }

  /// Defaults for the items: what an item does not define counts as said here.
  const ModelItemProperties& getItemProperties() const { return _itemProperties; }
  ModelItemProperties& getItemProperties() { return _itemProperties; }
  void setItemProperties(const ModelItemProperties& properties) { _itemProperties = properties; }

  /// How the active contour refines this model's curves. getSnakeConfig() is unchecked.
  bool hasSnakeConfig() const { return _snakeConfig.has_value(); }
  const SnakeConfig& getSnakeConfig() const { return *_snakeConfig; }
  void setSnakeConfig(const SnakeConfig& config) { _snakeConfig = config; }

  /// Whether some item of `other` is partially contained in an item of this model on the same slice.
  bool partiallyContains(const Model& other) const;

private:
  void noteMembership(ModelItem& item, bool isMember) override;

  Stack* _stack = nullptr;
  int _index = -1;
  std::string _name;
  ModelProperties _properties;
  ModelItemProperties _itemProperties;
  std::optional<SnakeConfig> _snakeConfig;
};
