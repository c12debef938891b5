#pragma once

#include <QLineEdit>

#include <functional>

/// A line for a name that may be refused: then a sign at its end and a tool tip at the line say why.
class NYXNameEdit : public QLineEdit
{
  Q_OBJECT

public:
  /// Says why a name is refused; empty for one that is not.
  using Check = std::function<QString(const QString&)>;

  explicit NYXNameEdit(QWidget* parent = nullptr);

  /// What is not checked is accepted.
  void setCheck(Check check);
  /// Why the name shown is refused, or empty.
  QString refusal() const { return _check ? _check(text()) : QString(); }

private:
  void showRefusal();

  Check _check;
  QAction* _sign;
};

/// Why a text can be no name of anything in a stack; empty for one that can.
QString refusalOfName(const QString& name);
