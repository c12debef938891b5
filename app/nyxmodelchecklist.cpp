#include "app/nyxmodelchecklist.h"

#include "app/nyxcolorbutton.h"
#include "app/nyxmodelcolor.h"
#include "model/modelfilter.h"
#include "model/stack.h"

#include <QSet>
#include <QStyle>

namespace
{
constexpr int nameRole = Qt::UserRole;

QString rowText(const Model& model)
{
  const QString name = QString::fromStdString(model.getName());
  return model.getNumItems() == 1 ? NYXModelCheckList::tr("%1 (1 item)").arg(name)
                                  : NYXModelCheckList::tr("%1 (%2 items)").arg(name).arg(model.getNumItems());
}
} // namespace

NYXModelCheckList::NYXModelCheckList(QWidget* parent) : QListWidget(parent)
{
  const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
  setIconSize({side, side});
  setUniformItemSizes(true);
  connect(this, &QListWidget::itemChanged, this, &NYXModelCheckList::checkedModelsChanged);
}

void NYXModelCheckList::setStack(const Stack* stack)
{
  QSet<QString> unchecked;
  for (int i = 0; i < count() && stack == _stack; ++i)
    if (item(i)->checkState() == Qt::Unchecked) unchecked.insert(item(i)->data(nameRole).toString());
  _stack = stack;
  const QSignalBlocker blocker(this);
  const int row = currentRow();
  clear();
  for (int i = 0; stack && i < stack->getNumModels(); ++i)
  {
    const Model& model = *stack->getModel(i);
    const QString name = QString::fromStdString(model.getName());
    auto* const entry =
        new QListWidgetItem(colorSwatch(colorOf(model.getItemProperties()), iconSize()), rowText(model), this);
    entry->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    entry->setData(nameRole, name);
    entry->setCheckState(unchecked.contains(name) ? Qt::Unchecked : Qt::Checked);
  }
  setCurrentRow(row);
}

std::vector<const Model*> NYXModelCheckList::checkedModels() const
{
  std::vector<const Model*> models;
  for (int i = 0; _stack && i < count() && i < _stack->getNumModels(); ++i)
    if (item(i)->checkState() == Qt::Checked) models.push_back(_stack->getModel(i));
  return models;
}

void NYXModelCheckList::setChecked(const QString& model, bool isChecked)
{
  for (int i = 0; i < count(); ++i)
    if (item(i)->data(nameRole).toString() == model) item(i)->setCheckState(isChecked ? Qt::Checked : Qt::Unchecked);
}

void NYXModelCheckList::checkMatching(const QString& pattern)
{
  for (int i = 0; i < count(); ++i)
  {
    const bool matches = matchesWildcards(item(i)->data(nameRole).toString().toStdString(), pattern.toStdString());
    item(i)->setCheckState(matches ? Qt::Checked : Qt::Unchecked);
  }
}
