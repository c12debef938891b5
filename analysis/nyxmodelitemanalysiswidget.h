#pragma once

#include <QWidget>

class NYXMeasures;
class NYXModelItemAnalysisTable;
class QListWidget;
class QSplitter;

/// The items of a model: a list of models beside a table of the chosen one's items.
class NYXModelItemAnalysisWidget : public QWidget
{
  Q_OBJECT

public:
  explicit NYXModelItemAnalysisWidget(QWidget* parent = nullptr);

  /// The measures are borrowed, and told which model is chosen.
  void setMeasures(NYXMeasures& measures);
  /// Fills the list, in which the same model stays chosen, else the first one.
  void showModels();
  /// Shows the items of the chosen model.
  void showItems();
  void chooseModel(int model);
  NYXModelItemAnalysisTable& table() const { return *_table; }

signals:
  /// \param source  of the row
  void opened(int source);

private:
  void followChoice();

  NYXMeasures* _measures = nullptr;
  QSplitter* _splitter;
  QListWidget* _models;
  NYXModelItemAnalysisTable* _table;
};
