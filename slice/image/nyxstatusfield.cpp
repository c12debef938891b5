#include "slice/image/nyxstatusfield.h"

#include "slice/image/nyxplaintext.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

namespace
{
const char* const shortestText = "100%"; // that narrow windows leave
}

NYXStatusField::NYXStatusField(const QString& name, const QString& toolTip, const QString& sample, QWidget* parent)
  : QLabel(parent), _sample(sample)
{
  setObjectName(name);
  setTextFormat(Qt::PlainText);
  setToolTip(toolTip);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
}

int NYXStatusField::widthOf(const QString& text) const
{
  return fontMetrics().horizontalAdvance(text) + fontMetrics().averageCharWidth();
}

void NYXStatusField::fillLine()
{
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  setIndent(fontMetrics().averageCharWidth());
}

QSize NYXStatusField::sizeHint() const
{
  return {widthOf(_sample), fontMetrics().height()};
}

QSize NYXStatusField::minimumSizeHint() const
{
  return {qMin(widthOf(_isTextKept ? text() : shortestText), widthOf(_sample)), fontMetrics().height()};
}

QRect NYXStatusField::placeOfText() const
{
  return rect().adjusted(qMax(0, indent()), 0, 0, 0);
}

void NYXStatusField::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  const QRect place = placeOfText();
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, place.width());
  style()->drawItemText(&painter, place, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), shown,
                        foregroundRole());
}

bool NYXStatusField::event(QEvent* event)
{
  if (event->type() != QEvent::ToolTip || fontMetrics().horizontalAdvance(text()) <= placeOfText().width())
    return QLabel::event(event);
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainText(text() + "\n" + toolTip()), this);
  return true;
}
