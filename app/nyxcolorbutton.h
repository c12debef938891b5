#pragma once

#include <QColor>
#include <QPushButton>

/// A button that shows a colour and lets the user choose another one.
class NYXColorButton : public QPushButton
{
  Q_OBJECT

public:
  explicit NYXColorButton(QWidget* parent = nullptr);

  QColor color() const { return _color; }
  void setColor(const QColor& color);

signals:
  void colorChanged();

private:
  void choose();

  QColor _color;
};
