#include "analysis/spatialresults/nyxspatialresultwindow.h"

#include "analysis/spatialresults/nyxspatialplotwidget.h"
#include "app/core/nyxproposedfilename.h"
#include "numeric/atomicfile.h"
#include "numeric/exception.h"
#include "slice/image/nyxcloseaction.h"
#include "slice/image/nyxfiledialog.h"

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

int NYXSpatialResultWindow::__numWindows = 0;

namespace
{
constexpr int messageMilliseconds = 5000;
constexpr int sliceRole = Qt::UserRole;

/// A cell that is sorted by a number, whatever it shows.
class NumberCell : public QTableWidgetItem
{
public:
  NumberCell(const QString& text, double number) : QTableWidgetItem(text), _number(number) {}

  bool operator<(const QTableWidgetItem& other) const override
  {
    const double number = static_cast<const NumberCell&>(other)._number;
    return _number < number || (std::isnan(number) && !std::isnan(_number));
  }

private:
  double _number;
};

/// What a function measures.
QString distanceName(char function)
{
  if (function == 'B') return NYXSpatialResultWindow::tr("Distance to the boundary");
  if (function == 'F') return NYXSpatialResultWindow::tr("Distance from a position to the nearest object");
  if (function == 'G') return NYXSpatialResultWindow::tr("Distance to the nearest other object");
  return NYXSpatialResultWindow::tr("Distance between two objects");
}

QString pValueTip(char function)
{
  return NYXSpatialResultWindow::tr(
             "%1: the p-value is small when short distances are more frequent than in the model, and near 1 when they "
             "are less frequent")
      .arg(distanceName(function));
}

QString numberText(double number, int numDigits)
{
  return std::isnan(number) ? "NA" : QString::number(number, 'g', numDigits);
}

QString objectsText(int number)
{
  return number == 1 ? NYXSpatialResultWindow::tr("1 object") : NYXSpatialResultWindow::tr("%1 objects").arg(number);
}

void writeFile(const QString& name, const QByteArray& bytes)
{
  AtomicFile file(QFile::encodeName(name).toStdString());
  file.write({bytes.constData(), static_cast<std::size_t>(bytes.size())});
  file.commit();
}
} // namespace

NYXSpatialResultWindow::NYXSpatialResultWindow(NYXSpatialResult result)
  : _result(std::move(result)),
    _toolBar(new QToolBar(this)),
    _table(new QTableWidget(this)),
    _plots(new QTabWidget(this)),
    _statusBar(new QStatusBar(this))
{
  setObjectName("spatialResultWindow");
  setWindowTitle(tr("Spatial analysis") + " - " + _result.stackName);
  setAttribute(Qt::WA_DeleteOnClose);
  connect(qApp, &QCoreApplication::aboutToQuit, this, &QObject::deleteLater);
  createActions();
  createTable();
  createPlots();
  layOut();
  restorePlace();
  connect(_table, &QTableWidget::currentCellChanged, this, &NYXSpatialResultWindow::showPlots);
  _table->setCurrentCell(0, 0);
  _table->setFocus();
  ++__numWindows;
}

NYXSpatialResultWindow::~NYXSpatialResultWindow()
{
  --__numWindows;
}

QAction* NYXSpatialResultWindow::addToolAction(const QString& text, const QString& toolTip,
                                               const QKeySequence& shortcut, const char* icon,
                                               void (NYXSpatialResultWindow::*slot)())
{
  auto* const action = new QAction(QIcon(QString(":/icons/%1.svg").arg(icon)), text, this);
  action->setObjectName(text);
  action->setShortcut(shortcut);
  const QString keys = shortcut.toString(QKeySequence::NativeText);
  action->setToolTip(keys.isEmpty() ? toolTip : toolTip + " (" + keys + ")");
  action->setStatusTip(toolTip);
  connect(action, &QAction::triggered, this, slot);
  _toolBar->addAction(action);
  return action;
}

