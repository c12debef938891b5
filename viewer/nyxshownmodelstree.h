#pragma once

#include <QWidget>

class Model;
class ModelItem;
class NYXSceneModels;
class QSlider;
class QTreeWidget;
class QTreeWidgetItem;

/// The models of a stack with their items, each with a check box that shows or hides it in 3D, and the opacity of the
/// selected model, which is a change of the stack.
class NYXShownModelsTree : public QWidget
{
  Q_OBJECT

public:
  /// The models are borrowed.
  NYXShownModelsTree(NYXSceneModels& models, QWidget* parent);

public slots:
  void refresh();

private:
  QTreeWidgetItem* createModelRow(const Model& model);
  void addItemRows(QTreeWidgetItem& row);
  void setCurrentRow(QTreeWidgetItem& modelRow, const void* address);
  void processCheck(QTreeWidgetItem* row);
  void showAll(bool isShown);
  Model* currentModel() const;
  void showOpacity();
  void changeOpacity();

  NYXSceneModels& _models;
  QTreeWidget* _tree;
  QSlider* _opacity;
};
