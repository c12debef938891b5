#include "analysis/spatialresults/nyxspatialresultwindow.h"

#include "analysis/spatialresults/nyxspatialplotwidget.h"
#include "numeric/randomgenerator.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>

namespace
{
/// The result of an analysis by B, F and G of three slices, the last of them too small for an evaluation position.
class SpatialResultWindow : public testing::Test
{
protected:
  SpatialResultWindow()
  {
    RandomGenerator generator(3);
    Model& cell = addModel(stack, "cell", MPrimitive::Polygon);
    Model& spots = addModel(stack, "spots", MPrimitive::Polypoint);
    for (const int size : {100, 80, 20})
    {
      StackSlice& slice = addSlice(stack, 200, 200);
      addItem(cell, slice, {{0, 0}, {size, 0}, {size, size}, {0, size}});
      std::vector<std::vector<int>> pixels = {{150, 150}}; // outside
      for (int i = 0; i < 12; ++i)
        pixels.push_back({1 + static_cast<int>(generator.uniformL(static_cast<unsigned long>(size) - 2)),
                          1 + static_cast<int>(generator.uniformL(static_cast<unsigned long>(size) - 2))});
      addItem(spots, slice, pixels);
    }
    StackSpatialAnalysisConfig config;
    config.boundary = &cell;
    config.objects = &spots;
    config.numMonteCarloSamples = 19;
    config.evaluationDensity = 0.002;
    config.hasFunctionB = config.hasFunctionF = config.hasFunctionG = true;
    analysis.run(stack, config);
    window = new NYXSpatialResultWindow(NYXSpatialResult(analysis, "cells", "µm"));
    table = window->findChild<QTableWidget*>();
    plots = window->findChild<QTabWidget*>("plots");
  }
  ~SpatialResultWindow() override { delete window; }

  double pValue(std::size_t slice, std::size_t function) const
  {
    return analysis.getResults()[slice].functions[function].evaluation->pValue;
  }
  QString label(const char* name) const { return window->findChild<QLabel*>(name)->text(); }
  QString path(const char* name) const { return QString::fromStdString(folder.file(name)); }

  Stack stack;
  StackSpatialAnalysis analysis;
  TemporaryFolder folder;
  QPointer<NYXSpatialResultWindow> window;
  QTableWidget* table;
  QTabWidget* plots;
};

TEST_F(SpatialResultWindow, ShowsNumbersMessagesAndTheirCombination)
{
  ASSERT_EQ(table->rowCount(), 3);
  ASSERT_EQ(table->columnCount(), 4);
  EXPECT_EQ(table->horizontalHeaderItem(2)->text(), "F-SDI");
  EXPECT_EQ(table->item(1, 3)->text().toDouble(), pValue(1, 2));
  EXPECT_EQ(table->item(2, 2)->text(), "NA");
  EXPECT_NEAR(label("combination11").toDouble(), combinedPValue({pValue(0, 0), pValue(1, 0), pValue(2, 0)}), 1e-4);
  EXPECT_NEAR(label("combination22").toDouble(), combinedPValue({1.05 - pValue(0, 1), 1.05 - pValue(1, 1)}), 1e-4);
  const QStringList messages = window->findChild<QPlainTextEdit*>("messages")->toPlainText().split('\n');
  EXPECT_EQ(messages.filter("1 object outside the boundary left out").size(), 3);
  EXPECT_EQ(messages.filter("slice 2: no evaluation position for function F").size(), 1);
}

TEST_F(SpatialResultWindow, PlotsTheChosenSliceHoweverTheTableIsSorted)
{
  const SpatialEvaluation<double>* shown = &*window->result().slices[0].functions[0].evaluation;
  EXPECT_EQ(window->currentPlot().curves, shown);
  EXPECT_EQ(window->currentPlot().distanceLabel, "Distance to the boundary (µm)");
  for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder})
  {
    table->sortByColumn(3, order);
    for (int row = 0; row < 3; ++row)
    {
      table->setCurrentCell(row, 1);
      plots->setCurrentIndex(2);
      EXPECT_EQ(window->currentPlot().curves->pValue, table->item(row, 3)->text().toDouble());
      EXPECT_TRUE(window->currentPlot().title.contains(table->item(row, 0)->text()));
      const auto* const widget = static_cast<NYXSpatialPlotWidget*>(plots->currentWidget());
      EXPECT_EQ(widget->getPlot().curves, window->currentPlot().curves);
      if (row == 0) continue;
      const double step = table->item(row, 3)->text().toDouble() - table->item(row - 1, 3)->text().toDouble();
      EXPECT_GE(order == Qt::AscendingOrder ? step : -step, 0);
    }
  }
  table->sortByColumn(2, Qt::AscendingOrder);
  table->setCurrentCell(2, 0); // the slice without a value comes last
  plots->setCurrentIndex(1);
  EXPECT_EQ(window->currentPlot().curves, nullptr);
  EXPECT_EQ(window->currentPlot().title, "F-SDI, slice 2: no value");
}

