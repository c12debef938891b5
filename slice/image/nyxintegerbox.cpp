#include "slice/image/nyxintegerbox.h"

QValidator::State NYXIntegerBox::validate(QString& text, int& position) const
{
  if (text.contains('.') || text.contains(',')) return QValidator::Intermediate;
  return QSpinBox::validate(text, position);
}
