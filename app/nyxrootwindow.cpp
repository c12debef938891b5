#include "app/nyxrootwindow.h"

#include "app/nyxaboutdialog.h"
#include "app/nyxdialogs.h"
#include "app/nyximagefiles.h"
#include "app/nyxnames.h"
#include "app/nyxrootbrowser.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootsliceeditwidget.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxsplitter.h"
#include "app/nyxstackio.h"
#include "slice/image/nyxoverview.h"
#include "slice/image/nyxpanorama.h"
#include "slice/nyxnavigationtoolbar.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetstatusbar.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

int NYXRootWindow::__numRootWindows = 0;
bool NYXRootWindow::__uponQuitting = false;

NYXRootWindow::NYXRootWindow()
  : _menuBar(new QMenuBar(this)),
    _toolBars(new QWidget(this)),
    _toolBar(new QToolBar(_toolBars)),
    _statusBar(new NYXRootStatusBar(this)),
    _browser(new NYXRootBrowser(this)),
    _panorama(new NYXPanorama(this)),
    _sliceEditWidget(new NYXRootSliceEditWidget(this)),
    _overview(new NYXOverview(_sliceEditWidget->sliceWidget(), this)),
    _mediator(new NYXRootMediator(this))
{
  ++__numRootWindows;
  setObjectName("rootWindow");
  setAttribute(Qt::WA_DeleteOnClose);

  _mediator->setRootWindow(*this);
  _mediator->setStackListWidget(_browser->stackList());
  _mediator->setSliceListWidget(_browser->sliceList());
  _mediator->setPanorama(*_panorama);
  _mediator->setSliceEditWidget(*_sliceEditWidget);
  _mediator->setOverview(*_overview);
  _mediator->setStatusBar(*_statusBar);
  _mediator->setToolBar(*_toolBar);
  _statusBar->setImageFields(_sliceEditWidget->sliceWidget().statusBar());
  createMenus();

  layOut();
  connect(qApp, &QCoreApplication::aboutToQuit, this, &QObject::deleteLater);
  restoreGeometryFromSettings();
  setWindowIcon(QIcon(QIcon(":/icons/mirelo.svg").pixmap(125, 100)));
  show();
  setTitle("");
  setAcceptDrops(true);
  nameParts(*this);
  _mediator->showCurrentStack();
  _mediator->restoreOverview();
  _statusBar->showMessage(tr("Ready."), 2000);
}

NYXRootWindow::~NYXRootWindow()
{
  leave();
}

/// A window that closes counts no more, although it is deleted only later: the other may be asked to close before that.
void NYXRootWindow::leave()
{
  if (_isCounted) --__numRootWindows;
  _isCounted = false;
}

void NYXRootWindow::createMenus()
{
  _mediator->initFileMenu(addMenu(*_menuBar, tr("File"), tr("Windows and stacks")));
  _mediator->initEditMenu(addMenu(*_menuBar, tr("Edit"), tr("Change the stack and choose what is shown")));
  _mediator->initProcessMenu(addMenu(*_menuBar, tr("Process"), tr("Work on all slices or models")));
  _mediator->initAnalyzeMenu(addMenu(*_menuBar, tr("Analyze"), tr("Measure and test")));
  _mediator->initPluginsMenu(addMenu(*_menuBar, tr("Plugins"), tr("Run plug-ins on the stack")));
  _mediator->initialize();
  createShowMenu(addMenu(*_menuBar, tr("Show"), tr("Show or hide parts of the window")));
  createHelpMenu(addMenu(*_menuBar, tr("Help"), tr("Help and information on the program")));
}

QAction* NYXRootWindow::addToggle(QMenu& menu, const QString& text, const QString& toolTip, QWidget& widget,
                                  const char* key, void (NYXRootWindow::*toggle)())
{
  const bool isVisible = QSettings().value(key, true).toBool();
  widget.setVisible(isVisible);
  QAction* action = menu.addAction(text, this, toggle);
  action->setObjectName(text);
  setTips(*action, toolTip);
  action->setCheckable(true);
  action->setChecked(isVisible);
  return action;
}

