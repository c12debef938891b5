#pragma once

#include "viewer/scene/sceneexport.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

/// Asks where and how the surfaces that are shown are written.
class NYXSurfaceExportDialog : public QDialog
{
  Q_OBJECT

public:
  explicit NYXSurfaceExportDialog(QWidget* parent);

  /// Without the prefix of the files' names.
  SurfaceExport target() const;

private:
  void chooseFolder();
  void update();

  QLineEdit* _folder;
  QComboBox* _format;
  QCheckBox* _isClosed;
  QPushButton* _export;
};
