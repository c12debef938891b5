#pragma once

#include "analysis/spatialresults/nyxspatialresult.h"
#include "app/nyxspatialanalysispluginconfig.h"
#include "app/nyxstackdialog.h"

#include <optional>

class NYXNumberBox;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;

/// The dialog "Statistical spatial analysis": asks what to compare with what, and runs the analysis. It stays open when
/// that fails or is cancelled. Nothing is changed in the stack.
class NYXSpatialAnalysisDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  explicit NYXSpatialAnalysisDialog(NYXStack& stack, QWidget* parent = nullptr);

  NYXSpatialAnalysisPluginConfig getConfig() const;
  /// Of the analysis that the dialog was accepted with.
  NYXSpatialResult takeResult() { return std::move(*_result); }

protected:
  void change() override;
  void refresh() override;

private:
  QComboBox* addModelChoice(QFormLayout& form, const char* name, const QString& label, const QString& toolTip);
  NYXNumberBox* addNumber(QFormLayout& form, const char* name, const QString& label, const QString& toolTip,
                          double first, double last);
  QCheckBox* addFunction(QFormLayout& form, char function, const QString& measure, const QString& meaning);
  QWidget* createModelsGroup();
  QWidget* createFunctionsGroup();
  QWidget* createSimulationGroup();
  void show(const NYXSpatialAnalysisPluginConfig& config);
  void listModels(QComboBox& choice, const Model* first, bool isForBoundary);
  const Model* chosenModel(const QComboBox& choice) const;
  int countSlices() const;
  QString obstacle() const;

  NYXSpatialAnalysisPluginConfig _first; // what is shown at first
  std::optional<NYXSpatialResult> _result;
  QComboBox* _boundary;
  QComboBox* _objects;
  QCheckBox* _functionB;
  QCheckBox* _functionF;
  QCheckBox* _functionG;
  QCheckBox* _functionH;
  NYXNumberBox* _density;
  NYXNumberBox* _samples;
  NYXNumberBox* _diameter;
  NYXNumberBox* _precision;
  NYXNumberBox* _seed;
  QLabel* _outcome;
};
