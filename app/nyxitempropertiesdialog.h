#pragma once

#include "app/nyxpropertyform.h"
#include "app/nyxstackdialog.h"
#include "model/modelitemproperties.h"

class ModelItem;
class QFormLayout;
class StackSlice;

/// The dialog "Item properties": how what is selected on a slice is drawn. A property that is not the items' own is
/// that of their model. Each Apply is one step of the slice's history.
class NYXItemPropertiesDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  NYXItemPropertiesDialog(NYXStack& stack, StackSlice& slice, QWidget* parent = nullptr);

protected:
  void change() override;
  void refresh() override;
  void modelItemSelectEvent(const NYXModelItemSelectEvent&) override { refreshSoon(); }
  void modelItemAttributeEvent(const NYXModelItemAttributeEvent&) override { refreshSoon(); }
  void processSliceAction(NYXSliceAction& action) override;

private:
  /// The properties of an item and, for those that it leaves undefined, what its model says.
  struct Properties
  {
    explicit Properties(const ModelItem& item);

    ModelItemProperties own;
    ModelItemProperties effective;
  };

  QWidget* createForm();
  /// A row with a check box for a property of the items' own and a control for its value.
  template <class Control, class Get, class Set>
  void addRow(QFormLayout& form, const QString& label, const QString& name, const QString& toolTip, Control& control,
              bool (ModelItemProperties::*isDefined)() const, Get get, Set set);

  StackSlice& _slice;
  NYXPropertyForm<Properties> _form;
};
