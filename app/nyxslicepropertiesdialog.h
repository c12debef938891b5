#pragma once

#include "app/nyxstackdialog.h"

#include <vector>

class NYXSlicePropertiesEditor;
class StackSlice;

/// The dialog "Slice properties" for one or several slices of an open stack. Each Apply or OK is one step of the
/// stack's history. It closes when none of the slices is left.
class NYXSlicePropertiesDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  NYXSlicePropertiesDialog(NYXStack& stack, const std::vector<StackSlice*>& slices, QWidget* parent = nullptr);

protected:
  void change() override;
  void refresh() override;
  void processSliceAction(NYXSliceAction& action) override;

private:
  void updateButtons();

  NYXSlicePropertiesEditor* _editor;
};
