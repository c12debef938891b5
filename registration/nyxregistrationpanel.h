#pragma once

#include "model/registration.h"

#include <QWidget>

class QDoubleSpinBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;

/// Manual registration: the registration being edited in numbers, the stored one, and how the two slices are shown.
class NYXRegistrationPanel : public QWidget
{
  Q_OBJECT

public:
  explicit NYXRegistrationPanel(QWidget* parent = nullptr);

  /// The fields show it rounded; what the user does not edit keeps its digits.
  void setRegistration(const Registration& registration);
  const Registration& getRegistration() const { return _registration; }
  /// The one that the slice has.
  void setStoredRegistration(const Registration& registration);
  /// The names of the current slice and of the one before; empty when there is none.
  void setSliceNames(const QString& name, const QString& previousName);
  void setEditable(bool isEditable);
  /// Takes over what is typed in a field and was not taken over yet.
  void commit();
  void setTransparency(int percent);

signals:
  void registrationChanged(const Registration& registration);
  void transparencyChanged(int percent);
  void applyClicked();
  void resetClicked();
  void fitContoursClicked();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  QSpinBox* addShift(QFormLayout& form, const QString& label, const QString& toolTip, const QString& name,
                     void (Registration::*set)(int));
  QDoubleSpinBox* addAngle(QFormLayout& form);
  QPushButton* addButton(const QString& text, const QString& toolTip, const QString& name);
  void createSlider();
  void layOut();
  void takeEdit(const Registration& registration);
  void showChange();

  Registration _registration;
  Registration _stored;
  bool _isEditable = false;
  QLabel* _slices;
  QGroupBox* _fields;
  QSpinBox* _horizontalShift;
  QSpinBox* _verticalShift;
  QDoubleSpinBox* _angle;
  QLabel* _storedText;
  QPushButton* _apply;
  QPushButton* _reset;
  QPushButton* _fitContours;
  QSlider* _transparency;
};