void NYXRootWindow::createShowMenu(QMenu& menu)
{
  addToggle(menu, tr("Tool bar"), tr("Show or hide the tool bar"), *_toolBars, "rootWindow/toolBarVisible",
            &NYXRootWindow::toggleToolBar);
  addToggle(menu, tr("Browser"), tr("Show or hide the lists of stacks and slices"), *_browser,
            "rootWindow/browserVisible", &NYXRootWindow::toggleBrowser);
  addToggle(menu, tr("Status bar"), tr("Show or hide the status bar"), *_statusBar, "rootWindow/statusBarVisible",
            &NYXRootWindow::toggleStatusBar);
}

void NYXRootWindow::createHelpMenu(QMenu& menu)
{
  const auto addLink = [&](const QString& text, const char* address, void (NYXRootWindow::*open)())
  {
    QAction* action = menu.addAction(text, this, open);
    action->setEnabled(*address != '\0');
    action->setObjectName(text);
    setTips(*action, *address != '\0' ? tr("Opens %1").arg(address) : tr("This build names no address"));
  };
  addLink(tr("Mirelo Homepage [web]"), MIRELO_HOMEPAGE_URL, &NYXRootWindow::openHomepage);
  addLink(tr("Mirelo Manual [web]"), MIRELO_MANUAL_URL, &NYXRootWindow::openPDFManual);
  addLink(tr("Subscribe mailing list [web]"), MIRELO_MAILING_LIST_URL, &NYXRootWindow::subscribeMailingList);
  menu.addSeparator();
  QAction* aboutAction = menu.addAction(tr("About Mirelo"), this, &NYXRootWindow::about);
  aboutAction->setObjectName("About Mirelo");
  setTips(*aboutAction, tr("Version, licence and credits"));
}

void NYXRootWindow::layOut()
{
  auto* frame = new QWidget(this);
  auto* views = new QHBoxLayout(frame);
  views->setContentsMargins(0, 0, 0, 0);
  views->setSpacing(0);
  views->addWidget(_panorama, 1);
  views->addWidget(_sliceEditWidget, 1);

  auto* toolBarRow = new QHBoxLayout(_toolBars);
  toolBarRow->setContentsMargins(0, 0, 0, 0);
  toolBarRow->setSpacing(0);
  toolBarRow->addWidget(_toolBar);
  toolBarRow->addWidget(&_sliceEditWidget->navigationToolBar(), 1);

  auto* splitter = new NYXSplitter("rootWindowSplitter", this);
  splitter->addWidget(_browser);
  splitter->addWidget(frame);
  splitter->setStretchFactor(1, 1);
  splitter->restoreSizes({250, 750});

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(_menuBar);
  layout->addWidget(_toolBars);
  layout->addWidget(splitter, 1);
  layout->addWidget(_statusBar);
}

void NYXRootWindow::restoreGeometryFromSettings()
{
  const QSettings store;
  const QSize desktop = QGuiApplication::primaryScreen()->size();
  const QSize twoThirds(qRound(desktop.width() * 2 / 3.0), qRound(desktop.height() * 2 / 3.0));
  const QSize stored = store.value("rootWindow/size").toSize();
  const QSize size = stored.isEmpty() ? twoThirds : stored;
  const QPoint position = store.value("rootWindow/pos").toPoint();
  const auto isOn = [&](const QScreen* screen) { return screen->geometry().intersects({position, size}); };
  const QList<QScreen*> screens = QGuiApplication::screens();
  const auto screen = std::ranges::find_if(screens, isOn); // it may have been unplugged since
  const bool isOnScreen = store.contains("rootWindow/pos") && screen != screens.end();
  if (isOnScreen) move(position);
  resize(size.boundedTo((isOnScreen ? *screen : QGuiApplication::primaryScreen())->size()));
}

void NYXRootWindow::startupOpenStack(const QString& filename)
{
  _mediator->openStack(filename);
}

void NYXRootWindow::setTitle(const QString& name)
{
  setWindowTitle(name.isEmpty() ? QString("Mirelo") : "Mirelo - " + name);
}

