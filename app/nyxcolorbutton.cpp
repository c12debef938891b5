#include "app/nyxcolorbutton.h"

#include <QApplication>
#include <QColorDialog>
#include <QPainter>
#include <QPixmap>

NYXColorButton::NYXColorButton(QWidget* parent) : QPushButton(parent)
{
  connect(this, &QPushButton::clicked, this, &NYXColorButton::choose);
}

void NYXColorButton::setColor(const QColor& color)
{
  _color = color;
  setIcon(color.isValid() ? colorSwatch(color, iconSize()) : QIcon());
  setText(color.isValid() ? color.name() : tr("(several)"));
}

void NYXColorButton::choose()
{
  const auto options = _isAlphaEnabled ? QColorDialog::ShowAlphaChannel : QColorDialog::ColorDialogOptions();
  const QColor chosen = QColorDialog::getColor(_color, this, tr("Choose a color"), options);
  if (!chosen.isValid() || chosen == _color) return;
  setColor(chosen);
  emit colorChanged();
}

QIcon colorSwatch(const QColor& color, const QSize& size)
{
  const qreal ratio = qApp->devicePixelRatio();
  QPixmap sample(size * ratio);
  sample.setDevicePixelRatio(ratio);
  sample.fill(color);
  QPainter(&sample).drawRect(0, 0, size.width() - 1, size.height() - 1);
  QIcon icon(sample);
  icon.addPixmap(sample, QIcon::Selected); // not tinted
  return icon;
}
