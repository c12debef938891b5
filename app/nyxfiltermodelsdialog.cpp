#include "app/nyxfiltermodelsdialog.h"

#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/nyxeventbatch.h"
#include "app/core/nyxstack.h"
#include "app/nyxmodelchecklist.h"
#include "app/nyxnumberbox.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>

namespace
{
constexpr double greatestSize = 1e30;
constexpr int greatestSlice = 1000000000;
} // namespace

NYXFilterModelsDialog::NYXFilterModelsDialog(NYXStack& openStack, QWidget* parent)
  : NYXStackDialog(openStack, "filterModelsDialog", tr("Filter models"), parent),
    _models(new NYXModelCheckList(this)),
    _modelPattern(new QLineEdit(this)),
    _measure(new QComboBox(this)),
    _from(createLimit("sizeFrom", tr("Smaller items are deleted"), tr("no limit"))),
    _to(createLimit("sizeTo", tr("Larger items are deleted"), tr("no limit"))),
    _firstSlice(createLimit("firstSlice", tr("Items on slices before are deleted"), tr("first"))),
    _lastSlice(createLimit("lastSlice", tr("Items on slices behind are deleted"), tr("last"))),
    _slicePattern(new QLineEdit(this)),
    _outcome(new QLabel(this))
{
  auto* const content = new QWidget(this);
  auto* const layout = new QVBoxLayout(content);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const groups = new QHBoxLayout;
  groups->addWidget(createModelsGroup(), 1);
  groups->addWidget(createConditionsGroup(), 1);
  layout->addLayout(groups, 1);
  _outcome->setObjectName("outcome");
  _outcome->setTextFormat(Qt::PlainText);
  _outcome->setWordWrap(true);
  layout->addWidget(_outcome);
  layOut(*content, QDialogButtonBox::Apply | QDialogButtonBox::Close);
  button(QDialogButtonBox::Apply).setToolTip(tr("Delete the items that do not stay; this can be undone"));
  finish(90, 22);
}

QWidget* NYXFilterModelsDialog::createModelsGroup()
{
  auto* const group = new QGroupBox(tr("Models"), this);
  auto* const form = new QFormLayout(group);
  _models->setObjectName("models");
  _models->setToolTip(tr("The models whose items are filtered; others stay as they are"));
  _modelPattern->setObjectName("modelPattern");
  _modelPattern->setPlaceholderText(tr("such as axon*"));
  _modelPattern->setToolTip(tr("Chooses the models of these names: * stands for any text, ? for any character"));
  _modelPattern->setClearButtonEnabled(true);
  form->addRow(_models);
  form->addRow(tr("Choose by name"), _modelPattern);
  connect(_modelPattern, &QLineEdit::textChanged, _models, &NYXModelCheckList::checkMatching);
  connect(_models, &NYXModelCheckList::checkedModelsChanged, this, &NYXFilterModelsDialog::refreshSoon);
  return group;
}

QWidget* NYXFilterModelsDialog::createConditionsGroup()
{
  auto* const group = new QGroupBox(tr("Keep items"), this);
  auto* const form = new QFormLayout(group);
  _measure->setObjectName("measure");
  _measure->setToolTip(tr("What the size of an item is told by; an item that does not have it stays"));
  _measure->addItems({tr("Number of vertices"), tr("Length"), tr("Area")});
  form->addRow(tr("Size"), _measure);
  form->addRow(tr("from"), _from);
  form->addRow(tr("to"), _to);
  for (NYXNumberBox* const box : {_firstSlice, _lastSlice})
  {
    box->setDecimals(0);
    box->setRange(1, greatestSlice);
  }
  form->addRow(tr("Slices from"), _firstSlice);
  form->addRow(tr("to"), _lastSlice);
  _slicePattern->setObjectName("slicePattern");
  _slicePattern->setPlaceholderText(tr("any"));
  _slicePattern->setToolTip(tr("Items on other slices are deleted: * stands for any text, ? for any character"));
  _slicePattern->setClearButtonEnabled(true);
  form->addRow(tr("Slice name"), _slicePattern);
  connect(_measure, qOverload<int>(&QComboBox::activated), this, &NYXFilterModelsDialog::refreshSoon);
  for (NYXNumberBox* const box : {_from, _to, _firstSlice, _lastSlice})
    connect(box, &NYXNumberBox::edited, this, &NYXFilterModelsDialog::refreshSoon);
  connect(_slicePattern, &QLineEdit::textChanged, this, &NYXFilterModelsDialog::refreshSoon);
  return group;
}

