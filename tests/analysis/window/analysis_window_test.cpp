// The window shows the measures that the library computes, keeps them in step with the stack, and gives them away only
// while they are up to date.
#include "analysis/nyxanalysiswindow.h"
#include "analysis/nyxanalysiswindowmediator.h"
#include "analysis/nyxmeasures.h"
#include "analysis/nyxmodelanalysistable.h"
#include "analysis/nyxmodelanalysiswidget.h"
#include "analysis/nyxmodelitemanalysistable.h"
#include "analysis/nyxmodelitemanalysiswidget.h"
#include "analysis/nyxsliceanalysistable.h"
#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/nyxeventbatch.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "tests/support/stacks.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

#include <gtest/gtest.h>

#include <ctime>
#include <functional>

namespace
{
/// A window on a stack of three slices at a distance of 2 micrometres, with pixels of 0.5 by 0.25.
class AnalysisWindow : public testing::Test
{
protected:
  enum Tab
  {
    Models,
    Slices,
    Items
  };

  AnalysisWindow()
  {
    QSettings().clear();
    stack = &NYXStackServer::server().addStack(std::make_unique<NYXStack>());
    stack->setLengthUnit(LengthUnit(-6));
    stack->setDefaultRelativePosition(2);
    for (int k = 0; k < 3; ++k) setPixelSize(addSlice(*stack, 100, 100), 0.5F, 0.25F);
    window = std::make_unique<NYXAnalysisWindow>();
  }

  ~AnalysisWindow() override
  {
    window.reset();
    NYXStackServer& server = NYXStackServer::server();
    while (server.getNumStacks() > 0) server.removeStack(server.getStack(0));
  }

  /// Squares of 20 pixels on all slices, two of them on the last one; points on the first two.
  void draw()
  {
    Model& squares = addModel(*stack, "squares", MPrimitive::Polygon);
    for (int k = 0; k < 3; ++k) addItem(squares, *stack->getSlice(k), {{10, 10}, {30, 10}, {30, 30}, {10, 30}});
    addItem(squares, *stack->getSlice(2), {{50, 50}, {70, 50}, {70, 60}, {50, 60}});
    Model& points = addModel(*stack, "points", MPrimitive::Polypoint);
    addItem(points, *stack->getSlice(0), {{50, 50}, {60, 50}});
    addItem(points, *stack->getSlice(1), {{50, 60}});
  }

  void show()
  {
    window->setStack(stack);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    waitUntilMeasured();
  }

  NYXMeasures& measures() const { return window->mediator().measures(); }
  void waitUntilMeasured() const
  {
    ASSERT_TRUE(QTest::qWaitFor([this] { return !measures().areModelsStale() && !measures().areItemsStale(); }, 60000));
  }

  NYXModelAnalysisTable& modelTable(const char* geometry) const
  {
    return *window->findChild<NYXModelAnalysisTable*>(QString("modelAnalysisTable") + geometry);
  }
  static QStringList rowTexts(const NYXAnalysisTable& table, int row)
  {
    QStringList texts;
    for (int i = 0; i < table.model()->columnCount(); ++i) texts.append(table.model()->index(row, i).data().toString());
    return texts;
  }
  static QStringList headers(const NYXAnalysisTable& table)
  {
    QStringList texts;
    for (int i = 0; i < table.model()->columnCount(); ++i)
      texts.append(table.model()->headerData(i, Qt::Horizontal).toString());
    return texts;
  }
  static bool isShownStale(const NYXAnalysisTable& table, int row)
  {
    return table.model()->index(row, 0).data(Qt::FontRole).value<QFont>().italic();
  }
  void showTab(Tab tab) const { window->tabs().setCurrentIndex(tab); }
  void chooseModel(int model) const
  {
    window->findChild<QListWidget*>("analysedModels")->setCurrentRow(model);
    waitUntilMeasured();
  }

