#pragma once

#include <QSize>
#include <QWidget>

#include <cstdint>

class QHBoxLayout;
class QLabel;

/// What is known of the image that a canvas shows: the pixel under the cursor, the zoom, the size and the kind of
/// image.
class NYXImageWidgetStatusBar : public QWidget
{
  Q_OBJECT

public:
  explicit NYXImageWidgetStatusBar(QWidget* parent = nullptr);

  /// Any text, the pixel under the cursor for example.
  void setPixelInfo(const QString& text);
  void setZoomInfo(float zoomFactor);
  /// An invalid size is not shown.
  void setImageSizeInfo(const QSize& size, std::int64_t numBytes);
  void setImageTypeInfo(const QString& text);

  /// The zoom in percent.
  static QString zoomText(float zoomFactor);
  /// The size, and the length of the data: the unit is chosen by powers of 1000, the number counts by powers of 1024.
  static QString imageSizeText(const QSize& size, std::int64_t numBytes);

protected:
  /// Another field at the right, as wide as the sample.
  QLabel* addField(const QString& name, const QString& toolTip, const QString& sample);

private:
  QHBoxLayout* _layout;
  QLabel* _pixel;
  QLabel* _zoom;
  QLabel* _size;
  QLabel* _type;
};
