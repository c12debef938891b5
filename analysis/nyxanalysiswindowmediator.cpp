#include "analysis/nyxanalysiswindowmediator.h"

#include "analysis/nyxanalysiswindow.h"
#include "analysis/nyxmeasures.h"
#include "analysis/nyxmodelanalysiswidget.h"
#include "analysis/nyxmodelitemanalysistable.h"
#include "analysis/nyxmodelitemanalysiswidget.h"
#include "analysis/nyxsliceanalysistable.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxproposedfilename.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "numeric/atomicfile.h"
#include "slice/image/nyxfiledialog.h"

#include <QAction>
#include <QFile>
#include <QMessageBox>
#include <QTabWidget>

#include <utility>

NYXAnalysisWindowMediator::NYXAnalysisWindowMediator(NYXAnalysisWindow& window)
  : QObject(&window), _window(window), _measures(new NYXMeasures(this))
{
  NYXEventServer::attach(*this);
}

NYXAnalysisWindowMediator::~NYXAnalysisWindowMediator()
{
  NYXEventServer::detach(*this);
}

void NYXAnalysisWindowMediator::initialize()
{
  _window.items().setMeasures(*_measures);
  connect(_measures, &NYXMeasures::modelsChanged, this, &NYXAnalysisWindowMediator::showModels);
  connect(_measures, &NYXMeasures::itemsChanged, this, &NYXAnalysisWindowMediator::showItems);
  connect(_measures, &NYXMeasures::outdated, this, &NYXAnalysisWindowMediator::showState);
  connect(_measures, &NYXMeasures::runningChanged, this, &NYXAnalysisWindowMediator::showState);
  connect(_measures, &NYXMeasures::progressChanged, &_window, &NYXAnalysisWindow::showProgress);
  connect(_measures, &NYXMeasures::failed, &_window, &NYXAnalysisWindow::showMessage);
  connect(&_window.tabs(), &QTabWidget::currentChanged, this, &NYXAnalysisWindowMediator::showState);
  connect(&_window.models(), &NYXModelAnalysisWidget::opened, this,
          [this](int model)
          {
            _window.items().chooseModel(model);
            _window.tabs().setCurrentIndex(Items);
          });
  connect(&_window.slices(), &NYXAnalysisTable::opened, this, &NYXAnalysisWindowMediator::sliceOpened);
  connect(&_window.items(), &NYXModelItemAnalysisWidget::opened, this, &NYXAnalysisWindowMediator::openItem);
  showModels();
}

void NYXAnalysisWindowMediator::setStack(NYXStack* stack)
{
  if (stack != _measures->getStack()) // columns fit each stack anew
    for (NYXAnalysisTable* table : _window.findChildren<NYXAnalysisTable*>()) table->setTable(MeasureTable());
  _measures->setStack(stack);
  showName();
}

NYXAnalysisWindowMediator::Sheet NYXAnalysisWindowMediator::sheet() const
{
  return static_cast<Sheet>(_window.tabs().currentIndex());
}

void NYXAnalysisWindowMediator::showModels()
{
  _window.models().setMeasures(*_measures);
  _window.slices().setStack(_measures->getStack());
  _window.items().showModels();
  showState();
}

void NYXAnalysisWindowMediator::showItems()
{
  _window.items().showItems();
  showState();
}

bool NYXAnalysisWindowMediator::isSheetStale() const
{
  switch (sheet())
  {
  case Models:
    return _measures->areModelsStale();
  case Items:
    return _measures->areItemsStale();
  default:
    return false;
  }
}

/// Why numbers are missing from the sheet, of the first model that misses them; empty when there are all.
QString NYXAnalysisWindowMediator::failure() const
{
  const NYXStack* const stack = _measures->getStack();
  if (stack == nullptr || sheet() == Slices) return {};
  for (int i = 0; i < stack->getNumModels(); ++i)
  {
    const Model& model = *stack->getModel(i);
    const bool isShown = sheet() == Models || &model == _measures->getItemModel();
    const std::string reason = isShown ? _measures->failureOf(model) : std::string();
    if (!reason.empty())
      return tr("The model \"%1\" cannot be reconstructed: %2")
          .arg(QString::fromStdString(model.getName()), QString::fromStdString(reason));
  }
  return {};
}

