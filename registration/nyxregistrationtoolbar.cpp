#include "registration/nyxregistrationtoolbar.h"

#include <QComboBox>
#include <QSignalBlocker>

NYXRegistrationToolBar::NYXRegistrationToolBar(QWidget* parent) : QToolBar(parent), _slices(new QComboBox(this))
{
  setObjectName("registrationToolBar");
  const int side = fontMetrics().height() * 5 / 4;
  setIconSize({side, side});
  _slices->setObjectName("sliceBox");
  _slices->setToolTip(tr("The slice that is registered on the one before it"));
  _slices->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  _slices->setMinimumContentsLength(12);
  connect(_slices, qOverload<int>(&QComboBox::activated), this, &NYXRegistrationToolBar::sliceChosen);
}

void NYXRegistrationToolBar::addGroup(const QList<QAction*>& actions)
{
  if (!this->actions().isEmpty()) addSeparator();
  addActions(actions);
}

void NYXRegistrationToolBar::addSliceList()
{
  addWidget(_slices);
}

void NYXRegistrationToolBar::setSliceNames(const QStringList& names)
{
  const QSignalBlocker blocker(_slices);
  _slices->clear();
  _slices->addItems(names);
}

void NYXRegistrationToolBar::setCurrentSlice(int index)
{
  const QSignalBlocker blocker(_slices);
  _slices->setCurrentIndex(index);
  _slices->setEnabled(_slices->count() > 0);
}
