#pragma once

#include "analysis/spatialresults/nyxspatialresult.h"
#include "analysis/spatialresults/spatialplot.h"

#include <QWidget>

#include <functional>

class NYXSpatialPlotWidget;
class QAction;
class QStatusBar;
class QTableWidget;
class QTabWidget;
class QToolBar;

/// The result of a spatial analysis: a table of p-values with their combinations, and a plot for each function of the
/// slice that is chosen in the table. Remembers its place. Several may be open; each deletes itself when it is closed.
class NYXSpatialResultWindow : public QWidget
{
  Q_OBJECT

public:
  explicit NYXSpatialResultWindow(NYXSpatialResult result);
  ~NYXSpatialResultWindow() override;

  const NYXSpatialResult& result() const { return _result; }

  /// Of the function and the slice that are shown.
  SpatialPlot currentPlot() const;

  // What files are written by; they replace the file. \throw FileWriteError  it cannot be written
  void writeTable(const QString& filename) const;
  /// The curves of the function that is shown, of all slices.
  void writeCurves(const QString& filename) const;
  /// As a drawing when the file's name ends with ".svg", else as a PNG picture.
  void writePlot(const QString& filename) const;

public slots:
  void saveTable();
  void saveCurves();
  void savePlot();
  void copyTable();
  void copyPlot();

protected:
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  void createActions();
  QAction* addToolAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut, const char* icon,
                         void (NYXSpatialResultWindow::*slot)());
  QWidget* createNumbers();
  void createTable();
  void fillRow(int row);
  QWidget* createCombinations();
  QWidget* createMessages();
  void createPlots();
  void layOut();
  void restorePlace();
  int currentSlice() const;
  SpatialPlot plot(std::size_t function, int slice) const;
  void showPlots();
  void save(const QString& title, const QString& ending, const QStringList& filters,
            void (NYXSpatialResultWindow::*write)(const QString&) const);
  void showMessage(const QString& message);

  static int __numWindows; // that are open

  NYXSpatialResult _result;
  QToolBar* _toolBar;
  QTableWidget* _table;
  QTabWidget* _plots;
  QStatusBar* _statusBar;
};
