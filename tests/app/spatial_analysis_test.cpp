// "Run" of the spatial analysis: from the dialog to the window of the results.
#include "dialog_test_support.h"
#include "window_test_support.h"

#include "analysis/spatialresults/nyxspatialresultwindow.h"
#include "app/nyxnumberbox.h"
#include "app/nyxrootwindow.h"
#include "app/nyxspatialanalysisdialog.h"
#include "app/nyxspatialanalysisplugin.h"
#include "numeric/randomgenerator.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFormLayout>
#include <QLabel>
#include <QProcess>
#include <QProgressDialog>
#include <QRegularExpression>

namespace
{
/// The first slice has a boundary of 60 by 60 pixels with 20 points in it.
class SpatialAnalysis : public DialogTest
{
protected:
  SpatialAnalysis()
  {
    Model& points = addModel(stack, "points", MPrimitive::Polypoint);
    Model& domain = addModel(stack, "domain", MPrimitive::Polygon);
    StackSlice& slice = *stack.getSlice(0);
    addItem(domain, slice, {{10, 10}, {70, 10}, {70, 70}, {10, 70}});
    RandomGenerator generator(7);
    std::vector<std::vector<int>> pixels;
    for (int i = 0; i < 20; ++i)
      pixels.push_back({11 + static_cast<int>(generator.uniformL(58)), 11 + static_cast<int>(generator.uniformL(58))});
    addItem(points, slice, pixels);
    stack.setModified(false);
    before = file();
    config.boundary = &domain;
    config.objects = &points;
    config.hasFunctionG = true;
  }

  static QString outcome(const QDialog& dialog) { return find<QLabel>(dialog, "outcome").text(); }

  /// Runs the analysis of this configuration; `act` is called with its progress dialog, if it takes that long. What
  /// the first dialog says when it stays open becomes the message, and it is closed.
  NYXSpatialResultWindow* run(const std::function<void(QDialog&)>& act)
  {
    config.save(stack);
    said.clear();
    NYXSpatialResultWindow* window = nullptr;
    inDialogs(
        [&](QDialog& dialog)
        {
          if (qobject_cast<QProgressDialog*>(&dialog)) return act(dialog);
          QTimer::singleShot(0, &dialog, [&] { analyse(dialog); }); // act can be called meanwhile
        },
        [&] { window = NYXSpatialAnalysisPlugin(stack).run(nullptr); });
    return window;
  }

  void analyse(QDialog& dialog)
  {
    press(dialog, "okButton");
    if (!dialog.isVisible()) return;
    said = find<QLabel>(dialog, "message").text().toStdString();
    press(dialog, "cancelButton");
  }

