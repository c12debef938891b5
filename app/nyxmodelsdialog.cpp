#include "app/nyxmodelsdialog.h"

#include "app/core/actions/nyxmodelcreationaction.h"
#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/core/actions/nyxmodelorderaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxstack.h"
#include "app/nyxmodelpropertieseditor.h"
#include "app/nyxmodelstable.h"
#include "app/nyxnameedit.h"
#include "model/modelproposal.h"
#include "numeric/exception.h"

#include <QAction>
#include <QGridLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTreeView>

#include <algorithm>

namespace
{
/// Edits names in place and keeps the editor open while the name is refused.
class NameDelegate : public QStyledItemDelegate
{
public:
  NameDelegate(const NYXModelsTable& table, QObject* parent) : QStyledItemDelegate(parent), _table(table) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const override
  {
    auto* const edit = new NYXNameEdit(parent);
    edit->setObjectName("nameInList");
    edit->setFrame(false);
    edit->setCheck(
        [this, row = index.row()](const QString& name)
        {
          const Model* const model = _table.modelAt(row);
          return model ? refusalOfModelName(*model, name) : QString();
        });
    return edit;
  }

private:
  const NYXModelsTable& _table;
};

std::unique_ptr<Model> newModel(const Stack& stack)
{
  auto model = std::make_unique<Model>(freeModelName(stack, NYXModelsDialog::tr("Model").toStdString()));
  model->getProperties().setDefaults();
  model->getItemProperties().setDefaults();
  model->getItemProperties().setColor(proposedModelColor(stack));
  return model;
}
} // namespace

NYXModelsDialog::NYXModelsDialog(NYXStack& openStack, QWidget* parent)
  : NYXStackDialog(openStack, "modelsDialog", tr("Edit models"), parent),
    _table(new NYXModelsTable(openStack, this)),
    _list(new QTreeView(this)),
    _editor(new NYXModelPropertiesEditor(this))
{
  auto* const splitter = new QSplitter(this);
  splitter->setObjectName("modelsSplitter");
  splitter->setChildrenCollapsible(false);
  splitter->addWidget(createList());
  splitter->addWidget(_editor);
  splitter->setStretchFactor(0, 1);
  layOut(*splitter, QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel);
  button(QDialogButtonBox::Cancel)
      .setToolTip(tr("Leave without the changes to properties that were not applied; other changes can be undone"));
  connect(_editor, &NYXModelPropertiesEditor::edited, this, &NYXModelsDialog::updateButtons);
  finish(135, 30);
  if (stack().getNumModels() > 0) select({stack().getModel(0)});
}

