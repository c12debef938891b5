#pragma once

#include <QDialog>

/// The dialog "Preferences": the editor and the buttons OK, Apply and Cancel, driven by a mediator.
class NYXPreferencesDialog : public QDialog
{
public:
  explicit NYXPreferencesDialog(QWidget* parent = nullptr);
};
