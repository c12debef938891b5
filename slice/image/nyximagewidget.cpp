#include "slice/image/nyximagewidget.h"

#include "slice/image/nyxdoubleslider.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "slice/image/nyximagewidgetstatusbar.h"

#include <QGridLayout>
#include <QScrollBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace
{
/// A scroll bar that leaves its place free when it is hidden, so that the canvas does not jump.
QScrollBar* newScrollBar(Qt::Orientation orientation, const QString& name, QWidget* parent)
{
  auto* scrollBar = new QScrollBar(orientation, parent);
  scrollBar->setObjectName(name);
  QSizePolicy policy = scrollBar->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  scrollBar->setSizePolicy(policy);
  scrollBar->hide();
  return scrollBar;
}
} // namespace

NYXImageWidget::NYXImageWidget(QWidget* parent)
  : NYXImageWidget(new NYXImageWidgetCanvas, new NYXImageWidgetStatusBar, parent)
{
  setMediator(new NYXImageWidgetMediator(*this));
}

NYXImageWidget::NYXImageWidget(NYXImageWidgetCanvas* canvas, NYXImageWidgetStatusBar* statusBar, QWidget* parent)
  : QWidget(parent),
    _canvas(canvas),
    _statusBar(statusBar),
    _horizontalScrollBar(newScrollBar(Qt::Horizontal, "horizontalScrollBar", this)),
    _verticalScrollBar(newScrollBar(Qt::Vertical, "verticalScrollBar", this)),
    _slider(new NYXDoubleSlider(this)),
    _toolBar(new QToolBar(this)),
    _toolBars(new QVBoxLayout)
{
  setObjectName("imageWidget");
  _toolBar->setObjectName("imageToolBar");
  _toolBar->setOrientation(Qt::Vertical);
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  _toolBars->setSpacing(0);
  _toolBars->addWidget(_toolBar, 1);
  layout->addLayout(_toolBars, 0, 0, 2, 1);
  layout->addWidget(_canvas, 0, 1);
  layout->addWidget(_verticalScrollBar, 0, 2);
  layout->addWidget(_slider, 0, 3);
  layout->addWidget(_horizontalScrollBar, 1, 1);
  layout->addWidget(_statusBar, 2, 0, 1, 4);
  layout->setColumnStretch(1, 1);
  layout->setRowStretch(0, 1);
}

void NYXImageWidget::setMediator(NYXImageWidgetMediator* mediator)
{
  _mediator = mediator;
  _mediator->initialize();
}

void NYXImageWidget::insertToolBar(QToolBar& toolBar)
{
  toolBar.setOrientation(Qt::Vertical);
  toolBar.setIconSize(_toolBar->iconSize());
  connect(_toolBar, &QToolBar::iconSizeChanged, &toolBar, &QToolBar::setIconSize);
  _toolBars->insertWidget(0, &toolBar);
}

void NYXImageWidget::notifyViewChange(const QRect& currentView)
{
  emit viewChanged(currentView);
}