  NYXStack* stack;
  std::unique_ptr<NYXAnalysisWindow> window;
};

TEST_F(AnalysisWindow, ShowsTheSheets)
{
  draw();
  show();
  EXPECT_EQ(window->windowTitle(), "Mirelo - Analysis");
  const NYXAnalysisTable& contours = modelTable("Polygon");
  EXPECT_EQ(headers(contours),
            (QStringList{"Model", "Vertices", "AverageX\n[\u00b5m]", "AverageY\n[\u00b5m]", "AverageZ\n[\u00b5m]",
                         "Contours", "Area\n[\u00b5m^2]", "Volume\n[\u00b5m^3]"}));
  // Squares of 10 by 5 micrometres, and one of half that on the last slice: two slices apart, and the last slice's own
  // distance. x and y from the centre of an image of 50 by 25: (-20, 12.5 - 5) and so on.
  const QStringList row = rowTexts(contours, 0);
  EXPECT_EQ(row[0], "squares");
  EXPECT_EQ(row[1], "16");
  EXPECT_EQ(row[5], "4");
  EXPECT_EQ(row[6], "NA") << "two contours on a slice";
  EXPECT_EQ(row[7], "350");
  EXPECT_EQ(headers(modelTable("Polypoint")).size(), 5);
  EXPECT_EQ(rowTexts(modelTable("Polypoint"), 0)[1], "3");
  EXPECT_FALSE(modelTable("Polyline").isVisible());

  EXPECT_EQ(headers(window->slices()), (QStringList{"Slice", "squares", "points"}));
  EXPECT_EQ(rowTexts(window->slices(), 0), (QStringList{"slice 0", "1", "2"})) << "points are counted, not items";
  EXPECT_EQ(rowTexts(window->slices(), 2), (QStringList{"slice 2", "2", "0"}));

  const NYXAnalysisTable& items = window->items().table();
  EXPECT_EQ(headers(items), (QStringList{"Slice", "Vertices", "Length\n[\u00b5m]", "Area\n[\u00b5m^2]",
                                         "AverageX\n[\u00b5m]", "AverageY\n[\u00b5m]", "Z\n[\u00b5m]"}));
  EXPECT_EQ(rowTexts(items, 1).mid(0, 4), (QStringList{"slice 1", "4", "30", "50"}));
  chooseModel(1);
  EXPECT_EQ(headers(items), (QStringList{"Slice", "X\n[\u00b5m]", "Y\n[\u00b5m]", "Z\n[\u00b5m]"}));
  EXPECT_EQ(items.model()->rowCount(), 3) << "a row for each point";
  for (int i = 0; i < items.model()->columnCount(); ++i)
    EXPECT_FALSE(items.model()->headerData(i, Qt::Horizontal, Qt::ToolTipRole).toString().isEmpty()) << i;
}

TEST_F(AnalysisWindow, ShowsAStackWithoutModels)
{
  show();
  EXPECT_EQ(headers(window->slices()), QStringList("Slice"));
  EXPECT_EQ(window->slices().model()->rowCount(), 3);
  EXPECT_TRUE(window->findChild<QWidget*>("noModels")->isVisible());
  window->setStack(nullptr);
  EXPECT_EQ(window->slices().model()->columnCount(), 0);
  EXPECT_FALSE(window->saveAction().isEnabled());
}

TEST_F(AnalysisWindow, FollowsEdits)
{
  draw();
  show();
  showTab(Items);
  ModelItem& item = *stack->getSlice(1)->getItems()[0];
  item.setVertices(curveThrough<int>({{10, 10}, {20, 10}, {20, 20}, {10, 20}}));
  stack->notifyEvent(NYXModelItemVertexEvent(item));
  EXPECT_FALSE(window->saveAction().isEnabled());
  ASSERT_TRUE(QTest::qWaitFor([this] { return isShownStale(window->items().table(), 1); }));
  EXPECT_FALSE(isShownStale(window->items().table(), 0)) << "the other items are as they were";
  EXPECT_TRUE(isShownStale(modelTable("Polygon"), 0));
  EXPECT_FALSE(isShownStale(modelTable("Polypoint"), 0));
  EXPECT_FALSE(window->saveAction().isEnabled());
  waitUntilMeasured();
  EXPECT_EQ(rowTexts(window->items().table(), 1).mid(0, 4), (QStringList{"slice 1", "4", "15", "12.5"}));
  EXPECT_EQ(rowTexts(modelTable("Polygon"), 0)[7], "275");
  EXPECT_FALSE(isShownStale(window->items().table(), 1));
  EXPECT_TRUE(window->saveAction().isEnabled());

  addItem(*stack->getModel(1), *stack->getSlice(2), {{1, 1}});
  stack->notifyEvent(NYXModelItemCreateEvent(*stack->getSlice(2)->getItems().back()));
  stack->getModel(0)->setName("boxes");
  stack->notifyEvent(NYXModelPropertiesEvent(*stack->getModel(0), stack->getModel(0)->getProperties(),
                                             stack->getModel(0)->getItemProperties()));
  waitUntilMeasured();
  EXPECT_EQ(rowTexts(window->slices(), 2).last(), "1");
  EXPECT_EQ(rowTexts(modelTable("Polygon"), 0)[0], "boxes");

  stack->setDefaultRelativePosition(4);
  stack->notifyEvent(NYXStackSliceSpacingEvent(*stack));
  waitUntilMeasured();
  EXPECT_EQ(rowTexts(modelTable("Polygon"), 0)[7], "550");
  EXPECT_EQ(rowTexts(window->items().table(), 3).last(), "8");
}

TEST_F(AnalysisWindow, OldNumbersKeepTheirUnitUntilTheyAreMeasuredAnew)
{
  draw();
  show();
  const NYXAnalysisTable& table = modelTable("Polygon");
  const QString area = rowTexts(table, 0)[6], unit = headers(table)[6];
  stack->history().pushStep(std::make_unique<NYXLengthUnitAction>(*stack, -9));
  ASSERT_TRUE(QTest::qWaitFor([&] { return isShownStale(table, 0); }));
  measures().cancel();
  EXPECT_EQ(rowTexts(table, 0)[6], area);
  EXPECT_EQ(headers(table)[6], unit);
  measures().refresh();
  waitUntilMeasured();
  EXPECT_DOUBLE_EQ(rowTexts(table, 0)[6].toDouble(), area.toDouble() * 1e6);
  EXPECT_TRUE(headers(table)[6].contains("nm"));
}

TEST_F(AnalysisWindow, FollowsChangesThatLeaveTheMeasuresAsTheyAre)
{
  draw();
  show();
  const auto doInAStep = [this](const std::function<void()>& change)
  {
    {
      const NYXEventBatch batch;
      change();
    }
    QTest::qWait(150); // longer than changes are collected
    waitUntilMeasured();
  };
  Model& squares = *stack->getModel(0);
  const auto tellOfSquares = [&]
  { stack->notifyEvent(NYXModelPropertiesEvent(squares, squares.getProperties(), squares.getItemProperties())); };
  doInAStep(
      [&]
      {
        squares.setName("boxes");
        tellOfSquares();
      });
  EXPECT_EQ(rowTexts(modelTable("Polygon"), 0)[0], "boxes");
  doInAStep(
      [&]
      {
        stack->moveModel(0, 1);
        tellOfSquares();
      });
  EXPECT_EQ(headers(window->slices()), (QStringList{"Slice", "points", "boxes"}));
  doInAStep(
      [&]
      {
        stack->getSlice(0)->setName("first");
        stack->notifyEvent(NYXSliceNameEvent(*stack->getSlice(0)));
      });
  EXPECT_EQ(rowTexts(window->slices(), 0)[0], "first");
  std::unique_ptr<Model> removed;
  doInAStep(
      [&]
      {
        removed = stack->removeModel(&squares);
        stack->notifyEvent(NYXModelDeleteEvent(*removed, *stack));
      });
  EXPECT_EQ(headers(window->slices()), (QStringList{"Slice", "points"}));
  EXPECT_EQ(modelTable("Polygon").model()->rowCount(), 0);
}

TEST_F(AnalysisWindow, KeepsStaleMeasuresToItselfAfterACancel)
{
  draw();
  show();
  stack->setDefaultRelativePosition(4);
  stack->notifyEvent(NYXStackSliceSpacingEvent(*stack));
  ASSERT_TRUE(QTest::qWaitFor([this] { return measures().isRunning(); }));
  measures().cancel();
  ASSERT_TRUE(QTest::qWaitFor([this] { return !measures().isRunning(); }));
  if (!measures().areModelsStale()) GTEST_SKIP() << "measured before it could be cancelled";
  EXPECT_TRUE(isShownStale(modelTable("Polygon"), 0));
  EXPECT_FALSE(window->saveAction().isEnabled());
  EXPECT_FALSE(window->copyAction().isEnabled());
  QPushButton* again = nullptr;
  for (QPushButton* button : window->statusBar()->findChildren<QPushButton*>())
    if (button->isVisible()) again = button;
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->text(), "Measure again");
  again->click();
  waitUntilMeasured();
  EXPECT_EQ(rowTexts(modelTable("Polygon"), 0)[7], "700");
}

