#pragma once

#include <QDialog>
#include <QStringList>

class QCheckBox;
class QDialogButtonBox;
class QListWidget;
class QPushButton;

/// Asks for the image files that become the slices of a new stack, in their order.
class NYXNewStackDialog : public QDialog
{
  Q_OBJECT

public:
  explicit NYXNewStackDialog(QWidget* parent = nullptr);

  QStringList getFiles() const;
  void addFiles(const QStringList& files);
  bool usesFileCalibration() const;

private:
  void chooseFiles();
  void removeSelected();
  void move(int distance);
  void updateButtons();

  QListWidget* _files;
  QPushButton* _remove;
  QPushButton* _up;
  QPushButton* _down;
  QCheckBox* _useCalibration;
  QDialogButtonBox* _buttons;
};
