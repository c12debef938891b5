#include "app/nyxslicelistwidget.h"

#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxlistmenu.h"
#include "slice/image/nyxplaintext.h"

#include <QIcon>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>
#include <set>
#include <vector>

namespace
{
enum Role
{
  SliceRole = Qt::UserRole,
  DotsRole,  // colours of the models on the slice
  NamesRole, // and their names
  LockRole
};

/// Draws the lock and the dots of an item's models at the right end of its row.
class RowDelegate : public QStyledItemDelegate
{
public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
  {
    QStyledItemDelegate::paint(painter, option, index);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const double left = paintDots(*painter, option, index.data(DotsRole).toList());
    if (index.data(LockRole).toBool()) paintLock(*painter, option, left);
    painter->restore();
  }

private:
  /// \return where the dots begin
  static double paintDots(QPainter& painter, const QStyleOptionViewItem& option, const QVariantList& colors)
  {
    const double diameter = option.fontMetrics.xHeight() * 0.9;
    QPointF center(option.rect.right() - diameter, option.rect.center().y() + 0.5);
    painter.setPen(QPen(option.palette.color(QPalette::Mid), 0.5));
    for (auto color = colors.rbegin(); color != colors.rend(); ++color, center.rx() -= 1.5 * diameter)
    {
      painter.setBrush(color->value<QColor>());
      painter.drawEllipse(center, diameter / 2, diameter / 2);
    }
    return center.x() + diameter / 2;
  }

  static void paintLock(QPainter& painter, const QStyleOptionViewItem& option, double right)
  {
    const int side = option.fontMetrics.height();
    const QRect place(qRound(right) - side, option.rect.center().y() - side / 2, side, side);
    if (option.state & QStyle::State_Selected) // whose colour is too near to the icon's
    {
      painter.setPen(Qt::NoPen);
      painter.setBrush(option.palette.base());
      painter.drawRoundedRect(place, side / 4.0, side / 4.0);
    }
    QIcon(":/icons/lock.svg").paint(&painter, place);
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
  _list->setItemDelegate(new RowDelegate(_list));
  _list->setDragDropMode(QAbstractItemView::InternalMove);
  _list->setToolTip(tr("Drag a slice to another place to change the order"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_filter);
  layout->addWidget(_list, 1);
  connect(_filter, &QLineEdit::textChanged, this, &NYXSliceListWidget::filter);
  connect(_list, &QListWidget::currentRowChanged, this, &NYXSliceListWidget::noteRow);
  connect(
      _list->model(), &QAbstractItemModel::rowsMoved, this,
      [this](const QModelIndex&, int from, int, const QModelIndex&, int before)
      { emit sliceDragged(from, before > from ? before - 1 : before); },
      Qt::QueuedConnection); // once the view is done with the drop
}

void NYXSliceListWidget::setMenuActions(const QList<QAction*>& actions)
{
  setListMenu(*_list, actions);
}

void NYXSliceListWidget::setStack(const NYXStack* stack)
{
  list(stack, 0);
}

void NYXSliceListWidget::refresh(const NYXStack& stack)
{
  list(&stack, qMax(_list->currentRow(), 0));
}

/// Selects the slice nearest to a row when the one selected last is gone.
void NYXSliceListWidget::list(const NYXStack* stack, int row)
{
  const QSignalBlocker blocker(_list);
  const int scroll = stack == _stack ? _list->verticalScrollBar()->value() : 0;
  _stack = stack;
  _list->clear();
  for (int i = 0; stack != nullptr && i < stack->getNumSlices(); ++i)
  {
    auto* const item = new QListWidgetItem(_list);
    item->setFlags(item->flags() & ~Qt::ItemIsDropEnabled); // slices are dropped between rows
    item->setData(SliceRole, QVariant::fromValue<void*>(stack->getSlice(i)));
    item->setData(LockRole, stack->isLocked(*stack->getSlice(i)));
    refreshSlice(*stack, i);
  }
  _list->doItemsLayout();
  _list->verticalScrollBar()->setValue(scroll); // selecting moves on only as far as needed
  selectNearestShown(selectedRow(row));
  noteRow(_list->currentRow());
}

void NYXSliceListWidget::refreshSlice(const NYXStack& stack, int slice)
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
  row->setData(DotsRole, colors);
  row->setData(NamesRole, names);
  describe(slice);
}

void NYXSliceListWidget::showLock(int slice, bool isLocked)
{
  QListWidgetItem* const row = _list->item(slice);
  if (row == nullptr) return;
  row->setData(LockRole, isLocked);
  describe(slice);
}

/// Hides the row if the filter does, and tells what is known of its slice.
void NYXSliceListWidget::describe(int row)
{
  QListWidgetItem& item = *_list->item(row);
  item.setHidden(!item.text().contains(_filter->text(), Qt::CaseInsensitive));
  const QStringList names = item.data(NamesRole).toStringList();
  QStringList lines(names.isEmpty() ? tr("Nothing drawn yet") : tr("Models: %1").arg(names.join(", ")));
  if (item.data(LockRole).toBool()) lines.append(tr("Locked: a computation works on it"));
  if (!_filter->text().isEmpty()) lines.append(tr("Clear the filter to change the order by dragging"));
  item.setToolTip(plainText(lines.join('\n')));
}

void NYXSliceListWidget::noteRow(int row)
{
  if (row >= 0) _selected[_stack] = sliceOf(row);
  emit currentSliceChanged(row);
}

const StackSlice* NYXSliceListWidget::sliceOf(int row) const
{
  return static_cast<const StackSlice*>(_list->item(row)->data(SliceRole).value<void*>());
}

/// Row of the slice that was selected last.
int NYXSliceListWidget::selectedRow(int otherwise) const
{
  const auto selected = _selected.find(_stack);
  for (int row = 0; selected != _selected.end() && row < _list->count(); ++row)
    if (sliceOf(row) == selected->second) return row;
  return otherwise;
}

void NYXSliceListWidget::selectSlice(const StackSlice& slice)
{
  for (int row = 0; row < _list->count(); ++row)
    if (sliceOf(row) == &slice && !_list->isRowHidden(row)) return _list->setCurrentRow(row);
}

void NYXSliceListWidget::revealSlice(const StackSlice& slice)
{
  if (const int row = slice.getIndex(); row < _list->count() && _list->isRowHidden(row)) _filter->clear();
  selectSlice(slice);
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

void NYXSliceListWidget::filter(const QString& text)
{
  _list->setDragDropMode(text.isEmpty() ? QAbstractItemView::InternalMove : QAbstractItemView::NoDragDrop);
  for (int i = 0; i < _list->count(); ++i) describe(i);
  const int row = selectedRow(0);
  if (_list->count() > 0 && (_list->currentRow() < 0 || _list->isRowHidden(row))) selectNearestShown(row);
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
