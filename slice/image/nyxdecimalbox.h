#pragma once

#include <QDoubleSpinBox>

/// A spin box in which point and comma are decimal signs in each language, and digits stand in no groups: "4.5" and
/// "4,5" are the same number. For suffixes without these signs.
class NYXDecimalBox : public QDoubleSpinBox
{
  Q_OBJECT

public:
  using QDoubleSpinBox::QDoubleSpinBox;

  double valueFromText(const QString& text) const override;
  QValidator::State validate(QString& text, int& position) const override;
  /// Mends nothing: what is no number gives way to the one before.
  void fixup(QString&) const override {}

private:
  QString withLocalSign(QString text) const;
};
