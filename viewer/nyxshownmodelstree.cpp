#include "viewer/nyxshownmodelstree.h"

#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "viewer/nyxscenemodels.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSlider>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <set>

namespace
{
constexpr int pointerRole = Qt::UserRole;

/// The model or item that a row stands for, by its address.
const void* addressOf(const QTreeWidgetItem& row)
{
  return reinterpret_cast<const void*>(row.data(0, pointerRole).value<quintptr>());
}

void setAddress(QTreeWidgetItem& row, const void* address)
{
  row.setData(0, pointerRole, QVariant::fromValue(reinterpret_cast<quintptr>(address)));
}

QIcon colorIcon(const ModelItemProperties& properties)
{
  const auto [red, green, blue] = properties.getColor();
  QPixmap pixmap(12, 12);
  pixmap.fill(QColor(red, green, blue));
  return QIcon(pixmap);
}
} // namespace

NYXShownModelsTree::NYXShownModelsTree(NYXSceneModels& models, QWidget* parent)
  : QWidget(parent), _models(models), _tree(new QTreeWidget(this)), _opacity(new QSlider(Qt::Horizontal, this))
{
  _tree->setObjectName("shownModels");
  _tree->setHeaderHidden(true);
  _tree->setUniformRowHeights(true);
  _opacity->setObjectName("modelOpacity");
  _opacity->setRange(0, 100);
  _opacity->setValue(100);
  _opacity->setToolTip(tr("Opacity of the selected model's surface; stored in the stack"));
  auto* const all = new QPushButton(tr("Show all"), this);
  all->setToolTip(tr("Show all models"));
  auto* const none = new QPushButton(tr("Hide all"), this);
  none->setToolTip(tr("Hide all models"));
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(_tree, 1);
  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(all);
  buttons->addWidget(none);
  layout->addLayout(buttons);
  auto* const opacity = new QHBoxLayout;
  opacity->addWidget(new QLabel(tr("Opacity"), this));
  opacity->addWidget(_opacity, 1);
  layout->addLayout(opacity);
  connect(&models, &NYXSceneModels::modelsChanged, this, &NYXShownModelsTree::refresh);
  connect(_tree, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* row) { addItemRows(*row); });
  connect(_tree, &QTreeWidget::itemChanged, this, &NYXShownModelsTree::processCheck);
  connect(_tree, &QTreeWidget::currentItemChanged, this, &NYXShownModelsTree::showOpacity);
  connect(_opacity, &QSlider::sliderReleased, this, &NYXShownModelsTree::changeOpacity);
  connect(_opacity, &QSlider::valueChanged, this,
          [this]
          {
            if (!_opacity->isSliderDown()) changeOpacity();
          });
  connect(all, &QPushButton::clicked, this, [this] { showAll(true); });
  connect(none, &QPushButton::clicked, this, [this] { showAll(false); });
  refresh();
}

QTreeWidgetItem* NYXShownModelsTree::createModelRow(const Model& model)
{
  auto* const row = new QTreeWidgetItem({QString::fromStdString(model.getName())});
  setAddress(*row, &model);
  row->setIcon(0, colorIcon(model.getItemProperties()));
  row->setCheckState(0, _models.isShown(model) ? Qt::Checked : Qt::Unchecked);
  row->setChildIndicatorPolicy(model.getNumItems() > 0 ? QTreeWidgetItem::ShowIndicator
                                                       : QTreeWidgetItem::DontShowIndicator);
  const QString problem = _models.problemOf(model);
  row->setToolTip(0,
                  problem.isEmpty() ? row->text(0).toHtmlEscaped() : (row->text(0) + ": " + problem).toHtmlEscaped());
  if (problem.isEmpty()) return row;
  QFont font = _tree->font();
  font.setItalic(true);
  row->setFont(0, font);
  return row;
}

/// With the items, in the order of the slices, when it is opened for the first time.
void NYXShownModelsTree::addItemRows(QTreeWidgetItem& row)
{
  const auto* const model = static_cast<const Model*>(addressOf(row));
  if (row.parent() != nullptr || row.childCount() > 0 || _models.getStack().findModel(model) < 0) return;
  const QSignalBlocker blocker(_tree);
  QList<QTreeWidgetItem*> rows;
  for (const ModelItem* item : model->getItems())
  {
    auto* const child = new QTreeWidgetItem(
        {tr("%1: %n vertices", nullptr, item->getSize()).arg(QString::fromStdString(item->getSlice()->getName()))});
    setAddress(*child, item);
    child->setIcon(0, colorIcon(item->getProperties() + model->getItemProperties()));
    child->setCheckState(0, _models.isShown(*item) ? Qt::Checked : Qt::Unchecked);
    rows.append(child);
  }
  row.addChildren(rows);
}

