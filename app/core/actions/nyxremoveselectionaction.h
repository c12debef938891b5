#pragma once

#include "app/core/actions/nyxitemverticeschangeaction.h"

/// The selected vertices of an item are removed; in reverse mode the others.
class NYXRemoveSelectionAction : public NYXItemVerticesChangeAction
{
public:
  explicit NYXRemoveSelectionAction(ModelItem& item, bool isReverse = false)
    : NYXItemVerticesChangeAction(item, isReverse ? item.selectedVertices() : item.unselectedVertices())
  {
  }

  QString description(bool) const override { return tr("Remove item selection"); }
};
