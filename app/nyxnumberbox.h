#pragma once

#include <QDoubleSpinBox>

#include <optional>

class QFormLayout;

/// A spin box for a number with a unit. It may stand for several objects whose numbers differ, and gives a number back
/// exactly as it was set until the user changes it, whatever digits it shows. Point and comma are decimal signs in each
/// language.
///
/// Up and down step by the second digit that counts, or by 1 without decimals. Return after typing takes the number
/// over and goes no further, so that it presses no button of the dialog.
class NYXNumberBox : public QDoubleSpinBox
{
  Q_OBJECT

public:
  explicit NYXNumberBox(QWidget* parent = nullptr);
  /// A box in a new row of a form.
  static NYXNumberBox* addTo(QFormLayout& form, const char* name, const QString& label, const QString& toolTip);

  /// Shown behind the number.
  void setUnit(const QString& unit);
  const QString& getUnit() const { return _unit; }

  /// Lets the user clear the box, which means no number at all and is shown as this text.
  void setClearable(const QString& text);
  /// None: several numbers, or none.
  void setNumber(std::optional<double> number);
  /// Unchecked: it stands for one number.
  double getNumber() const { return *_number; }
  bool hasNumber() const { return _number.has_value(); }

  QString textFromValue(double number) const override;
  double valueFromText(const QString& text) const override;
  QValidator::State validate(QString& text, int& position) const override;
  /// Mends nothing: what is no number gives way to the one before.
  void fixup(QString&) const override {}
  void stepBy(int steps) override;

signals:
  /// The user has changed the number.
  void edited();

protected:
  void keyPressEvent(QKeyEvent* event) override;

private:
  std::optional<double> parse(QString text) const;
  void noteTyping(const QString& text);
  void showUnit();

  std::optional<double> _number;
  QString _unit;
  bool _isClearable = false;
  bool _isTyping = false;
};
