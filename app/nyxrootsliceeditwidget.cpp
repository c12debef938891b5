#include "app/nyxrootsliceeditwidget.h"

#include "slice/image/nyxsliceimageserver.h"
#include "slice/image/nyxslicewidget.h"
#include "slice/image/nyxslicewidgetmediator.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QStackedLayout>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

NYXRootSliceEditWidget::NYXRootSliceEditWidget(QWidget* parent)
  : QWidget(parent), _pages(new QStackedLayout(this)), _sliceWidget(new NYXSliceWidget(this))
{
  setObjectName("rootSliceEditWidget");
  _pages->addWidget(createStartPage());
  _pages->addWidget(_sliceWidget);
  _sliceWidget->mediator().setImageServer(NYXSliceImageServer::server());
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
  auto* hint = new QLabel(tr("Stack files can also be dropped on this window."), page);
  hint->setEnabled(false);

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
  for (QAction* action : actions)
  {
    auto* button = new QToolButton(this);
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setMinimumWidth(fontMetrics().averageCharWidth() * 30);
    _startActions->addWidget(button, 0, Qt::AlignHCenter);
  }
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

void NYXRootSliceEditWidget::showSlice(StackSlice* slice)
{
  _sliceWidget->setSlice(slice);
  _pages->setCurrentWidget(_sliceWidget);
}
