#pragma once

#include <QDialog>

class QCheckBox;
class QSpinBox;

/// Asks how large a snapshot is, and whether it has a background.
class NYXSnapshotDialog : public QDialog
{
  Q_OBJECT

public:
  /// \param size  of the window's picture in pixels \param largestScale  of its multiples
  NYXSnapshotDialog(const QSize& size, int largestScale, QWidget* parent);

  int scale() const;
  bool isTransparent() const;
  bool isCropped() const;

private:
  QSpinBox* _scale;
  QCheckBox* _isTransparent;
  QCheckBox* _isCropped;
};
