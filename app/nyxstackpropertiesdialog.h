#pragma once

#include "app/nyxstackdialog.h"

class NYXStackPropertiesEditor;

/// The dialog "Stack properties". Each Apply or OK is one step of the stack's history.
class NYXStackPropertiesDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  explicit NYXStackPropertiesDialog(NYXStack& stack, QWidget* parent = nullptr);

protected:
  void change() override;
  void refresh() override;

private:
  void updateButtons();

  NYXStackPropertiesEditor* _editor;
};
