#include "registration/nyxregistrationpanel.h"

#include "registration/nyxregistrationgeometry.h"
#include "slice/image/nyxdecimalbox.h"
#include "slice/image/nyxintegerbox.h"

#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace
{
constexpr int largestShift = 1000000;

QString registrationText(const Registration& registration)
{
  return NYXRegistrationPanel::tr("%1 px, %2 px, %3°")
      .arg(registration.getHorizontalShift())
      .arg(registration.getVerticalShift())
      .arg(static_cast<double>(registration.getAngle()), 0, 'f', 2);
}

/// What was typed until now is not undone in the field any more.
void forgetTyping(QLineEdit& text)
{
  const QSignalBlocker blocker(text);
  const int position = text.cursorPosition();
  text.setText(text.text());
  text.setCursorPosition(position);
}

/// Whether a number is typed in a field that it has not taken over yet.
bool isTyping(const QObject& field)
{
  const QChar sign = QLocale().decimalPoint();
  bool isNumber = false;
  const double typed =
      QLocale().toDouble(field.property("cleanText").toString().replace('.', sign).replace(',', sign), &isNumber);
  return !isNumber || typed != field.property("value").toDouble();
}
} // namespace

NYXRegistrationPanel::NYXRegistrationPanel(QWidget* parent)
  : QWidget(parent),
    _slices(new QLabel(this)),
    _fields(new QGroupBox(tr("Registration"), this)),
    _storedText(new QLabel(this)),
    _transparency(new QSlider(Qt::Horizontal, this))
{
  setObjectName("registrationPanel");
  _slices->setObjectName("sliceNames");
  _slices->setWordWrap(true);
  _slices->setTextFormat(Qt::PlainText);
  _storedText->setObjectName("storedRegistration");
  _storedText->setMinimumWidth(fontMetrics().horizontalAdvance(registrationText({-9999, -9999, -300.0F})));
  _storedText->setWordWrap(true);
  _storedText->setToolTip(tr("The registration that the slice has: horizontal shift, vertical shift and rotation"));
  auto* form = new QFormLayout(_fields);
  _horizontalShift = addShift(*form, tr("Horizontal shift"), tr("To the right, in pixels of the slice"),
                              "horizontalShift", &Registration::setHorizontalShift);
  _verticalShift = addShift(*form, tr("Vertical shift"), tr("Downwards, in pixels of the slice"), "verticalShift",
                            &Registration::setVerticalShift);
  _angle = addAngle(*form);
  form->addRow(tr("Stored"), _storedText);
  _apply = addButton(tr("Apply"), tr("Store this registration in the slice (Return)"), "applyButton");
  _reset = addButton(tr("Reset"), tr("Return to the slice's stored registration (Escape)"), "resetButton");
  _fitContours = addButton(tr("Fit contours"),
                           tr("Propose the registration that brings the first contour drawn on the slice onto that of "
                              "the same model on the previous slice"),
                           "fitContoursButton");
  connect(_apply, &QPushButton::clicked, this, &NYXRegistrationPanel::applyClicked);
  connect(_reset, &QPushButton::clicked, this, &NYXRegistrationPanel::resetClicked);
  connect(_fitContours, &QPushButton::clicked, this, &NYXRegistrationPanel::fitContoursClicked);
  createSlider();
  layOut();
  showChange();
}

QSpinBox* NYXRegistrationPanel::addShift(QFormLayout& form, const QString& label, const QString& toolTip,
                                         const QString& name, void (Registration::*set)(int))
{
  auto* field = new NYXIntegerBox(this);
  field->setObjectName(name);
  field->setRange(-largestShift, largestShift);
  field->setSuffix(tr(" px"));
  field->setAlignment(Qt::AlignRight);
  field->setToolTip(toolTip);
  field->setKeyboardTracking(false);
  field->installEventFilter(this);
  form.addRow(label, field);
  connect(field, qOverload<int>(&QSpinBox::valueChanged), this,
          [this, set](int shift)
          {
            Registration registration = _registration;
            (registration.*set)(shift);
            takeEdit(registration);
          });
  return field;
}

