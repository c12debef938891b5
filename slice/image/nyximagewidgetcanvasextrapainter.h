#pragma once

class QPainter;

/// Paints over the image of a canvas: a tool's feedback, for example.
class NYXImageWidgetCanvasExtraPainter
{
public:
  virtual ~NYXImageWidgetCanvasExtraPainter() = default;

  /// The painter works in canvas pixels; NYXImageWidgetCanvas::initPainterTransform() changes that to image pixels.
  virtual void paint(QPainter& painter) = 0;
};
