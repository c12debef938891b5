#include "slice/image/nyxdecimalbox.h"

QString NYXDecimalBox::withLocalSign(QString text) const
{
  return text.replace('.', locale().decimalPoint()).replace(',', locale().decimalPoint());
}

double NYXDecimalBox::valueFromText(const QString& text) const
{
  return QDoubleSpinBox::valueFromText(withLocalSign(text));
}

QValidator::State NYXDecimalBox::validate(QString& text, int& position) const
{
  QString local = withLocalSign(text);
  return QDoubleSpinBox::validate(local, position);
}