TEST_F(AnalysisWindow, MeasuresWhatChangesAfterACancel)
{
  draw();
  show();
  stack->setDefaultRelativePosition(4);
  stack->notifyEvent(NYXStackSliceSpacingEvent(*stack));
  ASSERT_TRUE(QTest::qWaitFor([this] { return measures().isRunning(); }));
  measures().cancel();
  stack->setDefaultRelativePosition(6);
  stack->notifyEvent(NYXStackSliceSpacingEvent(*stack));
  waitUntilMeasured();
  EXPECT_EQ(rowTexts(modelTable("Polygon"), 0)[7], "1050");
}

TEST_F(AnalysisWindow, TellsWhyModelsCannotBeMeasured)
{
  draw();
  stack->getSlice(2)->setImageSource(ImageSourceFile("gone.tif"));
  show();
  const auto& note = *window->findChild<QLabel*>("measuresNote");
  EXPECT_TRUE(note.isVisible());
  EXPECT_TRUE(note.text().startsWith("The model \"squares\" cannot be reconstructed: ")) << note.text().toStdString();
  EXPECT_TRUE(note.text().contains("gone.tif"));
  EXPECT_EQ(rowTexts(modelTable("Polygon"), 0), (QStringList{"squares", "16", "NA", "NA", "NA", "4", "NA", "NA"}))
      << "what needs no image is counted";
  EXPECT_EQ(rowTexts(modelTable("Polypoint"), 0)[1], "3");
  EXPECT_TRUE(window->saveAction().isEnabled());
  showTab(Slices);
  EXPECT_FALSE(note.isVisible());
  showTab(Items);
  EXPECT_TRUE(note.isVisible());
  EXPECT_FALSE(window->saveAction().isEnabled()) << "a table without the items";

  ImageSourceFile found("found.tif");
  found.setFallbackSize(100, 100);
  stack->getSlice(2)->setImageSource(found);
  stack->notifyEvent(NYXStackNameEvent(*stack)); // the folder of images is another one
  ASSERT_TRUE(QTest::qWaitFor([&] { return !note.isVisible(); }));
  EXPECT_EQ(window->items().table().model()->rowCount(), 4);
}

