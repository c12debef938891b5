#pragma once

#include <QListWidget>

#include <vector>

class Model;
class Stack;

/// The models of a stack, each with a box to choose it by. At first all are chosen.
class NYXModelCheckList : public QListWidget
{
  Q_OBJECT

public:
  explicit NYXModelCheckList(QWidget* parent = nullptr);

  /// Shows the models of a stack, or none, as they are now; models of the same name stay as they were chosen.
  void setStack(const Stack* stack);
  std::vector<const Model*> checkedModels() const;
  void setChecked(const QString& model, bool isChecked);
  /// Chooses the models whose names fit a pattern, and no others.
  void checkMatching(const QString& pattern);

signals:
  void checkedModelsChanged();

private:
  const Stack* _stack = nullptr;
};
