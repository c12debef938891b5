#pragma once

#include <QSpinBox>

/// A spin box for whole numbers that takes no point and no comma, which the base class drops from between digits in
/// some languages: "1.5" would be 15. For suffixes without these signs.
class NYXIntegerBox : public QSpinBox
{
  Q_OBJECT

public:
  using QSpinBox::QSpinBox;

  QValidator::State validate(QString& text, int& position) const override;
};