void NYXSpatialResultWindow::createActions()
{
  using Window = NYXSpatialResultWindow;
  _toolBar->setObjectName("spatialResultToolBar");
  _toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  const int side = _toolBar->fontMetrics().height() * 5 / 4;
  _toolBar->setIconSize({side, side});
  addToolAction(tr("Save table..."), tr("Save the p-values to a text file"), QKeySequence::Save, "save",
                &Window::saveTable);
  addToolAction(tr("Copy table"), tr("Copy the p-values with their headers"), QKeySequence::Copy, "copy",
                &Window::copyTable);
  _toolBar->addSeparator();
  addToolAction(tr("Save plot..."), tr("Save the plot that is shown to a PNG or SVG file"),
                QKeySequence("Ctrl+Shift+S"), "save", &Window::savePlot);
  addToolAction(tr("Copy plot"), tr("Copy the plot that is shown as a picture"), QKeySequence("Ctrl+Shift+C"), "copy",
                &Window::copyPlot);
  addToolAction(tr("Save curves..."), tr("Save the curves of this function on all slices to a text file"), {}, "save",
                &Window::saveCurves);
  addCloseAction(*this);
}

void NYXSpatialResultWindow::createTable()
{
  const std::string functions = _result.functions();
  const int rowHeight = fontMetrics().height() * 3 / 2;
  _table->setObjectName("spatialResults");
  _table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  _table->setSelectionBehavior(QAbstractItemView::SelectRows);
  _table->setSelectionMode(QAbstractItemView::SingleSelection);
  _table->verticalHeader()->hide();
  _table->verticalHeader()->setDefaultSectionSize(rowHeight);
  _table->setMinimumHeight(7 * rowHeight);
  _table->setColumnCount(1 + static_cast<int>(functions.size()));
  _table->setHorizontalHeaderItem(0, new QTableWidgetItem(tr("Slice")));
  for (std::size_t k = 0; k < functions.size(); ++k)
  {
    auto* const header = new QTableWidgetItem(columnName(functions[k]));
    header->setToolTip(pValueTip(functions[k]));
    _table->setHorizontalHeaderItem(static_cast<int>(k) + 1, header);
  }
  _table->setRowCount(static_cast<int>(_result.slices.size()));
  for (int row = 0; row < _table->rowCount(); ++row) fillRow(row);
  _table->sortByColumn(0, Qt::AscendingOrder); // the order of the stack
  _table->setSortingEnabled(true);
  _table->resizeColumnsToContents();
}

void NYXSpatialResultWindow::fillRow(int row)
{
  const NYXSpatialResult::Slice& slice = _result.slices[static_cast<std::size_t>(row)];
  auto* const name = new NumberCell(slice.name, row);
  name->setData(sliceRole, row);
  name->setToolTip(objectsText(slice.numObjects));
  _table->setItem(row, 0, name);
  for (std::size_t k = 0; k < slice.functions.size(); ++k)
  {
    const auto& evaluation = slice.functions[k].evaluation;
    const double pValue = evaluation ? evaluation->pValue : std::nan("");
    auto* const cell = new NumberCell(numberText(pValue, 6), pValue);
    cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    _table->setItem(row, static_cast<int>(k) + 1, cell);
  }
}

/// Not a part of the table: what it combines are its rows.
QWidget* NYXSpatialResultWindow::createCombinations()
{
  auto* const group = new QGroupBox(tr("Fisher's combination over the slices (assumes independent slices)"), this);
  group->setObjectName("combinations");
  auto* const grid = new QGridLayout(group);
  const auto add = [&](const QString& text, int row, int column, const QString& toolTip)
  {
    auto* const label = new QLabel(text, group);
    label->setObjectName(QString("combination%1%2").arg(row).arg(column));
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setToolTip(toolTip);
    grid->addWidget(label, row, column, column == 0 ? Qt::AlignLeft : Qt::AlignRight);
  };
  add(tr("of p"), 1, 0, tr("Small when short distances are more frequent than in the model on the slices together"));
  add(tr("of 1 + 1/(N + 1) - p"), 2, 0,
      tr("Small when short distances are less frequent than in the model on the slices together"));
  int column = 0;
  for (const auto& [function, pValue, complementaryValue] : _result.combinations)
  {
    ++column;
    add(columnName(function), 0, column, pValueTip(function));
    add(numberText(pValue, 4), 1, column, {});
    add(numberText(complementaryValue, 4), 2, column, {});
  }
  return group;
}