QWidget* NYXModelsDialog::createList()
{
  auto* const panel = new QWidget(this);
  _list->setObjectName("modelList");
  _list->setToolTip(tr("Double-click a name to change it; drag models into another order"));
  _list->setModel(_table);
  _list->setItemDelegateForColumn(NYXModelsTable::Name, new NameDelegate(*_table, _list));
  const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
  _list->setIconSize({side, side});
  _list->setRootIsDecorated(false);
  _list->setUniformRowHeights(true);
  _list->setAllColumnsShowFocus(true);
  _list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  _list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  _list->setDragDropMode(QAbstractItemView::InternalMove);
  _list->setDragDropOverwriteMode(false);
  _list->header()->setStretchLastSection(false);
  _list->header()->setSectionResizeMode(NYXModelsTable::Name, QHeaderView::Stretch);
  _list->header()->setSectionResizeMode(NYXModelsTable::Geometry, QHeaderView::ResizeToContents);
  _list->header()->setSectionResizeMode(NYXModelsTable::Items, QHeaderView::ResizeToContents);

  QPushButton* const create = createButton("newModelButton", tr("New"), tr("Make another model (Insert)"));
  create->setShortcut(QKeySequence(Qt::Key_Insert));
  _rename = createButton("renameModelButton", tr("Rename"), tr("Change the name of the selected model (F2)"));
  _delete = createButton("deleteModelButton", tr("Delete"),
                         tr("Delete the selected models and all their items (Delete); this can be undone"));
  _up = createButton("modelUpButton", tr("Up"), tr("Move the selected models up"));
  _down = createButton("modelDownButton", tr("Down"), tr("Move the selected models down"));
  auto* const layout = new QGridLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_list, 0, 0, 1, 5);
  int column = 0;
  QWidget* before = _list;
  for (QPushButton* const button : {create, _rename, _delete, _up, _down})
  {
    layout->addWidget(button, 1, column++);
    setTabOrder(before, button);
    before = button;
  }
  auto* const deleteShortcut = new QAction(this); // in the list only: elsewhere the key deletes text
  deleteShortcut->setObjectName("deleteModelAction");
  deleteShortcut->setShortcut(QKeySequence::Delete);
  deleteShortcut->setShortcutContext(Qt::WidgetShortcut);
  _list->addAction(deleteShortcut);

  connect(create, &QPushButton::clicked, this, &NYXModelsDialog::createModel);
  connect(_rename, &QPushButton::clicked, this, [this] { editName(*selectedModels().front()); });
  connect(_delete, &QPushButton::clicked, this, &NYXModelsDialog::deleteSelected);
  connect(deleteShortcut, &QAction::triggered, this, &NYXModelsDialog::deleteSelected);
  connect(_up, &QPushButton::clicked, this, [this] { moveSelected(-1); });
  connect(_down, &QPushButton::clicked, this, [this] { moveSelected(1); });
  connect(_table, &NYXModelsTable::renameRequested, this, &NYXModelsDialog::rename);
  connect(_table, &NYXModelsTable::moveRequested, this, &NYXModelsDialog::moveSelectedBefore, Qt::QueuedConnection);
  connect(_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &NYXModelsDialog::showSelection);
  return panel;
}

QPushButton* NYXModelsDialog::createButton(const char* name, const QString& text, const QString& toolTip)
{
  auto* const button = new QPushButton(text, this);
  button->setObjectName(name);
  button->setToolTip(toolTip);
  button->setAutoDefault(false);
  return button;
}

std::vector<Model*> NYXModelsDialog::selectedModels() const
{
  std::vector<Model*> models;
  for (int row = 0; row < _table->rowCount(); ++row)
    if (_list->selectionModel()->isRowSelected(row, {})) models.push_back(_table->modelAt(row));
  return models;
}

