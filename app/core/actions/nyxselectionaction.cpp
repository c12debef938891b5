#include "app/core/actions/nyxselectionaction.h"

#include "numeric/exception.h"

NYXSelectionAction::NYXSelectionAction(ModelItem& item, ModelItemSelection selection)
  : NYXItemAction(item), _oldSelection(item.getSelection()), _selection(std::move(selection))
{
  if (_selection.getNumVertices() != _oldSelection.getNumVertices())
    throw SizeError("NYXSelectionAction::NYXSelectionAction(ModelItem&, ModelItemSelection)",
                    "The selection has another number of vertices than the item");
}

void NYXSelectionAction::apply()
{
  getItem().getSelection() = _selection;
  NYXItemAction::apply();
}

void NYXSelectionAction::revert()
{
  getItem().getSelection() = _oldSelection;
  NYXItemAction::revert();
}

QString NYXSelectionAction::description(bool) const
{
  return tr("Item selection");
}

bool NYXSelectionAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXSelectionAction&>(other);
  return &getItem() == &action.getItem() && _selection == action._selection;
}
