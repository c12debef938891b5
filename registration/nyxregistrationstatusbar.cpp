#include "registration/nyxregistrationstatusbar.h"

#include "slice/image/nyxstatusfield.h"

#include <QProgressBar>

NYXRegistrationStatusBar::NYXRegistrationStatusBar(QWidget* parent)
  : QStatusBar(parent),
    _hint(new NYXStatusField("hint", tr("What can be done next"), QString(), this)),
    _count(new QLabel(this)),
    _progress(new QProgressBar(this))
{
  setObjectName("registrationStatusBar");
  setSizeGripEnabled(false); // it is not the lowest line of its window
  _hint->fillLine();
  _count->setObjectName("progressCount");
  _progress->setObjectName("progress");
  _progress->setTextVisible(false);
  _progress->setMaximumWidth(fontMetrics().averageCharWidth() * 24);
  addWidget(_hint, 1);
  addPermanentWidget(_count);
  addPermanentWidget(_progress);
  connect(this, &QStatusBar::messageChanged, this, &QWidget::setToolTip); // whole, where the window is narrow
  subjectFinished();
}

void NYXRegistrationStatusBar::setHint(const QString& text)
{
  _hint->setText(text);
}

QString NYXRegistrationStatusBar::hint() const
{
  return _hint->text();
}

void NYXRegistrationStatusBar::subjectStarted(const QString& message)
{
  showMessage(message);
  _progress->setRange(0, 0);
  _progress->show();
}

void NYXRegistrationStatusBar::subjectProgressed(int step, int ofSteps)
{
  _progress->setRange(0, ofSteps);
  _progress->setValue(step);
  _count->setText(tr("%1 / %2").arg(step).arg(ofSteps));
  _progress->show();
  _count->show();
}

void NYXRegistrationStatusBar::subjectFinished()
{
  clearMessage();
  _progress->hide();
  _count->hide();
}