/// The row of the item at an address or, when it is not listed, that of its model.
void NYXShownModelsTree::setCurrentRow(QTreeWidgetItem& modelRow, const void* address)
{
  _tree->setCurrentItem(&modelRow);
  for (int i = 0; i < modelRow.childCount(); ++i)
    if (addressOf(*modelRow.child(i)) == address) _tree->setCurrentItem(modelRow.child(i));
}

void NYXShownModelsTree::refresh()
{
  std::set<const void*> expanded;
  for (int i = 0; i < _tree->topLevelItemCount(); ++i)
    if (_tree->topLevelItem(i)->isExpanded()) expanded.insert(addressOf(*_tree->topLevelItem(i)));
  const Model* const currentModel = this->currentModel();
  const void* const current = _tree->currentItem() == nullptr ? nullptr : addressOf(*_tree->currentItem());
  const int scrolled = _tree->verticalScrollBar()->value();
  const QSignalBlocker blocker(_tree);
  _tree->clear();
  const NYXStack& stack = _models.getStack();
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    QTreeWidgetItem* const row = createModelRow(*stack.getModel(i));
    _tree->addTopLevelItem(row);
    if (expanded.contains(stack.getModel(i)))
    {
      addItemRows(*row);
      row->setExpanded(true);
    }
    if (stack.getModel(i) == currentModel) setCurrentRow(*row, current);
  }
  _tree->doItemsLayout(); // so that the scroll bar knows how far it goes
  _tree->verticalScrollBar()->setValue(scrolled);
  showOpacity();
}

void NYXShownModelsTree::processCheck(QTreeWidgetItem* row)
{
  const bool isShown = row->checkState(0) == Qt::Checked;
  const void* const address = addressOf(*row);
  // The rows are made anew with the change, after this one has been dealt with.
  const bool isModel = row->parent() == nullptr;
  QMetaObject::invokeMethod(
      this,
      [this, address, isModel, isShown]
      {
        const NYXStack& stack = _models.getStack();
        for (int i = 0; i < stack.getNumModels(); ++i)
        {
          const Model& model = *stack.getModel(i);
          if (isModel && &model == address) return _models.showModel(model, isShown);
          for (const ModelItem* item : model.getItems())
            if (!isModel && item == address) return _models.showItem(*item, isShown);
        }
      },
      Qt::QueuedConnection);
}

void NYXShownModelsTree::showAll(bool isShown)
{
  for (int i = 0; i < _models.getStack().getNumModels(); ++i)
    _models.showModel(*_models.getStack().getModel(i), isShown);
}

/// The model of the row that is current, or of the item on it.
Model* NYXShownModelsTree::currentModel() const
{
  QTreeWidgetItem* row = _tree->currentItem();
  if (row != nullptr && row->parent() != nullptr) row = row->parent();
  if (row == nullptr) return nullptr;
  const NYXStack& stack = _models.getStack();
  for (int i = 0; i < stack.getNumModels(); ++i)
    if (stack.getModel(i) == addressOf(*row)) return stack.getModel(i);
  return nullptr;
}

void NYXShownModelsTree::showOpacity()
{
  const Model* const model = currentModel();
  const QSignalBlocker blocker(_opacity);
  _opacity->setEnabled(model != nullptr);
  if (model != nullptr && !_opacity->isSliderDown())
    _opacity->setValue(qRound(model->getProperties().getSurfaceOpacity() / 2.55F));
}

void NYXShownModelsTree::changeOpacity()
{
  Model* const model = currentModel();
  if (model == nullptr) return;
  const float opacity = _opacity->value() == 100 ? 255 : static_cast<float>(_opacity->value()) * 2.55F;
  if (model->getProperties().getSurfaceOpacity() == opacity) return;
  NYXModelProperties properties(*model);
  properties.properties.setSurfaceOpacity(opacity);
  _models.getStack().history().pushStep(std::make_unique<NYXModelPropertiesAction>(*model, properties));
}
