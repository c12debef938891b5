#include "analysis/nyxanalysiswindow.h"

#include "analysis/nyxanalysiswindowmediator.h"
#include "analysis/nyxmeasures.h"
#include "analysis/nyxmodelanalysiswidget.h"
#include "analysis/nyxmodelitemanalysiswidget.h"
#include "analysis/nyxsliceanalysistable.h"
#include "slice/image/nyxicons.h"

#include <QAction>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

namespace
{
constexpr int messageMilliseconds = 5000;
}

NYXAnalysisWindow::NYXAnalysisWindow(QWidget* parent)
  : QMainWindow(parent, Qt::Window),
    _tabs(new QTabWidget(this)),
    _models(new NYXModelAnalysisWidget(this)),
    _slices(new NYXSliceAnalysisTable(this)),
    _items(new NYXModelItemAnalysisWidget(this)),
    _mediator(new NYXAnalysisWindowMediator(*this))
{
  setObjectName("analysisWindow");
  setWindowTitle(tr("Mirelo - Analysis"));
  createActions();
  createTabs();
  createStatusBar();
  _mediator->initialize();
  restoreGeometryFromSettings();
}

QAction* NYXAnalysisWindow::createAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut)
{
  auto* const action = new QAction(text, this);
  action->setShortcut(shortcut);
  action->setToolTip(shortcut.isEmpty() ? toolTip : toolTip + " (" + shortcut.toString(QKeySequence::NativeText) + ")");
  action->setStatusTip(toolTip);
  return action;
}

void NYXAnalysisWindow::createActions()
{
  _save = createAction(tr("Save ..."), tr("Save the current sheet as comma-separated text"), QKeySequence::Save);
  _save->setIcon(iconNamed("save"));
  QAction* const close = createAction(tr("Close"), tr("Close this window"), QKeySequence::Close);
  _copy = createAction(tr("Copy"), tr("Copy the selected cells with their headers, all when none is selected"),
                       QKeySequence::Copy);
  _copy->setIcon(iconNamed("copy"));
  connect(_save, &QAction::triggered, _mediator, &NYXAnalysisWindowMediator::saveCurrentSheet);
  connect(close, &QAction::triggered, this, &QWidget::close);
  connect(_copy, &QAction::triggered, _mediator, &NYXAnalysisWindowMediator::copySelection);
  QMenu* const file = menuBar()->addMenu(tr("File"));
  file->setToolTipsVisible(true);
  file->addActions({_save, close});
  QMenu* const edit = menuBar()->addMenu(tr("Edit"));
  edit->setToolTipsVisible(true);
  edit->addAction(_copy);
  QToolBar* const bar = addToolBar(tr("Measures"));
  bar->setObjectName("analysisToolBar");
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  const int side = bar->fontMetrics().height() * 5 / 4;
  bar->setIconSize({side, side});
  bar->addActions({_save, _copy});
}

void NYXAnalysisWindow::createTabs()
{
  _slices->setObjectName("sliceAnalysisTable");
  _tabs->setDocumentMode(true);
  _tabs->addTab(_models, tr("Models"));
  _tabs->addTab(_slices, tr("Slices"));
  _tabs->addTab(_items, tr("Items"));
  _tabs->setTabToolTip(0, tr("Displays analysis of 3D models"));
  _tabs->setTabToolTip(1, tr("Displays analysis of 2D slices contents"));
  _tabs->setTabToolTip(2, tr("Displays analysis of 2D individual items"));
  _note = new QLabel(this);
  _note->setObjectName("measuresNote");
  _note->setTextFormat(Qt::PlainText);
  _note->setWordWrap(true);
  _note->setMargin(style()->pixelMetric(QStyle::PM_LayoutTopMargin));
  auto* const content = new QWidget(this);
  auto* const layout = new QVBoxLayout(content);
  layout->setContentsMargins({});
  layout->addWidget(_tabs);
  layout->addWidget(_note);
  setCentralWidget(content);
}

void NYXAnalysisWindow::createStatusBar()
{
  _stackName = new QLabel(this);
  _stackName->setTextFormat(Qt::PlainText);
  _progress = new QProgressBar(this);
  _progress->setMaximumWidth(fontMetrics().averageCharWidth() * 24);
  _progress->setMaximum(1000);
  _progress->setFormat(tr("Measuring %p%"));
  _cancel = new QPushButton(tr("Cancel"), this);
  _cancel->setToolTip(tr("Stop measuring"));
  _refresh = new QPushButton(tr("Measure again"), this);
  _refresh->setToolTip(tr("Measure what has changed since"));
  statusBar()->addPermanentWidget(_progress);
  statusBar()->addPermanentWidget(_cancel);
  statusBar()->addPermanentWidget(_refresh);
  statusBar()->addPermanentWidget(_stackName);
  connect(_cancel, &QPushButton::clicked, &_mediator->measures(), &NYXMeasures::cancel);
  connect(_refresh, &QPushButton::clicked, &_mediator->measures(), &NYXMeasures::refresh);
}

void NYXAnalysisWindow::setStack(NYXStack* stack)
{
  _mediator->setStack(stack);
}

void NYXAnalysisWindow::showStackName(const QString& name)
{
  _stackName->setText(name);
}

void NYXAnalysisWindow::showRunning(bool isRunning, bool isStale)
{
  if (!_progress->isVisibleTo(this)) _progress->setValue(0);
  _progress->setVisible(isRunning);
  _cancel->setVisible(isRunning);
  _refresh->setVisible(isStale && !isRunning);
}

void NYXAnalysisWindow::showProgress(double share)
{
  _progress->setValue(qRound(share * _progress->maximum()));
}

void NYXAnalysisWindow::showMessage(const QString& text)
{
  statusBar()->showMessage(text, messageMilliseconds);
}

void NYXAnalysisWindow::showNote(const QString& text)
{
  _note->setText(text);
  _note->setVisible(!text.isEmpty());
}

void NYXAnalysisWindow::restoreGeometryFromSettings()
{
  const QSettings store;
  const QSize screen = QGuiApplication::primaryScreen()->size();
  const QSize stored = store.value("analysisWindow/size").toSize();
  const QSize size = stored.isEmpty() ? screen * 2 / 3 : stored;
  const QPoint position = store.value("analysisWindow/pos").toPoint();
  const QScreen* const at = QGuiApplication::screenAt(QRect(position, size).center());
  if (store.contains("analysisWindow/pos") && at != nullptr) move(position);
  resize(size.boundedTo(screen));
}

void NYXAnalysisWindow::closeEvent(QCloseEvent* event)
{
  QMainWindow::closeEvent(event);
  if (event->isAccepted()) _mediator->setStack(nullptr);
}

void NYXAnalysisWindow::moveEvent(QMoveEvent* event)
{
  QWidget::moveEvent(event);
  if (isVisible()) QSettings().setValue("analysisWindow/pos", pos());
}

void NYXAnalysisWindow::resizeEvent(QResizeEvent* event)
{
  QMainWindow::resizeEvent(event);
  if (isVisible()) QSettings().setValue("analysisWindow/size", size());
}
