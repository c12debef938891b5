#include "slice/image/nyxpixelinfodelegate.h"

#include "image/image.h"
#include "numeric/colormap.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidget.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "slice/image/nyximagewidgetstatusbar.h"

#include <QEvent>
#include <QMouseEvent>
#include <QTabletEvent>

#include <cstring>

namespace
{
QString colorText(int red, int green, int blue)
{
  return QString(", RGB=%1,%2,%3").arg(red).arg(green).arg(blue);
}

QString valueText(const unsigned char* pixel, const Image& image)
{
  if (image.isIndexed())
  {
    const auto [red, green, blue] = image.getColormap().getColor(*pixel);
    return colorText(red, green, blue);
  }
  if (image.getDepth() == 8) return QString(", G=%1").arg(*pixel);
  if (image.getDepth() > 16) return colorText(pixel[0], pixel[1], pixel[2]);
  unsigned short level = 0;
  std::memcpy(&level, pixel, sizeof level);
  return QString(", G=%1").arg(level);
}
} // namespace

NYXPixelInfoDelegate::NYXPixelInfoDelegate(NYXImageWidgetMediator& mediator) : NYXImageWidgetMediatorDelegate(mediator)
{
  setActive(true);
  connect(&mediator.widget(), &NYXImageWidget::viewChanged, this, &NYXPixelInfoDelegate::showAgain);
  connect(&mediator, &NYXImageWidgetMediator::imageChanged, this, &NYXPixelInfoDelegate::showAgain);
}

QString NYXPixelInfoDelegate::pixelText(const QPoint& position, const Image* image)
{
  const QString text = QString("X=%1, Y=%2").arg(position.x()).arg(position.y());
  if (image == nullptr || !QRect(0, 0, image->getWidth(), image->getHeight()).contains(position)) return text;
  const unsigned char* pixel = image->getLine(position.y()) + std::ptrdiff_t(position.x()) * image->bytesPerPixel();
  return text + valueText(pixel, *image);
}

void NYXPixelInfoDelegate::show(const QPoint& canvasPoint)
{
  _cursor = canvasPoint;
  const QPoint position = canvas().imagePixelAt(canvasPoint);
  const NYXImageProxy& proxy = canvas().getImageProxy();
  const QSize size = proxy.getOriginalImageSize();
  const bool isOnImage =
      QRect(QPoint(0, 0), size.isValid() ? size : canvas().viewport().getImageSize()).contains(position);
  const Image* image = proxy.hasImage() ? &proxy.getImage() : nullptr;
  mediator().widget().statusBar().setPixelInfo(isOnImage ? pixelText(position, image) : QString());
}

void NYXPixelInfoDelegate::showAgain()
{
  if (_cursor) show(*_cursor);
}

void NYXPixelInfoDelegate::mouseMoveEvent(QMouseEvent& event)
{
  show(event.pos());
}

void NYXPixelInfoDelegate::tabletMoveEvent(QTabletEvent& event)
{
  show(event.pos());
}

bool NYXPixelInfoDelegate::anyEvent(QEvent& event)
{
  if (event.type() != QEvent::Leave) return false;
  _cursor.reset();
  mediator().widget().statusBar().setPixelInfo({});
  return false;
}
