#pragma once

#include <QDialog>

/// Shows what the reader logged about a stack file, and whether the stack is opened all the same.
class NYXStackErrorDialog : public QDialog
{
public:
  NYXStackErrorDialog(const QString& filename, const QStringList& log, bool isOpened, QWidget* parent);
};
