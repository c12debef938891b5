#include "app/nyxpreferencesdialogmediator.h"

#include "app/nyxpreferenceseditor.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

NYXPreferencesDialogMediator::NYXPreferencesDialogMediator(QDialog& dialog, NYXPreferencesEditor& editor,
                                                           QDialogButtonBox& buttons)
  : QObject(&dialog), _editor(editor), _applyButton(*buttons.button(QDialogButtonBox::Apply))
{
  _applyButton.setEnabled(false);
  connect(&editor, &NYXPreferencesEditor::preferencesChanged, this, [this] { _applyButton.setEnabled(true); });
  connect(&_applyButton, &QPushButton::clicked, this, &NYXPreferencesDialogMediator::apply);
  connect(&buttons, &QDialogButtonBox::accepted, this, &NYXPreferencesDialogMediator::apply);
  connect(&buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
}

void NYXPreferencesDialogMediator::apply()
{
  _editor.apply();
  _applyButton.setEnabled(false);
  notifyEvent(NYXPreferencesEvent());
}
