#pragma once

#include <QDialogButtonBox>
#include <QSize>
#include <QString>

class QDialog;
class QWidget;

/// The buttons of a dialog, with their fixed texts whatever the desktop calls them. Cancel and Close reject the dialog.
QDialogButtonBox* createButtonBox(QDialogButtonBox::StandardButtons buttons, QDialog& dialog);

/// A size in average characters and lines of a window's font.
QSize textSize(const QWidget& window, int numCharacters, int numLines);

/// Gives a dialog, known by its object name, the size that it had when it was closed last; the first time, one in
/// average characters and lines. Never more than the screen has, or less than the content needs.
void rememberSize(QDialog& dialog, int numCharacters, int numLines);

/// A warning that shows names word for word.
void showWarning(QWidget* parent, const QString& title, const QString& text);
