#include "registration/nyxregistrationstatusbar.h"

#include <QLabel>
#include <QProgressBar>

NYXRegistrationStatusBar::NYXRegistrationStatusBar(QWidget* parent)
  : QStatusBar(parent), _hint(new QLabel(this)), _count(new QLabel(this)), _progress(new QProgressBar(this))
{
  setObjectName("registrationStatusBar");
  _hint->setObjectName("hint");
  _hint->setTextFormat(Qt::PlainText);
  _hint->setMinimumWidth(1); // rather cut off than in the way of a narrow window
  _count->setObjectName("progressCount");
  _progress->setObjectName("progress");
  _progress->setTextVisible(false);
  _progress->setMaximumWidth(fontMetrics().averageCharWidth() * 24);
  addWidget(_hint, 1);
  addPermanentWidget(_count);
  addPermanentWidget(_progress);
  subjectFinished();
}

void NYXRegistrationStatusBar::setImageFields(QWidget& fields)
{
  insertPermanentWidget(3, &fields);
}

void NYXRegistrationStatusBar::setHint(const QString& text)
{
  _hint->setText(text);
  _hint->setToolTip(text);
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
