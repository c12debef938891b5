#include "app/nyxtransfermodelsdialog.h"

#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxmodelcreationaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxeventbatch.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxmodelchecklist.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QLabel>

namespace
{
QString itemsText(int number)
{
  return number == 1 ? NYXTransferModelsDialog::tr("1 item") : NYXTransferModelsDialog::tr("%1 items").arg(number);
}

/// The stack's name, with its file when another open stack is called the same.
QString distinctName(const NYXStack& stack)
{
  const NYXStackServer& server = NYXStackServer::server();
  bool isShared = false;
  for (int i = 0; i < server.getNumStacks(); ++i)
    isShared = isShared || (&server.getStack(i) != &stack && server.getStack(i).displayName() == stack.displayName());
  const QString file = QDir::toNativeSeparators(stack.getFilename());
  return isShared && !file.isEmpty() ? QString("%1 (%2)").arg(stack.displayName(), file) : stack.displayName();
}
} // namespace

NYXTransferModelsDialog::NYXTransferModelsDialog(NYXStack& target, QWidget* parent)
  : NYXStackDialog(target, "transferModelsDialog", tr("Transfer models"), parent),
    _from(createStackChoice("fromStack", tr("The stack whose models are copied"))),
    _to(createStackChoice("toStack", tr("The stack that gets the copies"))),
    _models(new NYXModelCheckList(this)),
    _matching(new QComboBox(this)),
    _keepsItemsOutside(new QCheckBox(tr("Keep items that reach beyond their image"), this)),
    _outcome(new QLabel(this))
{
  _models->setObjectName("models");
  _models->setToolTip(tr("The models that are copied with their items"));
  _matching->setObjectName("sliceMatching");
  _matching->setToolTip(tr("Which slice an item goes to"));
  _matching->addItems({tr("At the same place in the stack"), tr("Of the same name")});
  _keepsItemsOutside->setObjectName("keepItemsOutside");
  _keepsItemsOutside->setToolTip(tr("Otherwise items are left out that do not fit in a smaller image"));
  _outcome->setObjectName("outcome");
  _outcome->setWordWrap(true);
  _outcome->setTextFormat(Qt::PlainText);
  auto* const content = new QWidget(this);
  auto* const form = new QFormLayout(content);
  form->setContentsMargins(0, 0, 0, 0);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(tr("From"), _from);
  form->addRow(tr("To"), _to);
  form->addRow(tr("Models"), _models);
  form->addRow(tr("Slices"), _matching);
  form->addRow(QString(), _keepsItemsOutside);
  form->addRow(QString(), _outcome);
  layOut(*content, QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel);
  const NYXStackServer& server = NYXStackServer::server();
  const NYXStack* const before = server.getPreviousStack(target);
  listStacks(*_from, before ? before : server.getNextStack(target));
  listStacks(*_to, &target);
  connect(_models, &NYXModelCheckList::checkedModelsChanged, this, &NYXTransferModelsDialog::refreshSoon);
  for (QComboBox* const choice : {_from, _to, _matching})
    connect(choice, qOverload<int>(&QComboBox::activated), this, &NYXTransferModelsDialog::refreshSoon);
  connect(_keepsItemsOutside, &QCheckBox::clicked, this, &NYXTransferModelsDialog::refreshSoon);
  finish(60, 26);
}

QComboBox* NYXTransferModelsDialog::createStackChoice(const char* name, const QString& toolTip)
{
  auto* const choice = new QComboBox(this);
  choice->setObjectName(name);
  choice->setToolTip(toolTip);
  choice->setSizeAdjustPolicy(
      QComboBox::AdjustToMinimumContentsLengthWithIcon); // a long path does not widen the dialog
  return choice;
}

void NYXTransferModelsDialog::listStacks(QComboBox& choice, const NYXStack* preferred)
{
  choice.clear();
  const NYXStackServer& server = NYXStackServer::server();
  for (int i = 0; i < server.getNumStacks(); ++i)
  {
    NYXStack& listed = server.getStack(i);
    choice.addItem(distinctName(listed), QVariant::fromValue(static_cast<void*>(&listed)));
    if (&listed == preferred) choice.setCurrentIndex(i);
  }
}

