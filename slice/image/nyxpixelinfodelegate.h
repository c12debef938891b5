#pragma once

#include "slice/image/nyximagewidgetmediatordelegate.h"

#include <optional>

class Image;

/// Tells the position and the value of the pixel under the cursor in the status bar. Always active; follows
/// changes of the view and of the image, too.
class NYXPixelInfoDelegate : public NYXImageWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXPixelInfoDelegate(NYXImageWidgetMediator& mediator);

  /// The text for a position; without its value where there is no image or pixel.
  static QString pixelText(const QPoint& position, const Image* image);

protected:
  void mouseMoveEvent(QMouseEvent& event) override;
  void tabletMoveEvent(QTabletEvent& event) override;
  bool anyEvent(QEvent& event) override;

private:
  void show(const QPoint& canvasPoint);
  void showAgain();

  std::optional<QPoint> _cursor; // on the canvas
};
