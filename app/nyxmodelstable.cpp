#include "app/nyxmodelstable.h"

#include "app/core/nyxstack.h"
#include "app/nyxcolorbutton.h"
#include "app/nyxmodelcolor.h"

#include <QApplication>
#include <QStyle>

namespace
{
QIcon swatchOf(const Model& model)
{
  const int side = qApp->style()->pixelMetric(QStyle::PM_SmallIconSize);
  return colorSwatch(colorOf(model.getItemProperties()), {side, side});
}
} // namespace

NYXModelsTable::NYXModelsTable(NYXStack& stack, QObject* parent) : QAbstractTableModel(parent), _stack(stack)
{
  refreshRows();
}

bool NYXModelsTable::refreshRows()
{
  std::vector<const Model*> rows;
  for (int i = 0; i < _stack.getNumModels(); ++i) rows.push_back(_stack.getModel(i));
  if (rows == _rows) return false;
  beginResetModel();
  _rows = std::move(rows);
  endResetModel();
  return true;
}

void NYXModelsTable::refreshData()
{
  if (rowCount() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

Model* NYXModelsTable::modelAt(int row) const
{
  return row >= 0 && row < _stack.getNumModels() ? _stack.getModel(row) : nullptr;
}

int NYXModelsTable::rowCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : static_cast<int>(_rows.size());
}

int NYXModelsTable::columnCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : Items + 1;
}

QVariant NYXModelsTable::data(const QModelIndex& index, int role) const
{
  const Model* const model = modelAt(index.row());
  if (!model) return {};
  if (role == Qt::TextAlignmentRole)
    return QVariant(Qt::AlignVCenter | (index.column() == Items ? Qt::AlignRight : Qt::AlignLeft));
  if (role == Qt::DecorationRole && index.column() == Name) return swatchOf(*model);
  if (role != Qt::DisplayRole && role != Qt::EditRole) return {};
  if (index.column() == Name) return QString::fromStdString(model->getName());
  if (index.column() == Geometry) return QString::fromStdString(ModelProperties::toString(model->getGeometry()));
  return model->getNumItems();
}

QVariant NYXModelsTable::headerData(int section, Qt::Orientation orientation, int role) const
{
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole)
    return QVariant(Qt::AlignVCenter | (section == Items ? Qt::AlignRight : Qt::AlignLeft));
  if (role != Qt::DisplayRole) return {};
  const QString titles[] = {tr("Name"), tr("Geometry"), tr("Items")};
  return titles[section];
}

Qt::ItemFlags NYXModelsTable::flags(const QModelIndex& index) const
{
  if (!index.isValid()) return Qt::ItemIsDropEnabled; // between the rows
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
  return index.column() == Name ? flags | Qt::ItemIsEditable : flags;
}

bool NYXModelsTable::setData(const QModelIndex& index, const QVariant& value, int role)
{
  Model* const model = modelAt(index.row());
  if (!model || role != Qt::EditRole) return false;
  emit renameRequested(model, value.toString());
  return true;
}

bool NYXModelsTable::dropMimeData(const QMimeData*, Qt::DropAction, int row, int, const QModelIndex& parent)
{
  const int end = rowCount();
  emit moveRequested(row >= 0 ? row : parent.isValid() ? parent.row() : end);
  return true;
}
