#include "app/nyxnumberbox.h"

#include <QFormLayout>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int keptDecimals = 15; // of what is typed; the base class rounds to them
constexpr int shownDigits = 7;   // all that single-precision numbers have
constexpr double leastPlain = 1e-4;
constexpr double greatestPlain = 1e12;

/// A number with a point or a comma as decimal sign, or with that of the user's language, and none between groups of
/// digits: in each language, "1.234" is a bit more than 1.
double toNumber(const QString& text, QLocale locale, bool& isNumber)
{
  QLocale plain = QLocale::c();
  plain.setNumberOptions(QLocale::RejectGroupSeparator);
  const double number = plain.toDouble(QString(text).replace(',', '.'), &isNumber);
  if (isNumber) return number;
  locale.setNumberOptions(QLocale::RejectGroupSeparator);
  return locale.toDouble(text, &isNumber);
}

bool hasSeveralDecimalSigns(const QString& text)
{
  return text.count('.') + text.count(',') > 1;
}

/// A tenth of the number's power of ten.
double stepFor(double number)
{
  if (number == 0) return 0.1;
  return std::pow(10.0, std::floor(std::log10(std::abs(number)) + 1e-9) - 1);
}
} // namespace

NYXNumberBox::NYXNumberBox(QWidget* parent) : QDoubleSpinBox(parent), _number(0)
{
  setDecimals(keptDecimals);
  setAlignment(Qt::AlignRight);
  lineEdit()->setPlaceholderText(tr("(several)"));
  connect(lineEdit(), &QLineEdit::textEdited, this, &NYXNumberBox::noteTyping);
  connect(this, &QDoubleSpinBox::editingFinished, this,
          [this]
          {
            _isTyping = false;
            showUnit();
          });
}

NYXNumberBox* NYXNumberBox::addTo(QFormLayout& form, const char* name, const QString& label, const QString& toolTip)
{
  auto* const box = new NYXNumberBox(form.parentWidget());
  box->setObjectName(name);
  box->setToolTip(toolTip);
  form.addRow(label, box);
  return box;
}

void NYXNumberBox::setUnit(const QString& unit)
{
  _unit = unit;
  showUnit();
}

void NYXNumberBox::setClearable(const QString& text)
{
  _isClearable = true;
  lineEdit()->setPlaceholderText(text);
}

/// Also shows the number anew.
void NYXNumberBox::showUnit()
{
  setSuffix(_number && !_unit.isEmpty() ? " " + _unit : QString());
}

void NYXNumberBox::setNumber(std::optional<double> number)
{
  _number = number;
  _isTyping = false;
  const QSignalBlocker blocker(this);
  setValue(number.value_or(minimum()));
  showUnit();
}

QString NYXNumberBox::textFromValue(double number) const
{
  if (!_number) return {};
  if (decimals() == 0) return locale().toString(number, 'f', 0).remove(locale().groupSeparator());
  const double size = std::abs(number);
  if (size != 0 && (size < leastPlain || size >= greatestPlain)) return locale().toString(number, 'g', shownDigits);
  const int numWholeDigits = size == 0 ? 1 : static_cast<int>(std::floor(std::log10(size))) + 1;
  const int numDecimals = std::max(shownDigits - numWholeDigits, 0);
  QString text = locale().toString(number, 'f', numDecimals).remove(locale().groupSeparator());
  if (numDecimals == 0) return text;
  while (text.endsWith(locale().zeroDigit())) text.chop(1);
  if (text.endsWith(locale().decimalPoint())) text.chop(1);
  return text;
}

std::optional<double> NYXNumberBox::parse(QString text) const
{
  if (text.endsWith(suffix())) text.chop(suffix().size());
  if (decimals() == 0 && (text.contains('.') || text.contains(','))) return {};
  bool isNumber = false;
  const double number = toNumber(text.trimmed(), locale(), isNumber);
  if (!isNumber || !(minimum() <= number && number <= maximum())) return {}; // also "nan"
  if (decimals() == 0 && number != std::floor(number)) return {};
  return number;
}

double NYXNumberBox::valueFromText(const QString& text) const
{
  return parse(text).value_or(value());
}

QValidator::State NYXNumberBox::validate(QString& text, int&) const
{
  if (hasSeveralDecimalSigns(text)) return QValidator::Invalid;
  const bool isCleared = _isClearable && text.trimmed() == suffix().trimmed();
  return isCleared || parse(text) ? QValidator::Acceptable : QValidator::Intermediate;
}

void NYXNumberBox::noteTyping(const QString& text)
{
  _isTyping = true;
  const std::optional<double> number = parse(text);
  const bool isCleared = _isClearable && text.trimmed() == suffix().trimmed();
  if (!number && !isCleared) return;
  _number = number;
  emit edited();
}

void NYXNumberBox::stepBy(int steps)
{
  if (!_number && !_isClearable) return; // several numbers: there is nothing to step from
  const double number = _number.value_or(std::clamp(0.0, minimum(), maximum()));
  const double step = decimals() == 0 ? singleStep() : stepFor(number);
  setNumber(std::clamp(std::round((number + steps * step) / step) * step + 0.0, minimum(), maximum())); // no -0
  emit edited();
}

void NYXNumberBox::keyPressEvent(QKeyEvent* event)
{
  const bool wasTyping = _isTyping;
  QDoubleSpinBox::keyPressEvent(event);
  if (wasTyping && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) event->accept();
}
