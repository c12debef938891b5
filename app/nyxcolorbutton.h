#pragma once

#include <QColor>
#include <QPushButton>

/// A button that shows a colour and lets the user choose another one. An invalid colour stands for several.
class NYXColorButton : public QPushButton
{
  Q_OBJECT

public:
  explicit NYXColorButton(QWidget* parent = nullptr);

  QColor color() const { return _color; }
  void setColor(const QColor& color);
  /// Whether the user can choose a transparency too, as at first.
  void setAlphaEnabled(bool isEnabled) { _isAlphaEnabled = isEnabled; }

signals:
  void colorChanged();

private:
  void choose();

  QColor _color;
  bool _isAlphaEnabled = true;
};

/// A framed area of the colour.
QIcon colorSwatch(const QColor& color, const QSize& size);
