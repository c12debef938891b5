#include "app/core/actions/nyxitemselectionattributesaction.h"

namespace
{
/// Sets the properties of a whole item.
class AttributesAction : public NYXItemAction
{
public:
  AttributesAction(ModelItem& item, const ModelItemProperties& properties)
    : NYXItemAction(item), _oldProperties(item.getProperties()), _properties(properties)
  {
  }

  void apply() override
  {
    getItem().setProperties(_properties);
    NYXItemAction::apply();
  }

  void revert() override
  {
    getItem().setProperties(_oldProperties);
    NYXItemAction::revert();
  }

  bool isNull() const override { return _properties == _oldProperties; }

private:
  void postEvents() override { post(NYXModelItemAttributeEvent(getItem())); }

  ModelItemProperties _oldProperties;
  ModelItemProperties _properties;
};
} // namespace

NYXItemSelectionAttributesAction::NYXItemSelectionAttributesAction(ModelItem& item,
                                                                   const ModelItemProperties& properties)
  : NYXItemSelectionAction(item), _properties(properties)
{
  std::unique_ptr<ModelItem> points = selectedPoints();
  if (!points || item.getProperties() == properties)
  {
    append(std::make_unique<AttributesAction>(item, properties));
    return;
  }
  points->setProperties(properties);
  split(std::move(points));
}

QString NYXItemSelectionAttributesAction::description(bool) const
{
  return tr("Item properties");
}

bool NYXItemSelectionAttributesAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXItemSelectionAttributesAction&>(other);
  return &getItem() == &action.getItem() && _properties == action._properties;
}
