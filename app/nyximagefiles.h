#pragma once

#include <QStringList>

class QWidget;

/// Asks for image files in a dialog titled "Select image files", and remembers their folder. In the order of their
/// names, numbers in them by their values; empty when the user cancels.
QStringList chooseImageFiles(QWidget* parent, const QString& filter);

/// Puts names in alphabetical order, numbers in them in that of their values.
void sortByNumbers(QStringList& names);
