#pragma once

#include <QWidget>

/// Two handles on one upright scale from 0 to 1, the lower value never above the upper one: the grey levels that are
/// shown black and white. A double click resets them to 0 and 1.
class NYXDoubleSlider : public QWidget
{
  Q_OBJECT

public:
  explicit NYXDoubleSlider(QWidget* parent = nullptr);

  float lowerValue() const { return _values[0]; }
  float upperValue() const { return _values[1]; }
  /// Brings the values into 0..1 and into order.
  void setValues(float lower, float upper);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

signals:
  void valuesChanged(float lower, float upper);

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

private:
  /// Top of the handle that stands for a value, and the value at a height.
  int handleTop(float value) const;
  float valueAt(int y) const;
  void moveHandle(int handle, float value);
  void paintHandle(QPainter& painter, int handle) const;

  float _values[2] = {0, 1};
  int _handle = 1; // the one that is dragged, and that the keys move
  bool _isDragged = false;
};