TEST_F(SpatialResultWindow, SavesAndCopiesTheTable)
{
  window->writeTable(path("table.txt"));
  DataSet read;
  read.load(folder.file("table.txt"));
  EXPECT_EQ(read.getNames(), (std::vector<std::string>{"Slice", "B-SDI", "F-SDI", "G-SDI"}));
  EXPECT_EQ(read.getValue<std::string>("Slice", 1), "slice 1");
  EXPECT_EQ(read.getValue<std::string>("F-SDI", 2), "NA");
  EXPECT_NEAR(static_cast<double>(read.getValue<float>("G-SDI", 1)), pValue(1, 2), 1e-7);
  window->copyTable();
  EXPECT_EQ(QApplication::clipboard()->text(), window->result().tableText());
  expectError<FileWriteError>("", [&] { window->writeTable(path("nowhere/table.txt")); });
}

TEST_F(SpatialResultWindow, SavesTheCurvesOfTheShownFunctionOnAllSlices)
{
  plots->setCurrentIndex(2);
  window->writeCurves(path("curves.txt"));
  DataSet read;
  read.load(folder.file("curves.txt"));
  int row = 0;
  for (const StackSpatialAnalysis::SliceResult& slice : analysis.getResults())
  {
    const SpatialEvaluation<double>& curves = *slice.functions[2].evaluation;
    for (int j = 0; j < curves.grid.getSize(); ++j, ++row)
    {
      ASSERT_FLOAT_EQ(read.getValue<float>("observed", row), static_cast<float>(curves.observed[j]));
      ASSERT_FLOAT_EQ(read.getValue<float>("upper", row), static_cast<float>(curves.upper[j]));
    }
  }
  EXPECT_EQ(read.getNumRows(), row);
}

TEST_F(SpatialResultWindow, SavesAndCopiesThePlot)
{
  const QImage picture = plotPicture(window->currentPlot());
  window->writePlot(path("plot.png"));
  EXPECT_EQ(QImage(path("plot.png")).convertToFormat(QImage::Format_RGB32), picture);
  window->copyPlot();
  EXPECT_EQ(QApplication::clipboard()->image().size(), picture.size());
  window->writePlot(path("plot.SVG"));
  QFile drawing(path("plot.SVG"));
  ASSERT_TRUE(drawing.open(QIODevice::ReadOnly));
  EXPECT_EQ(drawing.readAll(), plotDrawing(window->currentPlot()));
}

TEST_F(SpatialResultWindow, ClosesAndRemembersItsPlace)
{
  window->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
  window->resize(951, 653);
  QCoreApplication::processEvents();
  window->findChild<QAction*>("close")->trigger();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(window.isNull());
  const NYXSpatialResultWindow again(NYXSpatialResult(analysis, "cells", "µm"));
  EXPECT_EQ(again.size(), QSize(951, 653));
}
} // namespace
