#pragma once

#include <QDialogButtonBox>
#include <QString>

class QDialog;
class QWidget;

/// The buttons of a dialog, with their fixed texts whatever the desktop calls them. Cancel and Close reject the dialog.
QDialogButtonBox* createButtonBox(QDialogButtonBox::StandardButtons buttons, QDialog& dialog);

/// A warning that shows names word for word.
void showWarning(QWidget* parent, const QString& title, const QString& text);