/// Numbers that are out of date, and a table that misses the items, are not to be taken elsewhere.
void NYXAnalysisWindowMediator::showState()
{
  const QString reason = failure();
  const bool isComplete = sheet() != Items || reason.isEmpty();
  const bool isUsable = _measures->getStack() != nullptr && !isSheetStale() && isComplete;
  _window.saveAction().setEnabled(isUsable);
  _window.copyAction().setEnabled(isUsable);
  for (NYXAnalysisTable* table : _window.findChildren<NYXAnalysisTable*>()) table->viewport()->update();
  _window.showNote(reason);
  const bool isStale = _measures->areModelsStale() || _measures->areItemsStale();
  _window.showRunning(_measures->isRunning(), isStale && !_measures->isWaiting());
}

void NYXAnalysisWindowMediator::showName()
{
  const NYXStack* const stack = _measures->getStack();
  _window.showStackName(stack == nullptr ? tr("No stack") : stack->displayName());
}

void NYXAnalysisWindowMediator::stackNameEvent(const NYXStackNameEvent&)
{
  showName();
}

void NYXAnalysisWindowMediator::stackFileNameEvent(const NYXStackFileNameEvent&)
{
  showName();
}

void NYXAnalysisWindowMediator::openItem(int source)
{
  if (ModelItem* const item = _measures->itemOf(source)) return emit itemOpened(*item);
  _window.showMessage(tr("This item is not in the stack any more"));
}

void NYXAnalysisWindowMediator::copySelection()
{
  const NYXAnalysisTable* table = nullptr;
  if (sheet() == Models) table = _window.models().selectedTable();
  if (sheet() == Slices) table = &_window.slices();
  if (sheet() == Items) table = &_window.items().table();
  const int numRows = table == nullptr ? copyAll(_window.models().table()) : table->copySelection();
  _window.showMessage(numRows == 1 ? tr("Copied a row") : tr("Copied %1 rows").arg(numRows));
}

std::string NYXAnalysisWindowMediator::sheetText() const
{
  switch (sheet())
  {
  case Models:
    return _window.models().table().toCsv();
  case Slices:
    return _window.slices().measures().table().toCsv();
  default:
    return _window.items().table().measures().table().toCsv();
  }
}

QString NYXAnalysisWindowMediator::proposedName() const
{
  QString name = _measures->getStack()->displayName() + "-";
  name += sheet() == Models ? "models" : sheet() == Slices ? "slices" : "items";
  if (sheet() == Items && _measures->getItemModel() != nullptr)
    name += "-" + QString::fromStdString(_measures->getItemModel()->getName());
  return proposedFileName(name) + ".csv";
}

void NYXAnalysisWindowMediator::saveCurrentSheet()
{
  NYXFileDialog files(&_window, "measuresFileDialog", tr("Save measures"), NYXFileDialog::Writing);
  files.setNameFilter(tr("Comma-separated text") + " (*.csv)");
  files.selectFile(proposedName());
  files.rememberSize();
  const auto shown = std::make_pair(_measures->getStack(), _measures->getItemModel());
  const QStringList chosen = files.ask();
  if (chosen.isEmpty()) return;
  if (shown == std::make_pair(_measures->getStack(), _measures->getItemModel())) return void(saveTo(chosen.first()));
  _window.showMessage(tr("Not saved: another stack or model is shown now"));
}

bool NYXAnalysisWindowMediator::saveTo(const QString& filename)
{
  if (isSheetStale()) // it changed while the dialog was open
  {
    _window.showMessage(tr("Not saved: the stack has changed meanwhile"));
    return false;
  }
  try
  {
    AtomicFile file(QFile::encodeName(filename).toStdString());
    file.write(sheetText());
    file.commit();
  }
  catch (const Exception& error)
  {
    QMessageBox box(QMessageBox::Warning, tr("Save measures"),
                    filename + ": " + QString::fromStdString(error.getWhat()), QMessageBox::Ok, &_window);
    box.setTextFormat(Qt::PlainText);
    box.exec();
    return false;
  }
  _window.showMessage(tr("Saved %1").arg(filename));
  return true;
}
