#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QPoint>

#include <functional>

class ImageSource;
class NYXImageServer;
class NYXImageWidget;
class NYXImageWidgetCanvas;
class NYXImageWidgetStatusBar;
class NYXLoadingNotice;
class NYXRulerDelegate;
class PixelCalibration;
class QAction;

/// Drives an image widget: owns its actions and tools, and keeps canvas, scroll bars and status bar together.
class NYXImageWidgetMediator : public QObject
{
  Q_OBJECT

public:
  /// A child of the widget.
  explicit NYXImageWidgetMediator(NYXImageWidget& widget);

  /// Makes the actions and tools and connects the parts of the widget. Called once by the widget.
  virtual void initialize();

  NYXImageWidget& widget() const { return _widget; }
  NYXImageWidgetCanvas& canvas() const;

  /// The server is borrowed; the image, if there is one, is asked for.
  void setImageServer(NYXImageServer& server);
  /// \throw ProgramError  none was set
  NYXImageServer& getImageServer() const;
  void removeImageServer();

  /// Shows another image; nullptr for none. The source is copied. Zoom and place of the view stay where they can.
  void setImageSource(const ImageSource* source);
  /// Size and aspect of the pixels, also for measuring.
  void setPixelCalibration(const PixelCalibration& calibration);
  void setViewOrigin(const QPoint& origin);
  /// Shows nothing any more.
  virtual void clear();

  /// One step of zooming that keeps the image position under a point of the canvas there.
  void zoomAt(const QPoint& canvasPoint, bool zoomingIn);
  /// Puts the view to an origin, rectified, and tells everybody.
  void moveView(const QPoint& origin);

  void updateScrollBars();
  void updateZoomInfo();
  void updateImageSizeInfo();
  void updateImageTypeInfo();
  void updateActions();
  void setActionsEnabled(bool isEnabled);
  /// After any change of the view: repaints, updates all of these and notifies the widget.
  void updateView();

  /// All actions, in the order of the tool bar and menus.
  const QList<QAction*>& actions() const { return _actions; }
  /// "Zoom in", "Zoom out", "Best fit".
  QList<QAction*> zoomActions() const { return {_zoomIn, _zoomOut, _bestFit}; }

public slots:
  void increaseZoomFactor() { stepZoomFactor(true); }
  void decreaseZoomFactor() { stepZoomFactor(false); }
  void bestFitZoomFactor();
  void stepScrollUp() { scroll(0, -1); }
  void stepScrollDown() { scroll(0, 1); }
  void stepScrollRight() { scroll(1, 0); }
  void stepScrollLeft() { scroll(-1, 0); }
  void pageScrollUp();
  void pageScrollDown();
  void pageScrollRight();
  void pageScrollLeft();
  void centerView();
  /// Moves the view onto a box in image pixels unless all of it is seen.
  void reveal(const QRect& box);
  /// The user moved a scroll bar.
  void scrollBarChange();
  /// The proxy has got another level, or lost its image.
  virtual void imageProxyChange();

signals:
  /// Something about the image cannot be shown or can be again.
  void imageChanged();

protected:
  QAction* createAction(const QString& text, const QString& toolTip, const QString& name, const QKeySequence& shortcut,
                        const std::function<void()>& trigger);
  /// Asks the server for the proxy's image, if the canvas shows images.
  virtual void attachProxy();
  void detachProxy();
  /// The source or what is known of it changed.
  void showNewImage();
  NYXRulerDelegate& ruler() const { return *_ruler; }

private:
  void createActions();
  void connectWidget();
  void stepZoomFactor(bool zoomingIn);
  void changeZoom(bool zoomingIn);
  void scroll(int dx, int dy);
  bool canZoomIn() const;
  bool canZoomOut() const;
  QPoint pageStep() const;

  NYXImageWidget& _widget;
  NYXImageServer* _server = nullptr;
  QList<QAction*> _actions;
  QAction* _zoomIn = nullptr;
  QAction* _zoomOut = nullptr;
  QAction* _bestFit = nullptr;
  QAction* _rulerAction = nullptr;
  QList<QAction*> _scrollActions;
  NYXRulerDelegate* _ruler = nullptr;
  NYXLoadingNotice* _loadingNotice = nullptr;
  bool _areActionsEnabled = true;
};
