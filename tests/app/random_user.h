#pragma once

#include <QDialog>
#include <QString>

#include <random>
#include <string>

class QFileDialog;
class TemporaryFolder;

/// Somebody who fills in dialogs at random, the same way for the same seed.
class RandomUser
{
public:
  /// Files are looked for and written in the folder.
  RandomUser(unsigned seed, const std::string& folder) : _random(seed), _folder(QString::fromStdString(folder)) {}

  /// From 0 to n - 1.
  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }

  /// Changes some of what the dialog shows, and closes it.
  void useDialog(QDialog& dialog);
  /// As far as no other dialog is needed.
  void changeSomething(const QWidget& window);

private:
  void chooseFile(QFileDialog& dialog);

  std::mt19937 _random;
  QString _folder;
  int _numNames = 0;
};

/// Copies the example stack and its images to a folder. \return the name of the copy
QString copyExample(const TemporaryFolder& folder);
