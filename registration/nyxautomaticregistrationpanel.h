#pragma once

#include "registration/nyxautomaticregistrationconfig.h"

#include <QGroupBox>

class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

/// Automatic registration: what it is to do, and how well the slices correlated before and after it.
class NYXAutomaticRegistrationPanel : public QGroupBox
{
  Q_OBJECT

public:
  explicit NYXAutomaticRegistrationPanel(QWidget* parent = nullptr);

  NYXAutomaticRegistrationConfig getConfig() const;
  void setRunnable(bool isRunnable);
  /// Of the grey levels of the two images.
  void setCorrelations(double before, double after);
  void clearCorrelations();

signals:
  void runClicked(const NYXAutomaticRegistrationConfig& config);

private:
  QLabel* addCorrelation(const QString& toolTip, const QString& name);

  QRadioButton* _current;
  QRadioButton* _all;
  QCheckBox* _dark;
  QPushButton* _run;
  QLabel* _before;
  QLabel* _after;
};