void NYXModelsDialog::select(const std::vector<Model*>& models)
{
  QItemSelection selection;
  for (const Model* model : models)
    selection.select(_table->index(model->getIndex(), 0), _table->index(model->getIndex(), NYXModelsTable::Items));
  if (!models.empty())
    _list->selectionModel()->setCurrentIndex(_table->index(models.front()->getIndex(), 0),
                                             QItemSelectionModel::NoUpdate);
  _list->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void NYXModelsDialog::createModel()
{
  if (!apply()) return;
  const auto create = [this]
  { stack().history().pushStep(std::make_unique<NYXModelCreationAction>(stack(), newModel(stack()))); };
  if (!attempt(create)) return;
  Model* const created = stack().getModel(stack().getNumModels() - 1);
  select({created});
  editName(*created);
}

void NYXModelsDialog::editName(const Model& model)
{
  _list->setFocus();
  _list->edit(_table->index(model.getIndex(), NYXModelsTable::Name));
}

void NYXModelsDialog::rename(Model* model, const QString& name)
{
  const QString reason = refusalOfModelName(*model, name);
  if (!reason.isEmpty()) return showMessage(reason);
  NYXModelProperties properties(*model);
  properties.name = name.toStdString();
  attempt([&]
          { stack().history().pushStep(std::make_unique<NYXModelPropertiesAction>(*model, std::move(properties))); });
  refresh();
}

void NYXModelsDialog::deleteSelected()
{
  const std::vector<Model*> models = selectedModels();
  if (models.empty()) return;
  int numItems = 0;
  for (const Model* model : models) numItems += model->getNumItems();
  const int row = models.front()->getIndex();
  const QString what = models.size() == 1 ? tr("Model \"%1\"").arg(QString::fromStdString(models.front()->getName()))
                                          : tr("%1 models").arg(models.size());
  _editor->forgetChanges();
  const bool isDone = attempt(
      [&]
      {
        NYXActionStep step(stack().history());
        for (Model* model : models) step.push(std::make_unique<NYXModelDeletionAction>(*model));
      });
  if (stack().getNumModels() > 0) select({stack().getModel(std::min(row, stack().getNumModels() - 1))});
  const QString items = numItems == 1 ? tr("1 item") : tr("%1 items").arg(numItems);
  if (isDone) showMessage(tr("%1 deleted, with %2. Undo restores them.").arg(what, items));
  refresh();
}

void NYXModelsDialog::moveSelected(int distance)
{
  const std::vector<Model*> models = selectedModels();
  if (models.empty()) return;
  moveSelectedBefore(distance < 0 ? models.front()->getIndex() - 1 : models.back()->getIndex() + 2);
}

void NYXModelsDialog::moveSelectedBefore(int row)
{
  const std::vector<Model*> models = selectedModels();
  if (models.empty() || row < 0 || row > stack().getNumModels()) return;
  std::vector<Model*> order;
  const auto appendOthers = [&](int first, int last)
  {
    for (int i = first; i < last; ++i)
      if (std::ranges::find(models, stack().getModel(i)) == models.end()) order.push_back(stack().getModel(i));
  };
  appendOthers(0, row);
  order.insert(order.end(), models.begin(), models.end());
  appendOthers(row, stack().getNumModels());
  reorder(order);
}

void NYXModelsDialog::reorder(const std::vector<Model*>& order)
{
  attempt(
      [&]
      {
        NYXActionStep step(stack().history());
        for (int i = 0; i < stack().getNumModels(); ++i)
          if (Model* const model = order[static_cast<std::size_t>(i)]; model->getIndex() != i)
            step.push(std::make_unique<NYXModelOrderAction>(*model, i));
      });
  refresh();
}

/// Changes to the properties of the models shown so far are applied first.
void NYXModelsDialog::showSelection()
{
  const std::vector<Model*> models = selectedModels();
  if (models == _editor->getModels()) return;
  if (_editor->isChanged() && _editor->refusal().isEmpty()) attempt([this] { change(); });
  _editor->setModels(models);
  updateButtons();
}

void NYXModelsDialog::change()
{
  if (!_editor->isChanged()) return;
  if (!_editor->refusal().isEmpty())
    throw ValueError("void NYXModelsDialog::change()", _editor->refusal().toStdString());
  NYXActionStep step(stack().history());
  _editor->apply(step);
}

void NYXModelsDialog::refresh()
{
  refreshRows();
  _table->refreshData();
  _editor->refresh();
  updateButtons();
}

/// The same models stay selected.
void NYXModelsDialog::refreshRows()
{
  const std::vector<Model*> selected = _editor->getModels();
  if (_table->refreshRows()) select(selected);
}

void NYXModelsDialog::updateButtons()
{
  const std::vector<Model*> models = selectedModels();
  const int numModels = stack().getNumModels();
  _rename->setEnabled(models.size() == 1);
  _delete->setEnabled(!models.empty());
  _up->setEnabled(!models.empty() && models.front()->getIndex() > 0);
  _down->setEnabled(!models.empty() && models.back()->getIndex() < numModels - 1);
  enableApplying(_editor->refusal().isEmpty(), _editor->isChanged());
}

void NYXModelsDialog::modelCreateEvent(const NYXModelCreateEvent& event)
{
  if (concerns(event.getStack())) refreshRows();
  NYXStackDialog::modelCreateEvent(event);
}

void NYXModelsDialog::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  _editor->forget(event.getModel());
  if (concerns(event.getStack())) refreshRows();
  NYXStackDialog::modelDeleteEvent(event);
}

void NYXModelsDialog::modelPropertiesEvent(const NYXModelPropertiesEvent& event)
{
  if (concerns(event.getStack())) refreshRows();
  NYXStackDialog::modelPropertiesEvent(event);
}
