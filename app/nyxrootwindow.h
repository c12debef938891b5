#pragma once

#include <QWidget>

class NYXOverview;
class NYXPanorama;
class NYXRootBrowser;
class NYXRootMediator;
class NYXRootSliceEditWidget;
class NYXRootStatusBar;
class QMenu;
class QMenuBar;
class QStackedWidget;
class QToolBar;
class QUrl;

/// The user's home: menus, tool bar, browser of stacks and slices, all slices or the current one, status
/// bar.
///
/// Shows itself. Closing the last root window quits the program, after the question about modified stacks.
class NYXRootWindow : public QWidget
{
  Q_OBJECT

public:
  NYXRootWindow();
  ~NYXRootWindow() override;

  /// Opens a stack file as "Open stack" does after its file dialog.
  void startupOpenStack(const QString& filename);

  /// "Mirelo", or "Mirelo - " and the name.
  void setTitle(const QString& name);

  /// Windows that are open: those that have not accepted to close.
  static int getNumRootWindows() { return __numRootWindows; }
  NYXRootMediator& mediator() const { return *_mediator; }

public slots:
  void newWindow();
  void toggleToolBar();
  void toggleBrowser();
  void toggleStatusBar();
  void openHomepage();
  void openPDFManual();
  void subscribeMailingList();
  void about();

  /// Asks about modified stacks and quits, or says "Exit canceled".
  void quit();

protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

private:
  void createMenus();
  void createShowMenu(QMenu& menu);
  void createHelpMenu(QMenu& menu);
  QAction* addToggle(QMenu& menu, const QString& text, const QString& toolTip, QWidget& widget, const char* key,
                     void (NYXRootWindow::*toggle)());
  void layOut();
  void restoreGeometryFromSettings();
  bool confirmQuit();
  void openDropped(const QList<QUrl>& urls);

  void leave();

  static int __numRootWindows;
  static bool __uponQuitting;

  QMenuBar* _menuBar;
  QWidget* _toolBars; // in one row
  QToolBar* _toolBar;
  NYXRootStatusBar* _statusBar;
  NYXRootBrowser* _browser;
  NYXPanorama* _panorama;
  NYXRootSliceEditWidget* _sliceEditWidget;
  NYXOverview* _overview;
  NYXRootMediator* _mediator;
  bool _isCounted = true;
};
