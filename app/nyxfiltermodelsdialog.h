#pragma once

#include "app/nyxstackdialog.h"
#include "model/modelfilter.h"

class NYXModelCheckList;
class NYXNumberBox;
class QComboBox;
class QLabel;
class QLineEdit;

/// The dialog "Filter models": deletes the items of models that do not meet conditions. Each Apply is one step of the
/// stack's history. How many items would stay is shown all the time.
class NYXFilterModelsDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  explicit NYXFilterModelsDialog(NYXStack& stack, QWidget* parent = nullptr);

protected:
  void change() override;
  void refresh() override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;

private:
  QWidget* createModelsGroup();
  QWidget* createConditionsGroup();
  NYXNumberBox* createLimit(const char* name, const QString& toolTip, const QString& noLimit);
  ModelFilter filter() const;
  void showUnits();
  void showOutcome();

  NYXModelCheckList* _models;
  QLineEdit* _modelPattern;
  QComboBox* _measure;
  NYXNumberBox* _from;
  NYXNumberBox* _to;
  NYXNumberBox* _firstSlice;
  NYXNumberBox* _lastSlice;
  QLineEdit* _slicePattern;
  QLabel* _outcome;
};
