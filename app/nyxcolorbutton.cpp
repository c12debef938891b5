#include "app/nyxcolorbutton.h"

#include <QColorDialog>
#include <QPixmap>

NYXColorButton::NYXColorButton(QWidget* parent) : QPushButton(parent)
{
  connect(this, &QPushButton::clicked, this, &NYXColorButton::choose);
}

void NYXColorButton::setColor(const QColor& color)
{
  _color = color;
  QPixmap sample(iconSize());
  sample.fill(color);
  setIcon(QIcon(sample));
  setText(color.name());
}

void NYXColorButton::choose()
{
  const QColor chosen = QColorDialog::getColor(_color, this, tr("Choose a color"), QColorDialog::ShowAlphaChannel);
  if (!chosen.isValid() || chosen == _color) return;
  setColor(chosen);
  emit colorChanged();
}
