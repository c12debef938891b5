#include "app/nyxspatialanalysisplugin.h"

#include "analysis/spatialresults/nyxspatialresultwindow.h"
#include "app/core/nyxstack.h"
#include "app/nyxnames.h"
#include "app/nyxspatialanalysisdialog.h"
#include "slice/image/nyxprogressrun.h"
#include "viewer/scene/shownstack.h"

#include <QCoreApplication>

namespace
{
QString text(const char* source)
{
  return QCoreApplication::translate("NYXSpatialAnalysisPlugin", source);
}

QString nameOf(const Model& model)
{
  return QString::fromStdString(model.getName());
}

/// What a reader needs to repeat the analysis.
QString describe(const NYXSpatialAnalysisPluginConfig& config, const QString& unit)
{
  QString description = text("%1 in %2: %3 Monte Carlo samples, object diameter %4 %5, seed %6")
                            .arg(nameOf(*config.objects), nameOf(*config.boundary))
                            .arg(config.numMonteCarloSamples)
                            .arg(QString::number(config.hardcoreDistance), unit)
                            .arg(config.seed);
  if (config.hasFunctionF)
    description += text(", evaluation density %1 / %2").arg(QString::number(config.evaluationDensity), unit + "²");
  if (config.precision) description += text(", precision %1 %2").arg(QString::number(*config.precision), unit);
  return description;
}
} // namespace

NYXSpatialResultWindow* NYXSpatialAnalysisPlugin::run(QWidget* parent)
{
  NYXSpatialAnalysisDialog dialog(_stack, parent);
  if (dialog.exec() != QDialog::Accepted) return nullptr;
  auto* const window = new NYXSpatialResultWindow(dialog.takeResult());
  nameParts(*window);
  window->show();
  window->raise();
  window->activateWindow();
  return window;
}

NYXSpatialResult NYXSpatialAnalysisPlugin::analyse(const NYXSpatialAnalysisPluginConfig& config, QWidget* parent) const
{
  std::vector<const Model*> models = {config.boundary};
  if (config.objects != config.boundary) models.push_back(config.objects);
  const ShownStack copy = copyShown(_stack, models, [](const ModelItem&) { return true; });
  StackSpatialAnalysisConfig copiedConfig = config;
  copiedConfig.boundary = copy.stack->getModel(0);
  copiedConfig.objects = copy.stack->getModel(static_cast<int>(models.size()) - 1);

  const QString title = text("Statistical spatial analysis");
  ProgressSubject subject;
  StackSpatialAnalysis analysis;
  analysis.setOuter(&subject);
  const auto work = [&]
  {
    const ProgressStep whole(subject, title.toStdString(), 1);
    analysis.run(*copy.stack, copiedConfig);
  };
  if (!runWithProgress(parent, title, subject, nullptr, work))
    throw Cancelled("NYXSpatialResult NYXSpatialAnalysisPlugin::analyse(const NYXSpatialAnalysisPluginConfig&, "
                    "QWidget*) const");
  const QString unit = QString::fromStdString(_stack.getLengthUnit().symbol());
  NYXSpatialResult result(analysis, _stack.displayName(), unit);
  result.settings = describe(config, unit);
  return result;
}
