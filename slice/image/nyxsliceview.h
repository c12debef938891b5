#pragma once

#include <QImage>
#include <QWidget>

class Stack;
class StackSlice;

/// Shows one slice with the items drawn on it, fitted into the widget with square pixels.
///
/// An image that cannot be read is replaced by the reason; the items are drawn all the same.
class NYXSliceView : public QWidget
{
  Q_OBJECT

public:
  explicit NYXSliceView(QWidget* parent = nullptr);

  /// Shows a slice of an open stack; nullptr shows nothing. The slice is borrowed until another one is set.
  void setSlice(const StackSlice* slice);

  /// The picture as the user sees it has this many pixels of the slice's image; empty without a readable image.
  QSize imageSize() const { return _image.size(); }

  /// Why there is no image; empty when there is one.
  const QString& problem() const { return _problem; }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  QRectF imageRect() const;
  void loadImage();
  void drawProblem(QPainter& painter) const;
  void drawItems(QPainter& painter) const;

  const StackSlice* _slice = nullptr;
  QImage _image;
  QPixmap _scaled; // the image at the size at which it was drawn last
  QString _problem;
  QSize _sourceSize;
  QSize _correctedSize;
};
