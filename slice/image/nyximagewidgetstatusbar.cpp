#include "slice/image/nyximagewidgetstatusbar.h"

#include <QHBoxLayout>
#include <QLabel>

NYXImageWidgetStatusBar::NYXImageWidgetStatusBar(QWidget* parent) : QWidget(parent), _layout(new QHBoxLayout(this))
{
  setObjectName("imageStatusBar");
  _layout->setContentsMargins(0, 0, 0, 0);
  _pixel = addField("pixelField", tr("Position and value of the pixel under the cursor"));
  _zoom = addField("zoomField", tr("Pixels of the screen per pixel of the image"));
  _size = addField("imageSizeField", tr("Width and height of the image in pixels, and the memory that it takes"));
  _type = addField("imageTypeField", tr("Kind of the image"));
}

QLabel* NYXImageWidgetStatusBar::addField(const QString& name, const QString& toolTip)
{
  auto* field = new QLabel(this);
  field->setObjectName(name);
  field->setTextFormat(Qt::PlainText);
  field->setToolTip(toolTip);
  _layout->addWidget(field);
  return field;
}

void NYXImageWidgetStatusBar::setPixelInfo(const QString& text)
{
  _pixel->setText(text);
}

void NYXImageWidgetStatusBar::setZoomInfo(float zoomFactor)
{
  _zoom->setText(zoomText(zoomFactor));
}

void NYXImageWidgetStatusBar::setImageSizeInfo(const QSize& size, std::int64_t numBytes)
{
  _size->setText(size.isValid() ? imageSizeText(size, numBytes) : QString());
}

void NYXImageWidgetStatusBar::setImageTypeInfo(const QString& text)
{
  _type->setText(text);
}

QString NYXImageWidgetStatusBar::zoomText(float zoomFactor)
{
  return QString::asprintf("%3.0f%%", static_cast<double>(zoomFactor) * 100);
}

QString NYXImageWidgetStatusBar::imageSizeText(const QSize& size, std::int64_t numBytes)
{
  const auto n = static_cast<long long>(numBytes);
  const QString extent = QString::asprintf("%dx%d ", size.width(), size.height());
  if (n < 1000) return extent + QString::asprintf("[%lld bytes]", n);
  if (n < 1000000) return extent + QString::asprintf("[%lld Kb]", n / 1024);
  if (n < 1000000000) return extent + QString::asprintf("[%.3g Mb]", static_cast<double>(n) / (1 << 20));
  return extent + QString::asprintf("[%.3g Gb]", static_cast<double>(n) / (1 << 30));
}
