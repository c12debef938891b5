#pragma once

#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/nyxpropertyform.h"

#include <QWidget>

class NYXActionStep;
class NYXCalibrationEditor;
class NYXNameEdit;
class NYXNumberBox;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;

/// The properties of a stack, and what its slices take over from them.
class NYXStackPropertiesEditor : public QWidget
{
  Q_OBJECT

public:
  explicit NYXStackPropertiesEditor(NYXStack& stack, QWidget* parent = nullptr);

  /// Shows the stack as it is now; what the user has changed stays.
  void refresh();
  bool isChanged() const;
  /// Why the changes cannot be applied, or empty.
  QString refusal() const;
  /// Makes the changes and forgets them. \throw Exception  they cannot be made
  void apply(NYXActionStep& step);

signals:
  /// The user has changed something.
  void edited();

private:
  QWidget* createStackGroup();
  QWidget* createCalibrationGroup();
  QWidget* createDepthGroup();
  QWidget* createImagesGroup();
  QRadioButton* createChoice(const char* name, const QString& text, const QString& toolTip);

  int chosenScale() const;
  bool isUnitChanged() const;
  /// What the lengths shown are multiplied by, compared with those of the stack.
  double conversionFactor() const;
  void chooseUnit();
  void showUnit();
  void showInformation();
  void chooseFolder();
  void applyToSlices(NYXActionStep& step, const PixelCalibration& calibration) const;

  NYXStack& _stack;
  NYXPropertyForm<NYXStackProperties> _form;
  NYXNameEdit* _name = nullptr;
  QLabel* _information = nullptr;
  NYXCalibrationEditor* _calibration = nullptr;
  QComboBox* _unit = nullptr;
  QRadioButton* _changeUnitOnly = nullptr;
  QRadioButton* _convertLengths = nullptr;
  QCheckBox* _appliesToAll = nullptr;
  bool _isAppliesToAllTouched = false;
  bool _isUnitTouched = false;
  NYXNumberBox* _spacing = nullptr;
  NYXNumberBox* _thickness = nullptr;
  QLineEdit* _imagesPath = nullptr;
  double _shownFactor = 1; // by which the lengths are multiplied that are shown now
};