TEST_F(AnalysisWindow, SurvivesWhatHappensWhileItMeasures)
{
  draw();
  show();
  Model& squares = *stack->getModel(0);
  stack->notifyEvent(NYXStackSliceSpacingEvent(*stack));
  ASSERT_TRUE(QTest::qWaitFor([this] { return measures().isRunning(); }));
  const std::unique_ptr<Model> removed = stack->removeModel(&squares);
  stack->notifyEvent(NYXModelDeleteEvent(*removed, *stack));
  EXPECT_NE(measures().getItemModel(), removed.get());
  waitUntilMeasured();
  EXPECT_EQ(modelTable("Polygon").model()->rowCount(), 0);
  EXPECT_EQ(headers(window->slices()), (QStringList{"Slice", "points"}));

  stack->notifyEvent(NYXStackSliceSpacingEvent(*stack));
  ASSERT_TRUE(QTest::qWaitFor([this] { return measures().isRunning(); }));
  NYXStackServer::server().removeStack(*stack);
  EXPECT_EQ(measures().getStack(), nullptr);
  ASSERT_TRUE(QTest::qWaitFor([this] { return !measures().isRunning(); }));
  EXPECT_EQ(modelTable("Polypoint").model()->rowCount(), 0);
}

TEST_F(AnalysisWindow, SortsNumbersAndTextsWithMissingValuesLast)
{
  MeasureTable table({{"Name", MeasureColumn::Text}, {"Value"}});
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<std::pair<std::string, double>> rows = {{"s10", 2}, {"s9", nan}, {"S1", 11}, {"s9", 1}};
  for (const auto& [name, value] : rows) table.addRow(0, {table.addText(name), value});
  NYXAnalysisTable view;
  view.setTable(table);
  const auto column = [&](int i)
  {
    QStringList texts;
    for (int row = 0; row < 4; ++row) texts.append(view.model()->index(row, i).data().toString());
    return texts;
  };
  view.setCurrentIndex(view.model()->index(0, 0));
  view.horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder);
  EXPECT_EQ(column(0), (QStringList{"S1", "s9", "s9", "s10"})) << "numbers in names count as numbers";
  EXPECT_EQ(column(1), (QStringList{"11", "NA", "1", "2"})) << "equal ones keep their order";
  EXPECT_EQ(view.currentIndex().row(), 3) << "the current row stays the same one";
  view.horizontalHeader()->setSortIndicator(1, Qt::AscendingOrder);
  EXPECT_EQ(column(1), (QStringList{"1", "2", "11", "NA"}));
  view.horizontalHeader()->setSortIndicator(1, Qt::DescendingOrder);
  EXPECT_EQ(column(1), (QStringList{"11", "2", "1", "NA"}));
}