QWidget* NYXSpatialResultWindow::createMessages()
{
  auto* const group = new QGroupBox(tr("Left out"), this);
  group->setObjectName("messagesGroup");
  auto* const messages = new QPlainTextEdit(_result.messages.join('\n'), group);
  messages->setObjectName("messages");
  messages->setReadOnly(true);
  const int numLines = std::min(_result.messages.size() + 1, 5);
  messages->setFixedHeight(numLines * fontMetrics().lineSpacing() + 2 * messages->frameWidth());
  auto* const layout = new QVBoxLayout(group);
  layout->addWidget(messages);
  return group;
}

QWidget* NYXSpatialResultWindow::createNumbers()
{
  auto* const numbers = new QWidget(this);
  numbers->setObjectName("numbers");
  auto* const settings = new QLabel(_result.settings, numbers);
  settings->setObjectName("settings");
  settings->setTextFormat(Qt::PlainText);
  settings->setWordWrap(true);
  settings->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* const layout = new QVBoxLayout(numbers);
  layout->addWidget(settings);
  layout->addWidget(_table, 1);
  layout->addWidget(createCombinations());
  if (!_result.messages.isEmpty()) layout->addWidget(createMessages());
  return numbers;
}

void NYXSpatialResultWindow::createPlots()
{
  _plots->setObjectName("plots");
  for (const char function : _result.functions())
  {
    auto* const widget = new NYXSpatialPlotWidget(_plots);
    widget->setObjectName(QString("plot") + function);
    _plots->setTabToolTip(_plots->addTab(widget, QString("&") + function), distanceName(function));
  }
}

void NYXSpatialResultWindow::layOut()
{
  auto* const splitter = new QSplitter(this);
  splitter->setObjectName("spatialResultSplitter");
  splitter->addWidget(_plots);
  splitter->addWidget(createNumbers());
  splitter->setStretchFactor(0, 1);
  splitter->setChildrenCollapsible(false);
  splitter->restoreState(QSettings().value("spatialResultWindow/splitter").toByteArray());
  connect(splitter, &QSplitter::splitterMoved, this,
          [splitter] { QSettings().setValue("spatialResultWindow/splitter", splitter->saveState()); });
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(_toolBar);
  layout->addWidget(splitter, 1);
  layout->addWidget(_statusBar);
}

/// Where the last window was, a bit aside of those that are open.
void NYXSpatialResultWindow::restorePlace()
{
  const QSettings store;
  const QRect available = screen()->availableGeometry();
  const QSize size = store.value("spatialResultWindow/size", available.size() * 4 / 5).toSize();
  resize(size.boundedTo(available.size()));
  const int shift = __numWindows * fontMetrics().height() * 2;
  const QPoint position = store.value("spatialResultWindow/pos").toPoint() + QPoint(shift, shift);
  if (store.contains("spatialResultWindow/pos") && available.intersects({position, this->size()})) move(position);
}

void NYXSpatialResultWindow::moveEvent(QMoveEvent* event)
{
  QWidget::moveEvent(event);
  if (isVisible()) QSettings().setValue("spatialResultWindow/pos", pos());
}

void NYXSpatialResultWindow::resizeEvent(QResizeEvent* event)
{
  QWidget::resizeEvent(event);
  if (isVisible()) QSettings().setValue("spatialResultWindow/size", size());
}

int NYXSpatialResultWindow::currentSlice() const
{
  const QTableWidgetItem* const name = _table->item(std::max(_table->currentRow(), 0), 0);
  return name->data(sliceRole).toInt();
}