NYXNumberBox* NYXFilterModelsDialog::createLimit(const char* name, const QString& toolTip, const QString& noLimit)
{
  auto* const box = new NYXNumberBox(this);
  box->setObjectName(name);
  box->setToolTip(toolTip);
  box->setRange(0, greatestSize);
  box->setClearable(noLimit);
  box->setNumber({});
  return box;
}

ModelFilter NYXFilterModelsDialog::filter() const
{
  ModelFilter filter;
  filter.measure = static_cast<ItemMeasure>(_measure->currentIndex());
  if (_from->hasNumber()) filter.from = _from->getNumber();
  if (_to->hasNumber()) filter.to = _to->getNumber();
  if (_firstSlice->hasNumber()) filter.firstSlice = static_cast<int>(_firstSlice->getNumber()) - 1;
  if (_lastSlice->hasNumber()) filter.lastSlice = static_cast<int>(_lastSlice->getNumber()) - 1;
  filter.slicePattern = _slicePattern->text().toStdString();
  return filter;
}

void NYXFilterModelsDialog::refresh()
{
  _models->setStack(&stack());
  showUnits();
  showOutcome();
}

void NYXFilterModelsDialog::showUnits()
{
  const QString length = isCalibrated(stack()) ? QString::fromStdString(stack().getLengthUnit().symbol()) : tr("px");
  const QString units[] = {QString(), length, length + QString::fromUtf8("²")};
  for (NYXNumberBox* const box : {_from, _to})
    if (box->getUnit() != units[_measure->currentIndex()]) box->setUnit(units[_measure->currentIndex()]);
}

void NYXFilterModelsDialog::showOutcome()
{
  const std::vector<const Model*> models = _models->checkedModels();
  const auto numRemoved = static_cast<int>(itemsToRemove(models, filter()).size());
  int numItems = 0, numUnmeasured = 0;
  for (const Model* model : models)
  {
    numItems += model->getNumItems();
    for (const ModelItem* item : model->getItems())
      if (std::isnan(measureOf(*item, filter().measure))) ++numUnmeasured;
  }
  QString text =
      tr("%1 of %2 items would stay, %3 would be deleted.").arg(numItems - numRemoved).arg(numItems).arg(numRemoved);
  if (numUnmeasured > 0 && (_from->hasNumber() || _to->hasNumber()))
    text += " " + tr("Items without such a size, which stay: %1.").arg(numUnmeasured);
  _outcome->setText(text);
  enableApplying(numRemoved > 0, true);
}

void NYXFilterModelsDialog::change()
{
  std::vector<ModelItem*> items = itemsToRemove(_models->checkedModels(), filter());
  if (items.empty()) return;
  const auto numItems = static_cast<int>(items.size());
  {
    const NYXEventBatch batch;
    stack().history().pushStep(std::make_unique<NYXItemDeletionAction>(std::move(items)));
  }
  showMessage(numItems == 1 ? tr("1 item deleted. Undo restores it.")
                            : tr("%1 items deleted. Undo restores them.").arg(numItems));
}

void NYXFilterModelsDialog::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  if (concerns(event.getStack())) _models->setStack(&stack()); // its rows are the models of the stack
  NYXStackDialog::modelDeleteEvent(event);
}
