#pragma once

#include <QFileDialog>

/// A dialog for files that starts in the folder where the last one ended. The name of a file to write gets a suffix
/// when it has none of those of the name filters: that of the chosen filter.
class NYXFileDialog : public QFileDialog
{
public:
  enum Purpose
  {
    Reading,
    Writing
  };

  NYXFileDialog(QWidget* parent, const QString& name, const QString& title, Purpose purpose = Reading);

  /// Gives it the size that it had when it was closed last, under its name.
  void rememberSize();
  /// Shows the dialog. \return what the user chose; empty when it was cancelled
  QStringList ask();

protected:
  void accept() override;

private:
  void completeName();

  Purpose _purpose;
};
