#include "app/nyxrootsliceeditwidget.h"

#include "slice/image/nyxsliceimageserver.h"
#include "slice/image/nyxstatusfield.h"
#include "slice/nyxmodetoolbar.h"
#include "slice/nyxnavigationtoolbar.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QStackedLayout>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace
{
constexpr int messageMilliseconds = 5000;
}

NYXRootSliceEditWidget::NYXRootSliceEditWidget(QWidget* parent)
  : QWidget(parent),
    _pages(new QStackedLayout(this)),
    _sliceWidget(new NYXSliceEditWidget(this)),
    _modeToolBar(new NYXModeToolBar(_sliceWidget->editMediator(), _sliceWidget)),
    _navigationToolBar(new NYXNavigationToolBar(this)),
    _hint(new NYXStatusField("hint", tr("What the next click, drag or key does"), {}, this))
{
  setObjectName("rootSliceEditWidget");
  _pages->addWidget(createStartPage());
  _pages->addWidget(createSlicePage());
  _sliceWidget->mediator().setImageServer(NYXSliceImageServer::server());
  for (QAction* action : _sliceWidget->mediator().zoomActions())
  {
    _sliceWidget->toolBar().removeAction(action);
    action->setShortcutContext(Qt::WindowShortcut); // also while the slice list has the focus
  }
  _pages->addWidget(createNoSlicePage());
}

QToolButton* NYXRootSliceEditWidget::createButton(QAction& action)
{
  auto* const button = new QToolButton(this);
  action.setIconText(action.text()); // the button would leave "..." out
  button->setDefaultAction(&action);
  button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  button->setMinimumWidth(fontMetrics().averageCharWidth() * 30);
  return button;
}

/// The line for the hint keeps its height when it is empty, and does not ask for the width of its text.
QWidget* NYXRootSliceEditWidget::createSlicePage()
{
  _sliceWidget->insertToolBar(*_modeToolBar);
  _hint->fillLine();
  _hint->setFixedHeight(_hint->fontMetrics().height() * 5 / 4);
  _messageEnd.setSingleShot(true);
  connect(&_messageEnd, &QTimer::timeout, this,
          [this]
          {
            _message.clear();
            showHint();
          });
  const NYXSliceEditWidgetMediator& editor = _sliceWidget->editMediator();
  connect(&editor, &NYXSliceEditWidgetMediator::hintShown, this, &NYXRootSliceEditWidget::showHint);
  connect(&editor, &NYXSliceEditWidgetMediator::messageShown, this,
          [this](const QString& text)
          {
            _message = text;
            _messageEnd.start(messageMilliseconds);
            showHint();
          });
  auto* const page = new QWidget(this);
  auto* const column = new QVBoxLayout(page);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(_sliceWidget, 1);
  column->addWidget(_hint);
  return page;
}

void NYXRootSliceEditWidget::showHint()
{
  const QString& hint = _sliceWidget->editMediator().hint();
  const QString separator = _message.isEmpty() || hint.isEmpty() ? QString() : QString("   \u2022   ");
  _hint->setText(_message + separator + hint);
}

QWidget* NYXRootSliceEditWidget::createNoSlicePage()
{
  auto* const page = new QWidget(this);
  page->setObjectName("noSlicePage");
  _noSlice = new QLabel(page);
  _noSlice->setObjectName("noSlice");
  _noSlice->setWordWrap(true);
  _noSlice->setAlignment(Qt::AlignCenter);
  auto* const column = new QVBoxLayout(page);
  column->addStretch(1);
  column->addWidget(_noSlice);
  _insertion = new QVBoxLayout;
  column->addLayout(_insertion);
  column->addStretch(2);
  return page;
}

QWidget* NYXRootSliceEditWidget::createStartPage()
{
  auto* page = new QWidget(this);
  page->setObjectName("startPage");
  auto* logo = new QLabel(page);
  logo->setPixmap(QIcon(":/icons/mirelo.svg").pixmap(125, 100));
  _startActions = new QVBoxLayout;
  _recentFiles = new QLabel(page);
  _recentFiles->setObjectName("recentFiles");
  connect(_recentFiles, &QLabel::linkActivated, this,
          [this](const QString& link) { emit openRequested(QUrl(link).toLocalFile()); });
  auto* hint = new QLabel(tr("Stack files and images can also be dropped on this window."), page);

  auto* column = new QVBoxLayout(page);
  column->addStretch(1);
  column->addWidget(logo, 0, Qt::AlignHCenter);
  column->addLayout(_startActions);
  column->addWidget(_recentFiles, 0, Qt::AlignHCenter);
  column->addWidget(hint, 0, Qt::AlignHCenter);
  column->addStretch(2);
  return page;
}

void NYXRootSliceEditWidget::setStartActions(const QList<QAction*>& actions)
{
  for (QAction* action : actions) _startActions->addWidget(createButton(*action), 0, Qt::AlignHCenter);
}

void NYXRootSliceEditWidget::setInsertAction(QAction& action)
{
  _insertion->addWidget(createButton(action), 0, Qt::AlignHCenter);
}

void NYXRootSliceEditWidget::setRecentFiles(const QStringList& files)
{
  QString text;
  for (const QString& file : files)
  {
    const QFileInfo info(file);
    text += QString("<tr><td><a href=\"%1\">%2</a></td><td>&nbsp;&nbsp;%3</td></tr>")
                .arg(QUrl::fromLocalFile(file).toString().toHtmlEscaped(), info.fileName().toHtmlEscaped(),
                     QDir::toNativeSeparators(info.path()).toHtmlEscaped());
  }
  _recentFiles->setText(text.isEmpty() ? QString() : tr("<p>Recent stacks</p>") + "<table>" + text + "</table>");
  _recentFiles->setVisible(!text.isEmpty());
}

void NYXRootSliceEditWidget::showStartPage()
{
  _sliceWidget->setSlice(nullptr);
  _pages->setCurrentIndex(0);
}

void NYXRootSliceEditWidget::showSlice(StackSlice& slice)
{
  _sliceWidget->setSlice(&slice);
  _pages->setCurrentWidget(_sliceWidget->parentWidget());
}

void NYXRootSliceEditWidget::showNoSlice(bool hasStackSlices)
{
  _sliceWidget->setSlice(nullptr);
  _noSlice->setText(hasStackSlices ? tr("No slice has a name that holds the text of the filter.")
                                   : tr("This stack has no slices yet."));
  _insertion->itemAt(0)->widget()->setVisible(!hasStackSlices);
  _pages->setCurrentWidget(_noSlice->parentWidget());
}
