#include "app/nyxcontrols.h"

#include "app/nyxcalibrationeditor.h"
#include "app/nyxcolorbutton.h"
#include "app/nyxnumberbox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

namespace
{
QString several()
{
  return QCoreApplication::translate("NYXNumberBox", "(several)");
}

QColor mixture(const QColor& a, const QColor& b)
{
  return QColor((a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2);
}
} // namespace

void showValue(NYXNumberBox& box, std::optional<double> number)
{
  box.setNumber(number);
}

void showValue(QCheckBox& box, std::optional<bool> isChecked)
{
  box.setTristate(!isChecked);
  box.setCheckState(!isChecked ? Qt::PartiallyChecked : *isChecked ? Qt::Checked : Qt::Unchecked);
}

void showValue(QComboBox& box, std::optional<int> index)
{
  QPalette palette; // the default color has a transparency that the box draws as nothing
  palette.setColor(QPalette::PlaceholderText,
                   mixture(box.palette().color(QPalette::ButtonText), box.palette().color(QPalette::Button)));
  box.setPalette(palette);
  box.setPlaceholderText(several());
  box.setCurrentIndex(index.value_or(-1));
}

void showValue(QLineEdit& edit, const std::optional<QString>& text)
{
  edit.setPlaceholderText(text ? QString() : several());
  if (edit.text() != text.value_or(QString())) edit.setText(text.value_or(QString()));
}

void showValue(NYXColorButton& button, const std::optional<QColor>& color)
{
  button.setColor(color.value_or(QColor()));
}

void showValue(NYXCalibrationEditor& editor, const std::optional<PixelCalibration>& calibration)
{
  editor.setCalibration(calibration);
}

double valueOf(const NYXNumberBox& box)
{
  return box.getNumber();
}

bool valueOf(const QCheckBox& box)
{
  return box.isChecked();
}

int valueOf(const QComboBox& box)
{
  return box.currentIndex();
}

QString valueOf(const QLineEdit& edit)
{
  return edit.text();
}

QColor valueOf(const NYXColorButton& button)
{
  return button.color();
}

PixelCalibration valueOf(const NYXCalibrationEditor& editor)
{
  return editor.getCalibration();
}

void whenEdited(NYXNumberBox& box, const std::function<void()>& f)
{
  QObject::connect(&box, &NYXNumberBox::edited, &box, f);
}

void whenEdited(QCheckBox& box, const std::function<void()>& f)
{
  QObject::connect(&box, &QCheckBox::clicked, &box,
                   [&box, f]
                   {
                     if (box.checkState() == Qt::PartiallyChecked) box.setCheckState(Qt::Checked);
                     box.setTristate(false);
                     f();
                   });
}

void whenEdited(QComboBox& box, const std::function<void()>& f)
{
  QObject::connect(&box, qOverload<int>(&QComboBox::activated), &box, f);
}

void whenEdited(QLineEdit& edit, const std::function<void()>& f)
{
  QObject::connect(&edit, &QLineEdit::textEdited, &edit, f);
}

void whenEdited(NYXColorButton& button, const std::function<void()>& f)
{
  QObject::connect(&button, &NYXColorButton::colorChanged, &button, f);
}

void whenEdited(NYXCalibrationEditor& editor, const std::function<void()>& f)
{
  QObject::connect(&editor, &NYXCalibrationEditor::edited, &editor, f);
}

void lineUpFields(const std::vector<QFormLayout*>& forms)
{
  std::vector<QWidget*> labels;
  for (const QFormLayout* form : forms)
    for (int row = 0; row < form->rowCount(); ++row)
      if (QLayoutItem* const item = form->itemAt(row, QFormLayout::LabelRole); item && item->widget())
        labels.push_back(item->widget());
  int width = 0;
  for (const QWidget* label : labels) width = std::max(width, label->sizeHint().width());
  for (QWidget* label : labels) label->setMinimumWidth(width);
}