SpatialPlot NYXSpatialResultWindow::plot(std::size_t function, int slice) const
{
  const NYXSpatialResult::Slice& shown = _result.slices[static_cast<std::size_t>(slice)];
  const auto& [letter, evaluation] = shown.functions[function];
  SpatialPlot plot;
  plot.distanceLabel = QString("%1 (%2)").arg(distanceName(letter), _result.unit);
  if (!evaluation)
  {
    plot.title = tr("%1, %2: no value").arg(columnName(letter), shown.name);
    return plot;
  }
  plot.title =
      QString("%1, %2: p = %3, %4")
          .arg(columnName(letter), shown.name, numberText(evaluation->pValue, 6), objectsText(shown.numObjects));
  plot.curves = &*evaluation;
  return plot;
}

SpatialPlot NYXSpatialResultWindow::currentPlot() const
{
  return plot(static_cast<std::size_t>(_plots->currentIndex()), currentSlice());
}

void NYXSpatialResultWindow::showPlots()
{
  for (int k = 0; k < _plots->count(); ++k)
    static_cast<NYXSpatialPlotWidget*>(_plots->widget(k))->setPlot(plot(static_cast<std::size_t>(k), currentSlice()));
}

void NYXSpatialResultWindow::writeTable(const QString& filename) const
{
  writeFile(filename, _result.tableText().toUtf8());
}

void NYXSpatialResultWindow::writeCurves(const QString& filename) const
{
  writeFile(filename, _result.curvesText(static_cast<std::size_t>(_plots->currentIndex())).toUtf8());
}

void NYXSpatialResultWindow::writePlot(const QString& filename) const
{
  if (filename.endsWith(".svg", Qt::CaseInsensitive)) return writeFile(filename, plotDrawing(currentPlot()));
  QBuffer buffer;
  plotPicture(currentPlot()).save(&buffer, "PNG");
  writeFile(filename, buffer.data());
}

/// Asks for a file, whose kind is the suffix that is typed or else that of the chosen filter.
void NYXSpatialResultWindow::save(const QString& title, const QString& ending, const QStringList& filters,
                                  void (NYXSpatialResultWindow::*write)(const QString&) const)
{
  NYXFileDialog dialog(this, "spatialResultFileDialog", title, NYXFileDialog::Writing);
  dialog.setNameFilters(filters);
  dialog.selectFile(proposedFileName(_result.stackName + ending));
  dialog.rememberSize();
  const QStringList chosen = dialog.ask();
  if (chosen.isEmpty()) return;
  const QString& filename = chosen.first();
  try
  {
    (this->*write)(filename);
    showMessage(tr("Saved %1").arg(QDir::toNativeSeparators(filename)));
  }
  catch (const Exception& error)
  {
    QMessageBox box(QMessageBox::Warning, title,
                    tr("Cannot write to %1: %2").arg(filename, QString::fromStdString(error.getWhat())),
                    QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
  }
}

void NYXSpatialResultWindow::saveTable()
{
  save(tr("Save table"), "-spatial", {tr("Text table (*.txt)")}, &NYXSpatialResultWindow::writeTable);
}

void NYXSpatialResultWindow::saveCurves()
{
  const char function = _result.functions()[static_cast<std::size_t>(_plots->currentIndex())];
  save(tr("Save curves"), QString("-curves-") + function, {tr("Text table (*.txt)")},
       &NYXSpatialResultWindow::writeCurves);
}

void NYXSpatialResultWindow::savePlot()
{
  const char function = _result.functions()[static_cast<std::size_t>(_plots->currentIndex())];
  const QString& slice = _result.slices[static_cast<std::size_t>(currentSlice())].name;
  save(tr("Save plot"), QString("-%1-%2").arg(slice).arg(function),
       {tr("PNG picture (*.png)"), tr("SVG drawing (*.svg)")}, &NYXSpatialResultWindow::writePlot);
}

void NYXSpatialResultWindow::copyTable()
{
  QApplication::clipboard()->setText(_result.tableText());
  showMessage(tr("Table copied"));
}

void NYXSpatialResultWindow::copyPlot()
{
  QApplication::clipboard()->setImage(plotPicture(currentPlot()));
  showMessage(tr("Plot copied"));
}

void NYXSpatialResultWindow::showMessage(const QString& message)
{
  _statusBar->showMessage(message, messageMilliseconds);
}
