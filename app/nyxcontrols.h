#pragma once

#include <QColor>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

class NYXCalibrationEditor;
class NYXColorButton;
class NYXNumberBox;
class PixelCalibration;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;

/// One interface for the controls of property forms. A value that is none stands for several that differ.
/// @{

void showValue(NYXNumberBox& box, std::optional<double> number);
/// Of a check box, checked or not.
void showValue(QCheckBox& box, std::optional<bool> isChecked);
/// Of a combo box, the index of an entry.
void showValue(QComboBox& box, std::optional<int> index);
void showValue(QLineEdit& edit, const std::optional<QString>& text);
void showValue(NYXColorButton& button, const std::optional<QColor>& color);
void showValue(NYXCalibrationEditor& editor, const std::optional<PixelCalibration>& calibration);

double valueOf(const NYXNumberBox& box);
bool valueOf(const QCheckBox& box);
int valueOf(const QComboBox& box);
QString valueOf(const QLineEdit& edit);
QColor valueOf(const NYXColorButton& button);
PixelCalibration valueOf(const NYXCalibrationEditor& editor);

/// Calls a function each time that the user has changed the value.
void whenEdited(NYXNumberBox& box, const std::function<void()>& f);
void whenEdited(QCheckBox& box, const std::function<void()>& f);
void whenEdited(QComboBox& box, const std::function<void()>& f);
void whenEdited(QLineEdit& edit, const std::function<void()>& f);
void whenEdited(NYXColorButton& button, const std::function<void()>& f);
void whenEdited(NYXCalibrationEditor& editor, const std::function<void()>& f);
/// @}

/// Gives the labels of forms that stand below each other one width, so that the fields line up.
void lineUpFields(const std::vector<QFormLayout*>& forms);
