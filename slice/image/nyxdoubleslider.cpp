#include "slice/image/nyxdoubleslider.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int handleHeight = 8;
constexpr int barWidth = 12;
constexpr int sliderWidth = 20;
constexpr float keyStep = 0.01F;

bool isArrow(int key)
{
  return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_Left || key == Qt::Key_Right;
}

bool isPlain(const QKeyEvent& event)
{
  return (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}
} // namespace

NYXDoubleSlider::NYXDoubleSlider(QWidget* parent) : QWidget(parent)
{
  setObjectName("blackWhiteSlider");
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
  setToolTip(tr("Grey levels shown black (lower handle) and white (upper handle)\nDouble click to reset"));
}

QSize NYXDoubleSlider::sizeHint() const
{
  return {sliderWidth, 80};
}

void NYXDoubleSlider::setValues(float lower, float upper)
{
  lower = std::clamp(lower, 0.0F, 1.0F);
  upper = std::clamp(upper, lower, 1.0F);
  if (lower == _values[0] && upper == _values[1]) return;
  _values[0] = lower;
  _values[1] = upper;
  update();
  emit valuesChanged(lower, upper);
}

// The handles meet, but do not cover each other: the upper one stands above its value, the lower one below.
int NYXDoubleSlider::handleTop(float value) const
{
  return static_cast<int>(std::lround((1 - value) * static_cast<float>(height() - 2 * handleHeight)));
}

float NYXDoubleSlider::valueAt(int y) const
{
  return 1 - static_cast<float>(y - handleHeight) / static_cast<float>(std::max(1, height() - 2 * handleHeight));
}

void NYXDoubleSlider::moveHandle(int handle, float value)
{
  if (handle == 0)
    setValues(std::min(value, _values[1]), _values[1]);
  else
    setValues(_values[0], std::max(value, _values[0]));
}

void NYXDoubleSlider::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  const QRect bar((width() - barWidth) / 2, handleHeight, barWidth, height() - 2 * handleHeight);
  QLinearGradient gradient(bar.bottomLeft(), bar.topLeft());
  const double black = std::min(static_cast<double>(_values[0]), 1 - 1e-6);
  gradient.setColorAt(black, Qt::black);
  gradient.setColorAt(std::max(static_cast<double>(_values[1]), black + 1e-6), Qt::white);
  painter.setPen(palette().color(QPalette::Mid));
  painter.setBrush(gradient);
  painter.drawRect(bar.adjusted(0, 0, -1, -1));
  painter.setRenderHint(QPainter::Antialiasing);
  paintHandle(painter, 0);
  paintHandle(painter, 1);
}

void NYXDoubleSlider::paintHandle(QPainter& painter, int handle) const
{
  const double w = width();
  const double top = handleTop(_values[handle]) + (handle == 0 ? handleHeight : 0);
  const double tip = handle == 0 ? top : top + handleHeight; // points at the value
  const double base = handle == 0 ? top + handleHeight : top;
  const bool isFocused = hasFocus() && handle == _handle;
  painter.setPen(palette().color(QPalette::WindowText));
  painter.setBrush(palette().color(isFocused ? QPalette::Highlight : QPalette::Button));
  painter.drawPolygon(QPolygonF() << QPointF(w / 2, tip) << QPointF(w - 1, base) << QPointF(1, base));
}

void NYXDoubleSlider::mousePressEvent(QMouseEvent* event)
{
  if (event->button() != Qt::LeftButton) return;
  const float value = valueAt(event->y());
  const float toLower = std::abs(value - _values[0]);
  const float toUpper = std::abs(value - _values[1]);
  _isDragged = true;
  _handle = toLower == toUpper ? (value > _values[1] ? 1 : 0) : toLower < toUpper ? 0 : 1;
  moveHandle(_handle, value);
  update();
}

void NYXDoubleSlider::mouseMoveEvent(QMouseEvent* event)
{
  if (_isDragged && event->buttons() & Qt::LeftButton) moveHandle(_handle, valueAt(event->y()));
}

void NYXDoubleSlider::mouseDoubleClickEvent(QMouseEvent* event)
{
  if (event->button() != Qt::LeftButton) return;
  _isDragged = false; // the mouse may tremble until the button is up
  setValues(0, 1);
}

/// The arrow keys are the slider's while it has the focus, whatever they do elsewhere in the window.
bool NYXDoubleSlider::event(QEvent* event)
{
  if (event->type() == QEvent::ShortcutOverride)
    if (const auto& key = static_cast<QKeyEvent&>(*event); isArrow(key.key()) && isPlain(key)) event->accept();
  return QWidget::event(event);
}

void NYXDoubleSlider::keyPressEvent(QKeyEvent* event)
{
  switch (event->key())
  {
  case Qt::Key_Up:
    return moveHandle(_handle, _values[_handle] + keyStep);
  case Qt::Key_Down:
    return moveHandle(_handle, _values[_handle] - keyStep);
  case Qt::Key_Left:
  case Qt::Key_Right:
    _handle = 1 - _handle;
    return update();
  default:
    QWidget::keyPressEvent(event);
  }
}
