#pragma once

#include <QRect>
#include <QWidget>

class NYXDoubleSlider;
class NYXImageWidgetCanvas;
class NYXImageWidgetMediator;
class NYXImageWidgetStatusBar;
class QScrollBar;
class QToolBar;
class QVBoxLayout;

/// Shows one image: canvas, scroll bars, black and white slider, tool bar and status bar, driven by a mediator.
class NYXImageWidget : public QWidget
{
  Q_OBJECT

public:
  explicit NYXImageWidget(QWidget* parent = nullptr);

  NYXImageWidgetCanvas& canvas() const { return *_canvas; }
  NYXImageWidgetMediator& mediator() const { return *_mediator; }
  /// Below the canvas; another window may take it into its own status bar.
  NYXImageWidgetStatusBar& statusBar() const { return *_statusBar; }
  QScrollBar& horizontalScrollBar() const { return *_horizontalScrollBar; }
  QScrollBar& verticalScrollBar() const { return *_verticalScrollBar; }
  NYXDoubleSlider& slider() const { return *_slider; }
  QToolBar& toolBar() const { return *_toolBar; }

  /// Puts a strip of tools beside the canvas, above the tool bar.
  void insertToolBar(QToolBar& toolBar);

  /// Called by the mediator with the image pixels on screen.
  void notifyViewChange(const QRect& currentView);

signals:
  void viewChanged(const QRect& currentView);

protected:
  /// Of a kind of its own, which then calls setMediator().
  NYXImageWidget(NYXImageWidgetCanvas* canvas, NYXImageWidgetStatusBar* statusBar, QWidget* parent);
  void setMediator(NYXImageWidgetMediator* mediator);

private:
  NYXImageWidgetCanvas* _canvas;
  NYXImageWidgetStatusBar* _statusBar;
  QScrollBar* _horizontalScrollBar;
  QScrollBar* _verticalScrollBar;
  NYXDoubleSlider* _slider;
  QToolBar* _toolBar;
  QVBoxLayout* _toolBars;
  NYXImageWidgetMediator* _mediator = nullptr;
};
