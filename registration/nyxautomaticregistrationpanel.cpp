#include "registration/nyxautomaticregistrationpanel.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

NYXAutomaticRegistrationPanel::NYXAutomaticRegistrationPanel(QWidget* parent)
  : QGroupBox(tr("Automatic registration"), parent),
    _current(new QRadioButton(tr("Current slice"), this)),
    _all(new QRadioButton(tr("All slices"), this)),
    _dark(new QCheckBox(tr("Dark specimen"), this)),
    _run(new QPushButton(tr("Run"), this))
{
  setObjectName("automaticRegistrationPanel");
  setToolTip(tr("Superposes the centres and the principal axes of the specimens on the two images; works best for a "
                "specimen that lies inside an image with an even background"));
  _current->setObjectName("currentSlice");
  _current->setToolTip(tr("Align the current slice on the previous one"));
  _current->setChecked(true);
  _all->setObjectName("allSlices");
  _all->setToolTip(tr("Align every slice on the one before it; the first stays as it is"));
  _dark->setObjectName("darkSpecimen");
  _dark->setToolTip(tr("The specimen is darker than its background"));
  _run->setObjectName("runButton");
  _run->setToolTip(tr("Align automatically and store the result"));
  _before = addCorrelation(tr("Of the grey levels of the two images, with the registration that the slice had"),
                           "correlationBefore");
  _after = addCorrelation(tr("Of the grey levels of the two images, with the registration found"), "correlationAfter");
  auto* form = new QFormLayout(this);
  auto* slices = new QHBoxLayout;
  slices->addWidget(_current);
  slices->addWidget(_all);
  form->addRow(slices);
  form->addRow(_dark);
  form->addRow(_run);
  form->addRow(tr("Correlation before"), _before);
  form->addRow(tr("Correlation after"), _after);
  clearCorrelations();
  connect(_run, &QPushButton::clicked, this, [this] { emit runClicked(getConfig()); });
}

QLabel* NYXAutomaticRegistrationPanel::addCorrelation(const QString& toolTip, const QString& name)
{
  auto* label = new QLabel(this);
  label->setObjectName(name);
  label->setAlignment(Qt::AlignRight);
  label->setToolTip(toolTip);
  return label;
}

NYXAutomaticRegistrationConfig NYXAutomaticRegistrationPanel::getConfig() const
{
  return {_all->isChecked(), _dark->isChecked()};
}

void NYXAutomaticRegistrationPanel::setRunnable(bool isRunnable)
{
  _run->setEnabled(isRunnable);
}

void NYXAutomaticRegistrationPanel::setCorrelations(double before, double after)
{
  _before->setText(QString::number(before, 'f', 4));
  _after->setText(QString::number(after, 'f', 4));
}

void NYXAutomaticRegistrationPanel::clearCorrelations()
{
  for (QLabel* label : {_before, _after}) label->setText(tr("–"));
}
