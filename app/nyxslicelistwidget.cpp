#include "app/nyxslicelistwidget.h"

#include "app/nyxplaintext.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>
#include <set>
#include <vector>

namespace
{
constexpr int dotsRole = Qt::UserRole;

/// Draws the dots of an item's models at the right end of its row.
class DotsDelegate : public QStyledItemDelegate
{
public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
  {
    QStyledItemDelegate::paint(painter, option, index);
    const QVariantList colors = index.data(dotsRole).toList();
    const double diameter = option.fontMetrics.xHeight() * 0.9;
    QPointF center(option.rect.right() - diameter, option.rect.center().y() + 0.5);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(option.palette.color(QPalette::Mid), 0.5));
    for (auto color = colors.rbegin(); color != colors.rend(); ++color, center.rx() -= 1.5 * diameter)
    {
      painter->setBrush(color->value<QColor>());
      painter->drawEllipse(center, diameter / 2, diameter / 2);
    }
    painter->restore();
  }
};

QColor colorOf(const Model& model)
{
  ModelItemProperties properties;
  properties.setDefaults();
  properties.update(model.getItemProperties());
  const auto color = properties.getColor();
  return QColor(color[0], color[1], color[2]);
}

/// The models that have items on a slice, in stack order.
std::vector<const Model*> modelsOn(const StackSlice& slice, const Stack& stack)
{
  std::set<const Model*> present;
  for (const ModelItem* item : slice.getItems()) present.insert(item->getModel());
  std::vector<const Model*> models;
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    if (present.contains(stack.getModel(i))) models.push_back(stack.getModel(i));
  }
  return models;
}
} // namespace

NYXSliceListWidget::NYXSliceListWidget(QWidget* parent)
  : QWidget(parent), _filter(new QLineEdit(this)), _list(new QListWidget(this))
{
  setObjectName("sliceListPanel");
  _filter->setObjectName("sliceFilter");
  _filter->setPlaceholderText(tr("Filter slices"));
  _filter->setToolTip(tr("Shows only the slices whose name holds this text"));
  _filter->setClearButtonEnabled(true);
  _list->setObjectName("sliceList");
  _list->setUniformItemSizes(true);
  _list->setItemDelegate(new DotsDelegate(_list));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_filter);
  layout->addWidget(_list, 1);
  connect(_filter, &QLineEdit::textChanged, this, &NYXSliceListWidget::filter);
  connect(_list, &QListWidget::currentRowChanged, this, &NYXSliceListWidget::currentSliceChanged);
}

void NYXSliceListWidget::setStack(const Stack* stack)
{
  const QSignalBlocker blocker(_list);
  list(stack);
  selectNearestShown(0);
  emit currentSliceChanged(_list->currentRow());
}

void NYXSliceListWidget::refresh(const Stack& stack)
{
  const QSignalBlocker blocker(_list);
  const int row = qMax(_list->currentRow(), 0);
  list(&stack);
  selectNearestShown(row);
  emit currentSliceChanged(_list->currentRow());
}

void NYXSliceListWidget::list(const Stack* stack)
{
  _list->clear();
  for (int i = 0; stack != nullptr && i < stack->getNumSlices(); ++i)
  {
    _list->addItem(QString());
    refreshSlice(*stack, i);
  }
}

void NYXSliceListWidget::refreshSlice(const Stack& stack, int slice)
{
  QListWidgetItem* const row = _list->item(slice);
  if (row == nullptr) return;
  QVariantList colors;
  QStringList names;
  for (const Model* model : modelsOn(*stack.getSlice(slice), stack))
  {
    colors.append(colorOf(*model));
    names.append(QString::fromStdString(model->getName()));
  }
  row->setText(QString::fromStdString(stack.getSlice(slice)->getName()));
  row->setData(dotsRole, colors);
  row->setToolTip(names.isEmpty() ? tr("Nothing drawn yet") : plainText(tr("Models: %1").arg(names.join(", "))));
  showOrHide(slice);
}

int NYXSliceListWidget::numSlices() const
{
  return _list->count();
}

int NYXSliceListWidget::currentSlice() const
{
  return _list->currentRow();
}

void NYXSliceListWidget::selectNeighbour(int direction)
{
  selectShown(_list->currentRow() + direction, direction);
}

void NYXSliceListWidget::selectEnd(bool last)
{
  last ? selectShown(_list->count() - 1, -1) : selectShown(0, 1);
}

void NYXSliceListWidget::selectShown(int from, int direction)
{
  for (int row = from; row >= 0 && row < _list->count(); row += direction)
  {
    if (!_list->isRowHidden(row)) return _list->setCurrentRow(row);
  }
}

void NYXSliceListWidget::filter(const QString&)
{
  for (int i = 0; i < _list->count(); ++i) showOrHide(i);
  const int row = qMax(_list->currentRow(), 0);
  if (_list->count() > 0 && (_list->currentRow() < 0 || _list->isRowHidden(row))) selectNearestShown(row);
}

void NYXSliceListWidget::showOrHide(int row)
{
  _list->setRowHidden(row, !_list->item(row)->text().contains(_filter->text(), Qt::CaseInsensitive));
}

/// What the user does to the slice must not happen to one that is not seen; without any that is, none is selected.
void NYXSliceListWidget::selectNearestShown(int row)
{
  for (int distance = 0; distance < _list->count(); ++distance)
    for (const int candidate : {row + distance, row - distance})
      if (candidate >= 0 && candidate < _list->count() && !_list->isRowHidden(candidate))
        return _list->setCurrentRow(candidate);
  _list->setCurrentRow(-1);
}
