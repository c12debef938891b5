#include "app/nyxspatialanalysispluginconfig.h"

#include "model/stack.h"

#include <QSettings>

#include <algorithm>
#include <cmath>

namespace
{
const char* const settingsGroup = "spatialAnalysis";

const Model* modelOfName(const Stack& stack, const QString& name)
{
  for (int i = 0; i < stack.getNumModels(); ++i)
    if (stack.getModel(i)->getName() == name.toStdString()) return stack.getModel(i);
  return nullptr;
}

void readAmount(const QSettings& store, const char* key, double& amount)
{
  const double stored = store.value(key, amount).toDouble();
  if (stored >= 0 && std::isfinite(stored)) amount = stored;
}

QString nameOf(const Model* model)
{
  return model ? QString::fromStdString(model->getName()) : QString();
}
} // namespace

NYXSpatialAnalysisPluginConfig NYXSpatialAnalysisPluginConfig::load(const Stack& stack)
{
  NYXSpatialAnalysisPluginConfig config;
  QSettings store;
  store.beginGroup(settingsGroup);
  config.boundary = modelOfName(stack, store.value("boundary").toString());
  config.objects = modelOfName(stack, store.value("objects").toString());
  config.numMonteCarloSamples = std::clamp(store.value("samples", config.numMonteCarloSamples).toInt(),
                                           minNumMonteCarloSamples, maxNumMonteCarloSamples);
  config.seed = static_cast<unsigned long>(std::clamp(store.value("seed", 1).toInt(), 0, maxSeed));
  config.hasFunctionB = store.value("functionB", false).toBool();
  config.hasFunctionF = store.value("functionF", false).toBool();
  config.hasFunctionG = store.value("functionG", false).toBool();
  config.hasFunctionH = store.value("functionH", false).toBool();
  if (store.value("unit").toString() != QString::fromStdString(stack.getLengthUnit().symbol())) return config;
  readAmount(store, "hardcoreDistance", config.hardcoreDistance);
  readAmount(store, "evaluationDensity", config.evaluationDensity);
  double precision = 0;
  readAmount(store, "precision", precision);
  if (precision > 0) config.precision = precision;
  return config;
}

void NYXSpatialAnalysisPluginConfig::save(const Stack& stack) const
{
  QSettings store;
  store.beginGroup(settingsGroup);
  store.setValue("boundary", nameOf(boundary));
  store.setValue("objects", nameOf(objects));
  store.setValue("samples", numMonteCarloSamples);
  store.setValue("seed", static_cast<int>(seed));
  store.setValue("functionB", hasFunctionB);
  store.setValue("functionF", hasFunctionF);
  store.setValue("functionG", hasFunctionG);
  store.setValue("functionH", hasFunctionH);
  store.setValue("unit", QString::fromStdString(stack.getLengthUnit().symbol()));
  store.setValue("hardcoreDistance", hardcoreDistance);
  store.setValue("evaluationDensity", evaluationDensity);
  store.setValue("precision", precision.value_or(0));
}