/// Only a stack that is still open.
NYXStack* NYXTransferModelsDialog::chosenStack(const QComboBox& choice) const
{
  const NYXStackServer& server = NYXStackServer::server();
  for (int i = 0; i < server.getNumStacks(); ++i)
    if (&server.getStack(i) == choice.currentData().value<void*>()) return &server.getStack(i);
  return nullptr;
}

bool NYXTransferModelsDialog::isPossible() const
{
  const NYXStack *const from = chosenStack(*_from), *const to = chosenStack(*_to);
  return from && to && from != to && !_models->checkedModels().empty();
}

ModelTransfer NYXTransferModelsDialog::transfer() const
{
  const auto matching = _matching->currentIndex() == 0 ? SliceMatching::ByIndex : SliceMatching::ByName;
  return copyModels(_models->checkedModels(), *chosenStack(*_to), matching, _keepsItemsOutside->isChecked());
}

void NYXTransferModelsDialog::refresh()
{
  listStacks(*_from, chosenStack(*_from));
  listStacks(*_to, chosenStack(*_to));
  _models->setStack(chosenStack(*_from));
  showOutcome();
  enableApplying(isPossible(), true);
}

void NYXTransferModelsDialog::showOutcome()
{
  if (_from->count() < 2) return _outcome->setText(tr("Open another stack first: there is only this one."));
  if (chosenStack(*_from) == chosenStack(*_to)) return _outcome->setText(tr("Choose two different stacks."));
  if (!isPossible()) return _outcome->setText(tr("Choose the models to copy."));
  const ModelTransfer planned = transfer();
  QStringList lines(tr("%1 will be copied, pixel by pixel.").arg(itemsText(planned.numItems)));
  QStringList renamed;
  const std::vector<const Model*> models = _models->checkedModels();
  for (std::size_t i = 0; i < models.size(); ++i)
    if (models[i]->getName() != planned.copies[i].model->getName())
      renamed.append(QString::fromStdString(planned.copies[i].model->getName()));
  if (!renamed.isEmpty()) lines.append(tr("Names that are taken get a number: %1.").arg(renamed.join(", ")));
  if (planned.numResized > 0)
    lines.append(tr("%1 will have another size in space: the pixels of the two slices differ in size.")
                     .arg(itemsText(planned.numResized)));
  if (planned.numWithoutSlice > 0)
    lines.append(tr("%1 left out: no slice matches.").arg(itemsText(planned.numWithoutSlice)));
  if (planned.numOutside > 0)
  {
    const QString text = _keepsItemsOutside->isChecked() ? tr("%1 kept although beyond the image.")
                                                         : tr("%1 left out: beyond the image.");
    lines.append(text.arg(itemsText(planned.numOutside)));
  }
  _outcome->setText(lines.join('\n'));
}

void NYXTransferModelsDialog::change()
{
  if (!isPossible()) return;
  NYXStack& target = *chosenStack(*_to);
  ModelTransfer made = transfer();
  {
    const NYXEventBatch batch;
    NYXActionStep step(target.history());
    for (ModelTransfer::Copy& copy : made.copies)
    {
      step.push(std::make_unique<NYXModelCreationAction>(target, std::move(copy.model)));
      if (!copy.items.empty()) step.push(std::make_unique<NYXItemCreationAction>(std::move(copy.items)));
    }
  }
  showMessage(tr("%1 copied to \"%2\".").arg(itemsText(made.numItems), target.displayName()));
}

void NYXTransferModelsDialog::stackCloseEvent(const NYXStackCloseEvent& event)
{
  for (QComboBox* const choice : {_from, _to})
    if (const int i = choice->findData(QVariant::fromValue(static_cast<void*>(&event.getStack()))); i >= 0)
      choice->removeItem(i);
  if (isStackOpen()) _models->setStack(chosenStack(*_from));
  NYXStackDialog::stackCloseEvent(event);
}

void NYXTransferModelsDialog::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  _models->setStack(chosenStack(*_from)); // its rows are the models of the stack
  NYXStackDialog::modelDeleteEvent(event);
}