TEST_F(AnalysisWindow, KeepsTheNumbersOfLongNamesInView)
{
  const std::string name(300, 'n');
  Model& model = addModel(*stack, name, MPrimitive::Polygon);
  addItem(model, *stack->getSlice(0), {{10, 10}, {30, 10}, {30, 30}});
  show();
  const NYXAnalysisTable& contours = modelTable("Polygon");
  EXPECT_LT(contours.columnViewportPosition(1), contours.width() / 2);
  EXPECT_EQ(contours.model()->index(0, 0).data(Qt::ToolTipRole).toString().toStdString(), "<p>" + name + "</p>");
  EXPECT_LT(window->slices().columnWidth(1), window->width() / 2);
  EXPECT_TRUE(window->slices().model()->headerData(1, Qt::Horizontal, Qt::ToolTipRole).toString().contains("nnn"));
  const int wide = contours.columnWidth(0);
  stack->setDefaultRelativePosition(1.23456e-7F); // a volume of many digits
  stack->notifyEvent(NYXStackSliceSpacingEvent(*stack));
  waitUntilMeasured();
  const QString volume = contours.model()->index(0, 7).data().toString();
  EXPECT_GT(contours.columnWidth(7), contours.fontMetrics().horizontalAdvance(volume)) << volume.toStdString();
  NYXStack& other = NYXStackServer::server().addStack(std::make_unique<NYXStack>());
  addItem(addModel(other, "short", MPrimitive::Polygon), addSlice(other, 9, 9), {{1, 1}, {2, 1}, {2, 2}});
  window->setStack(&other);
  waitUntilMeasured();
  EXPECT_LT(contours.columnWidth(0), wide / 2) << "columns fit the stack that is shown";
}

TEST_F(AnalysisWindow, CopiesAndSaves)
{
  draw();
  show();
  showTab(Items);
  NYXAnalysisTable& items = window->items().table();
  items.horizontalHeader()->setSortIndicator(6, Qt::DescendingOrder);
  items.selectionModel()->select(QItemSelection(items.model()->index(2, 2), items.model()->index(3, 3)),
                                 QItemSelectionModel::Select);
  window->copyAction().trigger();
  EXPECT_EQ(QApplication::clipboard()->text(), "Length [\u00b5m]\tArea [\u00b5m^2]\n30\t50\n30\t50\n");
  items.clearSelection();
  window->copyAction().trigger();
  EXPECT_EQ(QApplication::clipboard()->text().count('\n'), 5) << "all rows, as none is selected";

  const QTemporaryDir folder;
  const QString file = folder.filePath("items.csv");
  ASSERT_TRUE(window->mediator().saveTo(file));
  QFile saved(file);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  const QList<QByteArray> lines = saved.readAll().split('\n');
  EXPECT_EQ(lines[0], "Slice,Vertices,Length [\u00b5m],Area [\u00b5m^2],AverageX [\u00b5m],AverageY [\u00b5m],Z "
                      "[\u00b5m]\r");
  EXPECT_TRUE(lines[1].startsWith("slice 0,4,30,50,")) << lines[1].constData();
  QTimer::singleShot(0, [] { qobject_cast<QMessageBox*>(QApplication::activeModalWidget())->accept(); });
  EXPECT_FALSE(window->mediator().saveTo(folder.filePath("missing/items.csv")));
}

