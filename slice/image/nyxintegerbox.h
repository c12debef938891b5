#pragma once

#include <QSpinBox>

/// A spin box for whole numbers. The base class drops the sign between groups of digits, so that "1.5" is 15 in some
/// languages; here a text with a point or a comma gives way to the number before. For suffixes without these signs.
class NYXIntegerBox : public QSpinBox
{
  Q_OBJECT

public:
  using QSpinBox::QSpinBox;

  QValidator::State validate(QString& text, int& position) const override;
  void fixup(QString&) const override {}
};
