#include "app/nyxspatialanalysisdialog.h"

#include "app/core/errortext.h"
#include "app/core/nyxstack.h"
#include "app/nyxnumberbox.h"
#include "app/nyxspatialanalysisplugin.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QScopeGuard>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
constexpr double greatestAmount = 1e30;
constexpr double leastPrecision = 1e-12;

bool canBound(const Model& model)
{
  return model.getGeometry() == MPrimitive::Polygon;
}

const Model* firstModelOfPoints(const Stack& stack)
{
  for (int i = 0; i < stack.getNumModels(); ++i)
    if (stack.getModel(i)->getGeometry() == MPrimitive::Polypoint) return stack.getModel(i);
  return nullptr;
}

bool hasItemOf(const StackSlice& slice, const Model* model)
{
  return std::ranges::any_of(slice.getItems(), [&](const ModelItem* item) { return item->getModel() == model; });
}
} // namespace

NYXSpatialAnalysisDialog::NYXSpatialAnalysisDialog(NYXStack& openStack, QWidget* parent)
  : NYXStackDialog(openStack, "spatialAnalysisDialog", tr("Statistical spatial analysis"), parent),
    _first(NYXSpatialAnalysisPluginConfig::load(openStack)),
    _outcome(new QLabel(this))
{
  auto* const content = new QWidget(this);
  auto* const layout = new QVBoxLayout(content);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(createModelsGroup());
  layout->addWidget(createFunctionsGroup());
  layout->addWidget(createSimulationGroup());
  _outcome->setObjectName("outcome");
  _outcome->setTextFormat(Qt::PlainText);
  _outcome->setWordWrap(true);
  layout->addWidget(_outcome);
  layout->addStretch(1);
  layOut(*content, QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  if (!_first.objects) _first.objects = firstModelOfPoints(openStack);
  show(_first);
  finish(60, 26);
}

QComboBox* NYXSpatialAnalysisDialog::addModelChoice(QFormLayout& form, const char* name, const QString& label,
                                                    const QString& toolTip)
{
  auto* const choice = new QComboBox(form.parentWidget());
  choice->setObjectName(name);
  choice->setToolTip(toolTip);
  form.addRow(label, choice);
  connect(choice, qOverload<int>(&QComboBox::activated), this, &NYXSpatialAnalysisDialog::refreshSoon);
  return choice;
}

NYXNumberBox* NYXSpatialAnalysisDialog::addNumber(QFormLayout& form, const char* name, const QString& label,
                                                  const QString& toolTip, double first, double last)
{
  NYXNumberBox* const box = NYXNumberBox::addTo(form, name, label, toolTip);
  box->setRange(first, last);
  return box;
}

QCheckBox* NYXSpatialAnalysisDialog::addFunction(QFormLayout& form, char function, const QString& measure,
                                                 const QString& meaning)
{
  auto* const box = new QCheckBox(tr("%1: %2").arg(function).arg(measure), form.parentWidget());
  box->setObjectName(QString("function") + function);
  box->setToolTip(tr("A small p-value means that short distances are more frequent than in the model (%1); one near 1, "
                     "that they are less frequent")
                      .arg(meaning));
  form.addRow(box);
  connect(box, &QCheckBox::clicked, this, &NYXSpatialAnalysisDialog::refreshSoon);
  return box;
}

QWidget* NYXSpatialAnalysisDialog::createModelsGroup()
{
  auto* const group = new QGroupBox(tr("Models"), this);
  auto* const form = new QFormLayout(group);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  _boundary = addModelChoice(*form, "boundaryModel", tr("Boundary model"),
                             tr("Closed curves: the first one on a slice bounds where its objects may lie"));
  _objects = addModelChoice(*form, "objectModel", tr("Object model"),
                            tr("Each point is an object; of curves and regions, the centre is"));
  return group;
}

QWidget* NYXSpatialAnalysisDialog::createFunctionsGroup()
{
  auto* const group = new QGroupBox(tr("Functions"), this);
  auto* const form = new QFormLayout(group);
  _functionB = addFunction(*form, 'B', tr("distances to the boundary"), tr("objects near the boundary"));
  _functionF =
      addFunction(*form, 'F', tr("distances from any position to the nearest object"), tr("objects spread out evenly"));
  _density = addNumber(*form, "evaluationDensity", tr("Evaluation density"),
                       tr("How many positions per unit of area the F function is evaluated at"), 0, greatestAmount);
  _functionG = addFunction(*form, 'G', tr("distances to the nearest other object"), tr("objects in clusters"));
  _functionH = addFunction(*form, 'H', tr("distances between all objects"), tr("objects in clusters"));
  return group;
}

QWidget* NYXSpatialAnalysisDialog::createSimulationGroup()
{
  auto* const group = new QGroupBox(tr("Random patterns"), this);
  auto* const form = new QFormLayout(group);
  _samples = addNumber(*form, "samples", tr("Monte Carlo samples"),
                       tr("How many random patterns each slice is compared with; with N of them, the least p-value is "
                          "1 / (N + 1)"),
                       NYXSpatialAnalysisPluginConfig::minNumMonteCarloSamples,
                       NYXSpatialAnalysisPluginConfig::maxNumMonteCarloSamples);
  _samples->setDecimals(0);
  _diameter = addNumber(*form, "objectDiameter", tr("Object diameter"),
                        tr("Random objects keep this distance from the boundary and twice this distance from each "
                           "other; with 0 they lie anywhere"),
                        0, greatestAmount);
  _precision = addNumber(*form, "precision", tr("Precision"),
                         tr("Step of the distances that the curves are computed for; by default a thousandth of the "
                            "diagonal of the box around the boundary"),
                         leastPrecision, greatestAmount);
  _precision->setClearable(tr("automatic"));
  _seed =
      addNumber(*form, "seed", tr("Seed"), tr("The same seed gives the same random patterns, and so the same results"),
                0, NYXSpatialAnalysisPluginConfig::maxSeed);
  _seed->setDecimals(0);
  return group;
}

void NYXSpatialAnalysisDialog::show(const NYXSpatialAnalysisPluginConfig& config)
{
  _functionB->setChecked(config.hasFunctionB);
  _functionF->setChecked(config.hasFunctionF);
  _functionG->setChecked(config.hasFunctionG);
  _functionH->setChecked(config.hasFunctionH);
  _density->setNumber(config.evaluationDensity);
  _samples->setNumber(config.numMonteCarloSamples);
  _diameter->setNumber(config.hardcoreDistance);
  _precision->setNumber(config.precision);
  _seed->setNumber(static_cast<double>(config.seed));
}

NYXSpatialAnalysisPluginConfig NYXSpatialAnalysisDialog::getConfig() const
{
  NYXSpatialAnalysisPluginConfig config;
  config.boundary = chosenModel(*_boundary);
  config.objects = chosenModel(*_objects);
  config.numMonteCarloSamples = static_cast<int>(_samples->getNumber());
  config.hardcoreDistance = _diameter->getNumber();
  config.evaluationDensity = _density->getNumber();
  if (_precision->hasNumber()) config.precision = _precision->getNumber();
  config.seed = static_cast<unsigned long>(_seed->getNumber());
  config.hasFunctionB = _functionB->isChecked();
  config.hasFunctionF = _functionF->isChecked();
  config.hasFunctionG = _functionG->isChecked();
  config.hasFunctionH = _functionH->isChecked();
  return config;
}

/// Lists the models of the stack anew. What was chosen stays chosen; at first, that is what was used last.
void NYXSpatialAnalysisDialog::listModels(QComboBox& choice, const Model* first, bool isForBoundary)
{
  const Model* const chosen = choice.count() > 0 ? chosenModel(choice) : first;
  choice.clear();
  for (int i = 0; i < stack().getNumModels(); ++i)
  {
    Model* const model = stack().getModel(i);
    if (isForBoundary && !canBound(*model)) continue;
    choice.addItem(QString::fromStdString(model->getName()), QVariant::fromValue(static_cast<void*>(model)));
    if (model == chosen) choice.setCurrentIndex(choice.count() - 1);
  }
}

/// Only a model that is still in the stack.
const Model* NYXSpatialAnalysisDialog::chosenModel(const QComboBox& choice) const
{
  for (int i = 0; i < stack().getNumModels(); ++i)
    if (stack().getModel(i) == choice.currentData().value<void*>()) return stack().getModel(i);
  return nullptr;
}

/// Of the slices with items of both models.
int NYXSpatialAnalysisDialog::countSlices() const
{
  const Model *const boundary = chosenModel(*_boundary), *const objects = chosenModel(*_objects);
  int number = 0;
  for (int i = 0; i < stack().getNumSlices(); ++i)
  {
    const StackSlice& slice = *stack().getSlice(i);
    if (hasItemOf(slice, boundary) && hasItemOf(slice, objects)) ++number;
  }
  return number;
}

/// Why the analysis cannot run; empty when it can.
QString NYXSpatialAnalysisDialog::obstacle() const
{
  if (!chosenModel(*_boundary)) return tr("The stack has no model of closed curves, which a boundary needs.");
  if (countSlices() == 0) return tr("No slice has both a boundary and objects of these models.");
  for (const QCheckBox* const function : {_functionB, _functionF, _functionG, _functionH})
    if (function->isChecked()) return {};
  return tr("Choose at least one function.");
}

void NYXSpatialAnalysisDialog::refresh()
{
  listModels(*_boundary, _first.boundary, true);
  listModels(*_objects, _first.objects, false);
  const QString unit = QString::fromStdString(stack().getLengthUnit().symbol());
  for (NYXNumberBox* const box : {_diameter, _precision}) box->setUnit(unit);
  _density->setUnit("/ " + unit + "²");
  _density->setEnabled(_functionF->isChecked());
  const QString reason = obstacle();
  const int numSlices = reason.isEmpty() ? countSlices() : 0;
  const QString prospect = numSlices == 1 ? tr("1 slice has a boundary and objects.")
                                          : tr("%1 slices have a boundary and objects.").arg(numSlices);
  _outcome->setText(reason.isEmpty() ? prospect : reason);
  enableApplying(reason.isEmpty(), true);
}

void NYXSpatialAnalysisDialog::change()
{
  const QString reason = obstacle();
  if (!reason.isEmpty()) throw UsageError("void NYXSpatialAnalysisDialog::change()", reason.toStdString());
  const NYXSpatialAnalysisPluginConfig config = getConfig();
  config.save(stack());
  setEnabled(false); // no second one before this has ended, which takes a moment after Cancel
  const auto enable = qScopeGuard([this] { setEnabled(true); });
  try
  {
    _result = NYXSpatialAnalysisPlugin(stack()).analyse(config, this);
  }
  catch (Cancelled& cancelled)
  {
    cancelled.setWhat(tr("Canceled").toStdString());
    throw;
  }
  catch (Exception& error)
  {
    error.setWhat(errorText(error).toStdString());
    throw;
  }
}