TEST_F(AnalysisWindow, OpensItemsSlicesAndModels)
{
  draw();
  show();
  const ModelItem* opened = nullptr;
  QObject::connect(&window->mediator(), &NYXAnalysisWindowMediator::itemOpened, window.get(),
                   [&](ModelItem& item) { opened = &item; });
  QSignalSpy slices(&window->mediator(), &NYXAnalysisWindowMediator::sliceOpened);
  NYXAnalysisTable& items = window->items().table();
  items.horizontalHeader()->setSortIndicator(3, Qt::AscendingOrder); // the small one first
  showTab(Items);
  items.setCurrentIndex(items.model()->index(0, 0));
  QTest::keyClick(&items, Qt::Key_Return);
  EXPECT_EQ(opened, stack->getSlice(2)->getItems()[1]);

  showTab(Slices);
  window->slices().setCurrentIndex(window->slices().model()->index(2, 0));
  QTest::keyClick(&window->slices(), Qt::Key_Return);
  ASSERT_EQ(slices.size(), 1);
  EXPECT_EQ(slices[0][0].toInt(), 2);

  showTab(Models);
  NYXAnalysisTable& points = modelTable("Polypoint");
  const QPoint cell = points.visualRect(points.model()->index(0, 0)).center();
  QTest::mouseClick(points.viewport(), Qt::LeftButton, {}, cell);
  QTest::mouseDClick(points.viewport(), Qt::LeftButton, {}, cell);
  EXPECT_EQ(window->tabs().currentIndex(), Items);
  EXPECT_EQ(measures().getItemModel(), stack->getModel(1));
}

TEST_F(AnalysisWindow, RemembersItsPlace)
{
  show();
  window->move(40, 30);
  window->resize(700, 500);
  auto& splitter = *window->findChild<QSplitter*>("itemAnalysisWidgetSplitter");
  showTab(Items);
  QTest::qWait(50);
  QTest::mousePress(splitter.handle(1), Qt::LeftButton);
  QTest::mouseMove(splitter.handle(1), QPoint(60, 5));
  QTest::mouseRelease(splitter.handle(1), Qt::LeftButton, {}, QPoint(60, 5));
  const QList<int> sizes = splitter.sizes();
  EXPECT_EQ(QSettings().value("analysisWindow/size").toSize(), QSize(700, 500));
  EXPECT_EQ(QSettings().value("analysisWindow/pos").toPoint(), window->pos());
  window = std::make_unique<NYXAnalysisWindow>();
  EXPECT_EQ(window->size(), QSize(700, 500));
  window->show();
  showTab(Items);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  EXPECT_EQ(window->findChild<QSplitter*>("itemAnalysisWidgetSplitter")->sizes(), sizes);
}

/// The longest turn of the event loop, by the time that this thread has worked: other programs may be at work, too.
class Pauses : public QObject
{
public:
  Pauses() { startTimer(0); }
  double longest() const { return _longest; }

protected:
  void timerEvent(QTimerEvent*) override
  {
    const double now = worked();
    _longest = std::max(_longest, now - _before);
    _before = now;
  }

private:
  static double worked()
  {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  }

  double _before = worked();
  double _longest = 0;
};

TEST_F(AnalysisWindow, ShowsAHundredThousandItemsWithoutAPause)
{
  Model& model = addModel(*stack, "many", MPrimitive::Polygon);
  std::vector<std::vector<int>> pixels;
  for (int i = 0; i < 50; ++i) pixels.push_back({50 + i % 7, 50 + i});
  for (int i = 0; i < 100000; ++i)
  {
    pixels[0][0] = i % 1000;
    addItem(model, *stack->getSlice(i % 3), pixels);
  }
  Pauses pauses;
  window->setStack(stack);
  showTab(Items);
  window->show();
  waitUntilMeasured();
  EXPECT_EQ(window->items().table().model()->rowCount(), 100000);
  for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder})
    for (const int column : {0, 2, 6})
    {
      window->items().table().horizontalHeader()->setSortIndicator(column, order);
      QTest::qWait(1);
    }
  ModelItem& item = *stack->getSlice(0)->getItems()[0];
  stack->notifyEvent(NYXModelItemVertexEvent(item));
  QTest::qWait(150);
  waitUntilMeasured();
  RecordProperty("longestPause", std::to_string(pauses.longest()));
  std::cout << "longest pause: " << pauses.longest() << " ms\n";
  EXPECT_LT(pauses.longest(), 300) << "100 on a machine that does nothing else";
}
} // namespace
