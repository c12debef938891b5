#pragma once

#include "app/core/actions/nyxitemaction.h"

/// An item gets another triangulation tag.
class NYXItemTriangulationTagAction : public NYXItemAction
{
public:
  NYXItemTriangulationTagAction(ModelItem& item, CurveStackTriangulationContourTag tag)
    : NYXItemAction(item), _oldTag(item.getTriangulationTag()), _tag(tag)
  {
  }

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _tag == _oldTag; }

private:
  void postEvents() override { post(NYXModelItemTriangulationTagEvent(getItem())); }
  bool isEqual(const NYXAction& other) const override;

  CurveStackTriangulationContourTag _oldTag;
  CurveStackTriangulationContourTag _tag;
};
