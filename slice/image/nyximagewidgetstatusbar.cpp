#include "slice/image/nyximagewidgetstatusbar.h"

#include "slice/image/nyxstatusfield.h"

#include <QHBoxLayout>

NYXImageWidgetStatusBar::NYXImageWidgetStatusBar(QWidget* parent) : QWidget(parent), _layout(new QHBoxLayout(this))
{
  setObjectName("imageStatusBar");
  _layout->setContentsMargins(0, 0, 0, 0);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
  _pixel =
      addField("pixelField", tr("Position and value of the pixel under the cursor"), "X=9999, Y=9999, RGB=255,255,255");
  _zoom = addField("zoomField", tr("Pixels of the screen per pixel of the image"), "6400%");
  _size = addField("imageSizeField", tr("Width and height of the image in pixels, and the memory that it takes"),
                   "16384x16384 [256 Mb]");
  _type = addField("imageTypeField", tr("Kind of the image"), "8 bits, palette");
}

QLabel* NYXImageWidgetStatusBar::addField(const QString& name, const QString& toolTip, const QString& sample)
{
  auto* field = new NYXStatusField(name, toolTip, sample, this);
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
