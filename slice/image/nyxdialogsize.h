#pragma once

#include <QSize>

class QDialog;
class QWidget;

/// A size in average characters and lines of a window's font.
QSize textSize(const QWidget& window, int numCharacters, int numLines);

/// Gives a dialog, known by its object name, the size that it had when it was closed last; the first time, one in
/// average characters and lines. Never more than the screen has, or less than the content needs.
void rememberSize(QDialog& dialog, int numCharacters, int numLines);