  NYXSpatialAnalysisPluginConfig config;
  std::string said;
};

TEST_F(SpatialAnalysis, ConfigurationIsKept)
{
  const auto first = NYXSpatialAnalysisPluginConfig::load(stack);
  EXPECT_EQ(first.numMonteCarloSamples, 99);
  EXPECT_EQ(first.hardcoreDistance, 0);
  EXPECT_EQ(first.evaluationDensity, 1);
  EXPECT_FALSE(first.hasFunctionB || first.hasFunctionF || first.hasFunctionG || first.hasFunctionH);
  config.numMonteCarloSamples = 999;
  config.hardcoreDistance = 0.1 + 0.2;
  config.precision = 1e-5;
  config.seed = 2147483647;
  config.save(stack);
  const auto kept = NYXSpatialAnalysisPluginConfig::load(stack);
  EXPECT_EQ(kept.boundary, config.boundary);
  EXPECT_EQ(kept.objects, config.objects);
  EXPECT_EQ(kept.numMonteCarloSamples, 999);
  EXPECT_EQ(kept.hardcoreDistance, 0.1 + 0.2);
  EXPECT_EQ(kept.precision, 1e-5);
  EXPECT_EQ(kept.seed, 2147483647u);
  EXPECT_TRUE(kept.hasFunctionG && !kept.hasFunctionH);

  Stack other; // without models
  PixelCalibration millimetres;
  millimetres.setLengthUnit(LengthUnit(-3));
  other.setDefaultPixelCalibration(millimetres);
  const auto elsewhere = NYXSpatialAnalysisPluginConfig::load(other);
  EXPECT_EQ(elsewhere.boundary, nullptr);
  EXPECT_EQ(elsewhere.numMonteCarloSamples, 999);
  EXPECT_EQ(elsewhere.hardcoreDistance, 0);

  QSettings().setValue("spatialAnalysis/samples", 1);
  QSettings().setValue("spatialAnalysis/hardcoreDistance", "nan");
  QSettings().setValue("spatialAnalysis/evaluationDensity", -1);
  const auto mended = NYXSpatialAnalysisPluginConfig::load(stack);
  EXPECT_EQ(mended.numMonteCarloSamples, 9);
  EXPECT_EQ(mended.hardcoreDistance, 0);
  EXPECT_EQ(mended.evaluationDensity, 1);
}

TEST_F(SpatialAnalysis, DialogSaysWhyItCannotRun)
{
  NYXSpatialAnalysisDialog dialog(stack);
  EXPECT_EQ(dialog.windowTitle(), "Statistical spatial analysis");
  const struct
  {
    const char* name;
    const char* label;
  } labels[] = {{"samples", "Monte Carlo samples"},
                {"objectDiameter", "Object diameter"},
                {"evaluationDensity", "Evaluation density"}};
  for (const auto& [name, text] : labels)
  {
    auto& box = find<NYXNumberBox>(dialog, name);
    const auto* const form = qobject_cast<QFormLayout*>(box.parentWidget()->layout());
    EXPECT_EQ(static_cast<QLabel*>(form->labelForField(&box))->text(), text);
  }
  EXPECT_EQ(find<NYXNumberBox>(dialog, "samples").minimum(), 9);
  EXPECT_EQ(find<NYXNumberBox>(dialog, "samples").maximum(), 9999);
  EXPECT_TRUE(find<NYXNumberBox>(dialog, "evaluationDensity").suffix().endsWith("m²"));

  auto& boundary = find<QComboBox>(dialog, "boundaryModel");
  for (const char* name : {"fibres", "tissue", "points"}) EXPECT_EQ(boundary.findText(name), -1);
  EXPECT_EQ(find<QComboBox>(dialog, "objectModel").currentText(), "points");
  choose(dialog, "boundaryModel", boundary.findText("nuclei"));
  EXPECT_EQ(outcome(dialog), "No slice has both a boundary and objects of these models.");
  choose(dialog, "boundaryModel", boundary.findText("domain"));
  EXPECT_EQ(outcome(dialog), "Choose at least one function.");
  EXPECT_FALSE(isEnabled(dialog, "okButton"));
  EXPECT_FALSE(isEnabled(dialog, "evaluationDensity"));
  find<QCheckBox>(dialog, "functionF").click();
  QCoreApplication::processEvents();
  EXPECT_EQ(outcome(dialog), "1 slice has a boundary and objects.");
  EXPECT_TRUE(isEnabled(dialog, "okButton"));
  EXPECT_TRUE(isEnabled(dialog, "evaluationDensity"));
  EXPECT_TRUE(dialog.getConfig().hasFunctionF && dialog.getConfig().boundary == config.boundary);

  NYXStack& empty = addStack("empty");
  NYXSpatialAnalysisDialog none(empty);
  EXPECT_EQ(outcome(none), "The stack has no model of closed curves, which a boundary needs.");
  EXPECT_FALSE(isEnabled(none, "okButton"));
}

TEST_F(SpatialAnalysis, ShowsTheResultAndLeavesTheStackAlone)
{
  config.hasFunctionB = config.hasFunctionF = config.hasFunctionH = true;
  config.hardcoreDistance = 0.325;
  config.seed = 5;
  const std::unique_ptr<NYXSpatialResultWindow> window(run([](QDialog&) {}));
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
  StackSpatialAnalysis direct;
  direct.run(stack, config);
  const auto& shown = window->result().slices;
  ASSERT_EQ(shown.size(), 1u);
  for (std::size_t k = 0; k < 4; ++k)
  {
    const auto& expected = *direct.getResults()[0].functions[k].evaluation;
    EXPECT_EQ(shown[0].functions[k].evaluation->pValue, expected.pValue);
    EXPECT_EQ(shown[0].functions[k].evaluation->average, expected.average);
  }
  EXPECT_THAT(window->result().settings.toStdString(),
              testing::AllOf(testing::HasSubstr("points in domain: 99 Monte Carlo samples, object diameter 0.325 "),
                             testing::HasSubstr("seed 5")));
  expectNoStep();
}

TEST_F(SpatialAnalysis, ErrorsAndCancelLeaveTheDialogOpen)
{
  const struct
  {
    double diameter; // of 20 objects in about 19.5 by 19.5
    int numSamples;
    std::string message;
  } cases[] = {{9, 99, "slice 0: Too many unsuccessful attemps to generate a vertex"}, // fits for none
               {0, 9999, "Canceled"},
               {1.5, 9999, "Canceled"}}; // hard to fit
  config.hasFunctionH = true;
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.diameter);
    config.hardcoreDistance = c.diameter;
    config.numMonteCarloSamples = c.numSamples;
    config.precision = 0.003;
    QElapsedTimer sinceCancel;
    const NYXSpatialResultWindow* const window = run(
        [&](QDialog& dialog)
        {
          if (c.message != "Canceled") return;
          sinceCancel.start();
          click(dialog, "Cancel");
        });
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(said, c.message);
    EXPECT_TRUE(c.message != "Canceled" || sinceCancel.elapsed() < 1000) << sinceCancel.elapsed();
  }
  expectNoStep();
}

