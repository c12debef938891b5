#pragma once

#include "app/nyxstackdialog.h"

#include <vector>

class Model;
class NYXModelPropertiesEditor;
class NYXModelsTable;
class QPushButton;
class QTreeView;

/// The dialog "Edit models": the models of a stack at the left, the properties of those that are selected at the right.
///
/// New, Rename, Delete and the order take effect at once, each as a step that can be undone. Properties do with Apply
/// and OK, and when other models are selected.
class NYXModelsDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  explicit NYXModelsDialog(NYXStack& stack, QWidget* parent = nullptr);

  std::vector<Model*> selectedModels() const;
  void select(const std::vector<Model*>& models);

protected:
  void change() override;
  void refresh() override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;

private:
  QWidget* createList();
  QPushButton* createButton(const char* name, const QString& text, const QString& toolTip);
  void createModel();
  void editName(const Model& model);
  void rename(Model* model, const QString& name);
  void deleteSelected();
  void moveSelected(int distance);
  void moveSelectedBefore(int row);
  void reorder(const std::vector<Model*>& order);
  void showSelection();
  void refreshRows();
  void updateButtons();

  NYXModelsTable* _table;
  QTreeView* _list;
  NYXModelPropertiesEditor* _editor;
  QPushButton* _rename;
  QPushButton* _delete;
  QPushButton* _up;
  QPushButton* _down;
};
