#include "registration/nyxregistrationwindow.h"

#include "app/core/nyxstack.h"
#include "registration/nyxautomaticregistrationpanel.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationpanel.h"
#include "registration/nyxregistrationstatusbar.h"
#include "registration/nyxregistrationtoolbar.h"
#include "registration/nyxregistrationview.h"
#include "slice/image/nyxcloseaction.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetstatusbar.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QScreen>
#include <QScrollArea>
#include <QSettings>
#include <QStyle>
#include <QVBoxLayout>

NYXRegistrationWindow::NYXRegistrationWindow(QWidget* parent)
  : QWidget(parent, Qt::Window),
    _toolBar(new NYXRegistrationToolBar(this)),
    _view(new NYXRegistrationView(this)),
    _panel(new NYXRegistrationPanel(this)),
    _automaticPanel(new NYXAutomaticRegistrationPanel(this)),
    _statusBar(new NYXRegistrationStatusBar(this)),
    _mediator(new NYXRegistrationMediator(*this))
{
  setObjectName("registrationWindow");
  _mediator->setToolBar(*_toolBar);
  _mediator->setView(*_view);
  _mediator->setPanel(*_panel);
  _mediator->setAutomaticPanel(*_automaticPanel);
  _mediator->setStatusBar(*_statusBar);
  connect(_mediator, &NYXRegistrationMediator::stateChanged, this, &NYXRegistrationWindow::showTitle);
  addCloseAction(*this);
  layOut();
  _mediator->initialize();
  restoreGeometryFromSettings();
  _view->canvas().setFocus();
}

NYXRegistrationWindow::~NYXRegistrationWindow()
{
  hide(); // while it is whole: a field in which a number was typed tells of it when it is hidden
}

void NYXRegistrationWindow::layOut()
{
  _view->toolBar().hide();
  auto* panels = new QWidget;
  auto* panelLayout = new QVBoxLayout(panels);
  panelLayout->addWidget(_panel);
  panelLayout->addWidget(_automaticPanel);
  panelLayout->addStretch(1);
  auto* side = new QScrollArea(this);
  side->setObjectName("registrationSide");
  side->setFrameShape(QFrame::NoFrame);
  side->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  side->setWidgetResizable(true);
  side->setWidget(panels);
  side->setFixedWidth(panels->sizeHint().width() + side->style()->pixelMetric(QStyle::PM_ScrollBarExtent));
  auto* content = new QHBoxLayout;
  content->addWidget(_view, 1);
  content->addWidget(side);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(_toolBar);
  layout->addLayout(content, 1);
  layout->addWidget(_statusBar);
  layout->addWidget(&_view->statusBar(), 0, Qt::AlignRight); // beneath, so that narrow windows have place for hints
}

void NYXRegistrationWindow::setStack(NYXStack* stack)
{
  if (stack == _mediator->getStack() || !_mediator->confirmLeaving()) return;
  _mediator->setStack(stack);
}

void NYXRegistrationWindow::showTitle()
{
  const NYXStack* stack = _mediator->getStack();
  const QString name = stack == nullptr ? QString() : " - " + stack->displayName();
  setWindowTitle(tr("Registration") + name + (_mediator->isEdited() ? "*" : ""));
}

void NYXRegistrationWindow::restoreGeometryFromSettings()
{
  const QSettings store;
  const QSize screen = QGuiApplication::primaryScreen()->size();
  const QSize stored = store.value("registrationWindow/size").toSize();
  const QSize size = stored.isEmpty() ? screen * 9 / 10 : stored;
  const QPoint position = store.value("registrationWindow/pos").toPoint();
  const QScreen* at = QGuiApplication::screenAt(QRect(position, size).center());
  if (store.contains("registrationWindow/pos") && at != nullptr) move(position);
  resize(size.boundedTo(screen));
}

void NYXRegistrationWindow::closeEvent(QCloseEvent* event)
{
  event->setAccepted(_mediator->confirmLeaving());
}

void NYXRegistrationWindow::moveEvent(QMoveEvent* event)
{
  QWidget::moveEvent(event);
  if (isVisible()) QSettings().setValue("registrationWindow/pos", pos());
}

void NYXRegistrationWindow::resizeEvent(QResizeEvent* event)
{
  QWidget::resizeEvent(event);
  if (isVisible()) QSettings().setValue("registrationWindow/size", size());
}
