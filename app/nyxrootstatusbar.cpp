#include "app/nyxrootstatusbar.h"

#include "slice/image/nyxstatusfield.h"

#include <QPainter>
#include <QProgressBar>
#include <QStyleOption>

#include <algorithm>

namespace
{
constexpr int refreshMilliseconds = 40;
constexpr int numSteps = 1000;
} // namespace

NYXRootStatusBar::NYXRootStatusBar(QWidget* parent)
  : QStatusBar(parent),
    _stack(new NYXStatusField("stackField", tr("The current stack; * when it has unsaved changes"), "rat-ganglion-01*",
                              this)),
    _slice(new NYXStatusField("sliceField", tr("The current slice and the number of slices"),
                              tr("slice %1 (%2)").arg("0001", "1000 / 1000"), this)),
    _progress(new QProgressBar(this))
{
  setObjectName("rootStatusBar");
  _stack->keepText();
  _slice->keepText();
  _progress->setObjectName("progress");
  _progress->setMaximumWidth(fontMetrics().averageCharWidth() * 24);
  _progress->hide();
  addPermanentWidget(_progress);
  addPermanentWidget(_stack);
  addPermanentWidget(_slice);
  connect(this, &QStatusBar::messageChanged, this, [this] { update(); }); // messages reach below empty fields
}

void NYXRootStatusBar::setImageFields(QWidget& fields)
{
  insertPermanentWidget(1, &fields);
}

void NYXRootStatusBar::setStackText(const QString& text)
{
  _stack->setText(text);
}

void NYXRootStatusBar::setSliceText(const QString& text)
{
  _slice->setText(text);
}

void NYXRootStatusBar::started(const std::string& message)
{
  _stepMessage = currentMessage().isEmpty() ? QString::fromStdString(message) : QString();
  if (!_stepMessage.isEmpty()) showMessage(_stepMessage);
  subjectStarted();
  repaint(); // the step may hold the event loop
}

void NYXRootStatusBar::progressed(double share)
{
  subjectProgressed(qRound(share * numSteps), numSteps);
}

void NYXRootStatusBar::finished()
{
  if (!_stepMessage.isEmpty()) clearMessage();
  subjectFinished();
}

void NYXRootStatusBar::subjectStarted()
{
  _progress->setRange(0, numSteps);
  _progress->setValue(0);
  _progress->show();
  _sinceRefresh.start();
}

void NYXRootStatusBar::subjectProgressed(int step, int ofSteps)
{
  _progress->setRange(0, ofSteps);
  _progress->setValue(step);
  if (_sinceRefresh.elapsed() < refreshMilliseconds) return;
  _progress->repaint(); // the computation may hold the event loop
  _sinceRefresh.restart();
}

void NYXRootStatusBar::subjectFinished()
{
  _progress->hide();
}

/// Up to the first thing at the right that says something.
int NYXRootStatusBar::freeWidth() const
{
  int width = this->width();
  const auto keepClear = [&](const QWidget& widget)
  {
    if (widget.isVisible()) width = std::min(width, widget.mapTo(this, QPoint()).x());
  };
  keepClear(*_progress);
  for (const NYXStatusField* field : findChildren<NYXStatusField*>())
    if (!field->text().isEmpty()) keepClear(*field);
  return width;
}

void NYXRootStatusBar::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  QStyleOption option;
  option.initFrom(this);
  style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);
  const int inset = fontMetrics().averageCharWidth();
  const QRect place = rect().adjusted(inset, 0, freeWidth() - width() - inset, 0);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   fontMetrics().elidedText(currentMessage(), Qt::ElideRight, place.width()));
}