QDoubleSpinBox* NYXRegistrationPanel::addAngle(QFormLayout& form)
{
  auto* field = new NYXDecimalBox(this);
  field->setObjectName("angle");
  field->setDecimals(2);
  field->setRange(-360, 360);
  field->setSingleStep(ImageRegistrationRotationPrecision);
  field->setSuffix(tr("°"));
  field->setAlignment(Qt::AlignRight);
  field->setToolTip(tr("Clockwise, about the centre of the slice, in degrees"));
  field->setKeyboardTracking(false);
  field->installEventFilter(this);
  form.addRow(tr("Rotation"), field);
  connect(field, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
          [this](double angle)
          {
            Registration registration = _registration;
            registration.setAngle(static_cast<float>(angle));
            takeEdit(registration);
          });
  return field;
}

QPushButton* NYXRegistrationPanel::addButton(const QString& text, const QString& toolTip, const QString& name)
{
  auto* button = new QPushButton(text, this);
  button->setObjectName(name);
  button->setToolTip(toolTip);
  return button;
}

void NYXRegistrationPanel::createSlider()
{
  _transparency->setObjectName("transparency");
  _transparency->setRange(0, 100);
  _transparency->setPageStep(10);
  _transparency->setToolTip(tr("How much of the previous slice shines through the current one"));
  connect(_transparency, &QSlider::valueChanged, this, &NYXRegistrationPanel::transparencyChanged);
}

void NYXRegistrationPanel::layOut()
{
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(_apply);
  buttons->addWidget(_reset);
  auto* form = static_cast<QFormLayout*>(_fields->layout());
  form->addRow(buttons);
  form->addRow(_fitContours);
  auto* view = new QGroupBox(tr("View"), this);
  auto* viewForm = new QFormLayout(view);
  viewForm->addRow(tr("Transparency"), _transparency);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_slices);
  layout->addWidget(_fields);
  layout->addWidget(view);
}

/// Undo and Redo are those of the window, but for what is just being typed.
bool NYXRegistrationPanel::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() != QEvent::ShortcutOverride || isTyping(*watched)) return QWidget::eventFilter(watched, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  if (!key.matches(QKeySequence::Undo) && !key.matches(QKeySequence::Redo)) return false;
  event->ignore();
  return true;
}

void NYXRegistrationPanel::takeEdit(const Registration& registration)
{
  for (QLineEdit* text : _fields->findChildren<QLineEdit*>()) forgetTyping(*text);
  _registration = registration;
  showChange();
  emit registrationChanged(registration);
}

void NYXRegistrationPanel::setRegistration(const Registration& registration)
{
  _registration = registration;
  const QSignalBlocker blockers[] = {QSignalBlocker(_horizontalShift), QSignalBlocker(_verticalShift),
                                     QSignalBlocker(_angle)};
  _horizontalShift->setValue(registration.getHorizontalShift());
  _verticalShift->setValue(registration.getVerticalShift());
  _angle->setValue(static_cast<double>(registration.getAngle()));
  showChange();
}

void NYXRegistrationPanel::setStoredRegistration(const Registration& registration)
{
  _stored = registration;
  showChange();
}

void NYXRegistrationPanel::setSliceNames(const QString& name, const QString& previousName)
{
  _slices->setText(name.isEmpty() ? tr("No slice to be registered")
                                  : tr("Slice %1 on slice %2").arg(name, previousName));
}

void NYXRegistrationPanel::setEditable(bool isEditable)
{
  _isEditable = isEditable;
  showChange();
}

void NYXRegistrationPanel::commit()
{
  for (QAbstractSpinBox* field :
       {static_cast<QAbstractSpinBox*>(_horizontalShift), static_cast<QAbstractSpinBox*>(_verticalShift),
        static_cast<QAbstractSpinBox*>(_angle)})
    field->interpretText();
}

void NYXRegistrationPanel::setTransparency(int percent)
{
  const QSignalBlocker blocker(_transparency);
  _transparency->setValue(percent);
}

void NYXRegistrationPanel::showChange()
{
  const bool isChanged = _registration != _stored;
  _storedText->setText(registrationText(_stored));
  for (QWidget* field : {static_cast<QWidget*>(_horizontalShift), static_cast<QWidget*>(_verticalShift),
                         static_cast<QWidget*>(_angle), static_cast<QWidget*>(_fitContours)})
    field->setEnabled(_isEditable);
  _apply->setEnabled(_isEditable);
  _reset->setEnabled(_isEditable && isChanged);
}
