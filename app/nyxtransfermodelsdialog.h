#pragma once

#include "app/nyxstackdialog.h"
#include "model/modeltransfer.h"

class NYXModelCheckList;
class QCheckBox;
class QComboBox;
class QLabel;

/// The dialog "Transfer models": copies models with their items from one open stack to another, in one step of the
/// history of the latter.
class NYXTransferModelsDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  /// At first, to this stack from the one before it or, for the first one, behind it.
  explicit NYXTransferModelsDialog(NYXStack& target, QWidget* parent = nullptr);

protected:
  void change() override;
  void refresh() override;
  /// All open stacks can be chosen.
  bool concerns(const Stack* stack) const override { return stack != nullptr; }
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;

private:
  QComboBox* createStackChoice(const char* name, const QString& toolTip);
  void listStacks(QComboBox& choice, const NYXStack* preferred);
  NYXStack* chosenStack(const QComboBox& choice) const;
  /// Whether there are two stacks to transfer between, with models chosen.
  bool isPossible() const;
  ModelTransfer transfer() const;
  void showOutcome();

  QComboBox* _from;
  QComboBox* _to;
  NYXModelCheckList* _models;
  QComboBox* _matching;
  QCheckBox* _keepsItemsOutside;
  QLabel* _outcome;
};
