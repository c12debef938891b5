#pragma once

#include "app/core/nyxeventclient.h"

#include <QObject>

class NYXPreferencesEditor;
class QDialog;
class QDialogButtonBox;
class QPushButton;

/// Connects the buttons of the preferences dialog with its editor. The dialog owns it.
class NYXPreferencesDialogMediator : public QObject, public NYXEventClient
{
public:
  NYXPreferencesDialogMediator(QDialog& dialog, NYXPreferencesEditor& editor, QDialogButtonBox& buttons);

private:
  void apply();

  NYXPreferencesEditor& _editor;
  QPushButton& _applyButton;
};