namespace
{
/// A place below and to the right of the window that is there already, or at the edge when that is off the screen.
QPoint placeBeside(const QRect& window, int step, const QRect& screen)
{
  QRect place = window.translated(step, step);
  if (place.right() > screen.right()) place.moveLeft(screen.left());
  if (place.bottom() > screen.bottom()) place.moveTop(screen.top());
  return place.topLeft();
}

bool isImageFile(const QString& filename)
{
  static const QStringList suffixes = {"tif", "tiff", "img"};
  return suffixes.contains(QFileInfo(filename).suffix().toLower());
}
} // namespace

void NYXRootWindow::newWindow()
{
  auto* const window = new NYXRootWindow; // lies on the one that was moved last
  const int step = style()->pixelMetric(QStyle::PM_TitleBarHeight);
  window->move(placeBeside(window->frameGeometry(), step, window->screen()->availableGeometry()));
}

namespace
{
void flipVisibility(QWidget& widget, const char* key)
{
  widget.setVisible(widget.isHidden());
  QSettings().setValue(key, !widget.isHidden());
}

void openAddress(const char* address)
{
  QDesktopServices::openUrl(QUrl(QString::fromUtf8(address)));
}
} // namespace

void NYXRootWindow::toggleToolBar()
{
  flipVisibility(*_toolBars, "rootWindow/toolBarVisible");
}

void NYXRootWindow::toggleBrowser()
{
  flipVisibility(*_browser, "rootWindow/browserVisible");
}

void NYXRootWindow::toggleStatusBar()
{
  flipVisibility(*_statusBar, "rootWindow/statusBarVisible");
}

void NYXRootWindow::openHomepage()
{
  openAddress(MIRELO_HOMEPAGE_URL);
}

void NYXRootWindow::openPDFManual()
{
  openAddress(MIRELO_MANUAL_URL);
}

void NYXRootWindow::subscribeMailingList()
{
  openAddress(MIRELO_MAILING_LIST_URL);
}

void NYXRootWindow::about()
{
  NYXAboutDialog(this).exec();
}

bool NYXRootWindow::confirmQuit()
{
  return NYXStackIO(this, _statusBar).closeAll();
}

void NYXRootWindow::quit()
{
  _statusBar->showMessage(tr("Exiting application..."));
  if (!confirmQuit())
  {
    _statusBar->showMessage(tr("Exit canceled"), 1000);
    return;
  }
  __uponQuitting = true;
  QCoreApplication::quit();
}

void NYXRootWindow::closeEvent(QCloseEvent* event)
{
  if (!__uponQuitting && __numRootWindows < 2)
  {
    event->ignore();
    return quit();
  }
  if (!_mediator->confirmLeaving()) return event->ignore();
  leave();
  event->accept();
}

void NYXRootWindow::resizeEvent(QResizeEvent* event)
{
  QWidget::resizeEvent(event);
  QSettings().setValue("rootWindow/size", size());
}

void NYXRootWindow::moveEvent(QMoveEvent* event)
{
  QWidget::moveEvent(event);
  QSettings().setValue("rootWindow/pos", pos());
}

void NYXRootWindow::dragEnterEvent(QDragEnterEvent* event)
{
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

/// The program that the files come from waits for the end of the event: they are opened later.
void NYXRootWindow::dropEvent(QDropEvent* event)
{
  event->acceptProposedAction();
  QTimer::singleShot(0, this, [this, urls = event->mimeData()->urls()] { openDropped(urls); });
}

void NYXRootWindow::openDropped(const QList<QUrl>& urls)
{
  QStringList images;
  for (const QUrl& url : urls)
  {
    if (!url.isLocalFile())
      showWarning(this, tr("Error"), tr("Error: %1 is not a file of this machine.").arg(url.toString()));
    else if (isImageFile(url.toLocalFile()))
      images.append(url.toLocalFile());
    else
      startupOpenStack(url.toLocalFile());
  }
  if (images.isEmpty()) return;
  sortByNumbers(images);
  _mediator->newStack(images);
}
