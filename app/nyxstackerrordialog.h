#pragma once

#include <QDialog>

/// Shows what the reader logged about a stack file.
class NYXStackErrorDialog : public QDialog
{
public:
  NYXStackErrorDialog(const QString& filename, const QStringList& log, QWidget* parent);
};