TEST(SpatialAnalysisRun, GivesTheSameAsTheBatchCommand)
{
  WindowTest test;
  EXPECT_FALSE(test.action("Run")->isEnabled());
  EXPECT_EQ(test.action("Run")->toolTip(), "Open a stack first");
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  ASSERT_TRUE(test.action("Run")->isEnabled());
  const NYXStack& stack = NYXStackServer::server().getStack(0);
  NYXSpatialAnalysisPluginConfig config;
  config.boundary = config.objects = stack.getModel(0); // the nucleus, whose centre is inside
  config.numMonteCarloSamples = 19;
  config.evaluationDensity = 3;
  config.seed = 11;
  config.hasFunctionB = config.hasFunctionF = true;
  config.save(stack);
  inDialogs(
      [](QDialog& dialog)
      {
        if (!qobject_cast<NYXSpatialAnalysisDialog*>(&dialog)) return;
        click(dialog, "OK");
      },
      [&] { test.action("Run")->trigger(); });
  const QWidgetList windows = QApplication::topLevelWidgets();
  const auto isResult = [](QWidget* widget) { return qobject_cast<NYXSpatialResultWindow*>(widget) != nullptr; };
  const auto found = std::ranges::find_if(windows, isResult);
  ASSERT_NE(found, windows.end());
  const std::unique_ptr<NYXSpatialResultWindow> window(static_cast<NYXSpatialResultWindow*>(*found));

  QProcess batch;
  const QString nucleus = QString::fromStdString(config.boundary->getName());
  batch.start(MIRELO_BATCH, {"spatial", MIRELO_EXAMPLE, "--boundary", nucleus, "--objects", nucleus, "--functions",
                             "BF", "--samples", "19", "--density", "3", "--seed", "11"});
  ASSERT_TRUE(batch.waitForFinished());
  const QString printed = batch.readAllStandardOutput();
  EXPECT_GT(printed.count('\n'), 10);
  const QString expected = QString(printed).replace(',', '\t').remove('\r').replace(QRegularExpression("\\.0\\b"), "");
  EXPECT_EQ(window->result().tableText().toStdString(), expected.toStdString());
}
} // namespace
