#pragma once

#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/nyxpropertyform.h"
#include "image/imagesourcefile.h"

#include <QWidget>

#include <optional>
#include <vector>

class NYXActionStep;
class NYXCalibrationEditor;
class NYXNameEdit;
class NYXNumberBox;
class NYXStack;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// The properties of one or several slices of a stack.
class NYXSlicePropertiesEditor : public QWidget
{
  Q_OBJECT

public:
  NYXSlicePropertiesEditor(NYXStack& stack, std::vector<StackSlice*> slices, QWidget* parent = nullptr);

  const std::vector<StackSlice*>& getSlices() const { return _slices; }
  /// Forgets the slices that are no longer in the stack.
  void forgetMissing();
  /// Shows the slices as they are now; what the user has changed stays.
  void refresh();
  bool isChanged() const { return _form.isTouched() || _isPositionTouched || _isDepthTouched || _newImage; }
  /// Why the changes cannot be applied, or empty.
  QString refusal() const;
  /// Makes the changes and forgets them. \throw Exception  they cannot be made
  void apply(NYXActionStep& step);

  /// Takes an image file for the slice, to be applied. \throw Exception  it is no image of the slice's size
  void setImageFile(const QString& filename);

signals:
  /// The user has changed something.
  void edited();
  /// What the user asked for cannot be done.
  void refused(const QString& reason);

private:
  QWidget* createSliceGroup();
  QWidget* createCalibrationGroup();
  QWidget* createDepthGroup();

  std::vector<NYXSliceProperties> propertiesOfSlices() const;
  /// The properties after the changes, of a slice as it is now.
  NYXSliceProperties changedProperties(const StackSlice& slice) const;
  void choosePosition();
  void showPosition();
  void showResultingDepth();
  void showImage();
  void chooseImage();
  void useCalibrationOfStack(bool isWanted);

  NYXStack& _stack;
  std::vector<StackSlice*> _slices;
  NYXPropertyForm<NYXSliceProperties> _form;
  NYXNameEdit* _name = nullptr;
  NYXCalibrationEditor* _calibration = nullptr;
  bool _isCalibrationTouched = false;
  QCheckBox* _asStack = nullptr;
  QComboBox* _position = nullptr;
  NYXNumberBox* _depth = nullptr;
  bool _isPositionTouched = false;
  bool _isDepthTouched = false;
  QLabel* _resultingDepth = nullptr;
  NYXNumberBox* _thickness = nullptr;
  QLineEdit* _image = nullptr;
  QPushButton* _chooseImage = nullptr;
  std::optional<ImageSourceFile> _newImage;
};
