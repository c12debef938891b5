#include "app/core/actions/nyxmodelpropertiesaction.h"

#include "app/core/nyxstack.h"
#include "model/model.h"
#include "numeric/exception.h"

NYXModelProperties::NYXModelProperties(const Model& model)
  : name(model.getName()), properties(model.getProperties()), itemProperties(model.getItemProperties())
{
}

void NYXModelProperties::setTo(Model& model) const
{
  if (name != model.getName()) model.setName(name); // the only one that can fail comes first
  model.setProperties(properties);
  model.setItemProperties(itemProperties);
}

NYXModelPropertiesAction::NYXModelPropertiesAction(Model& model, NYXModelProperties properties)
  : NYXModelAction(model), _oldProperties(model), _properties(std::move(properties))
{
  const bool wasRegion = model.getGeometry() == MPrimitive::Region;
  const bool becomesRegion = _properties.properties.getGeometry() == MPrimitive::Region;
  if (wasRegion != becomesRegion && model.getNumItems() > 0)
    throw UsageError("NYXModelPropertiesAction::NYXModelPropertiesAction(Model&, NYXModelProperties)",
                     "The items of a model with regions cannot become items of vertices, nor the other way round");
}

void NYXModelPropertiesAction::apply()
{
  _properties.setTo(getModel());
  NYXModelAction::apply();
}

void NYXModelPropertiesAction::revert()
{
  _oldProperties.setTo(getModel());
  NYXModelAction::revert();
}

QString NYXModelPropertiesAction::description(bool isDetailed) const
{
  return isDetailed ? tr("Model properties: ") + QString::fromStdString(_properties.name) : tr("Model properties");
}

bool NYXModelPropertiesAction::touchesSlices() const
{
  return _properties.properties.getGeometry() != _oldProperties.properties.getGeometry();
}

void NYXModelPropertiesAction::postEvents()
{
  const NYXModelProperties& former = reverted() ? _properties : _oldProperties;
  post(NYXModelPropertiesEvent(getModel(), former.properties, former.itemProperties));
}

bool NYXModelPropertiesAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXModelPropertiesAction&>(other);
  return &getModel() == &action.getModel() && _properties == action._properties;
}
