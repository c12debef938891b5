#pragma once

#include <QAbstractTableModel>

#include <vector>

class Model;
class NYXStack;

/// The models of a stack as rows of name, geometry and number of items. It changes nothing itself: it tells what the
/// user asks for.
class NYXModelsTable : public QAbstractTableModel
{
  Q_OBJECT

public:
  enum Column
  {
    Name,
    Geometry,
    Items
  };

  NYXModelsTable(NYXStack& stack, QObject* parent);

  /// To be called when models have come, gone or moved. \return whether the selection was lost
  bool refreshRows();
  /// To be called when something about the models has changed.
  void refreshData();

  Model* modelAt(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

signals:
  void renameRequested(Model* model, const QString& name);
  /// The dragged rows are to go before a row.
  void moveRequested(int row);

private:
  NYXStack& _stack;
  std::vector<const Model*> _rows;
};
