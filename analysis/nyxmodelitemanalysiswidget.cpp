#include "analysis/nyxmodelitemanalysiswidget.h"

#include "analysis/nyxmeasures.h"
#include "analysis/nyxmodelitemanalysistable.h"
#include "app/core/nyxstack.h"
#include "model/model.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QSettings>
#include <QSignalBlocker>
#include <QSplitter>

namespace
{
QIcon colorIcon(const Model& model, int side)
{
  const ModelItemProperties::Color color = model.getItemProperties().getColor();
  QPixmap pixmap(side, side);
  pixmap.fill(QColor(color[0], color[1], color[2]));
  return pixmap;
}
} // namespace

NYXModelItemAnalysisWidget::NYXModelItemAnalysisWidget(QWidget* parent)
  : QWidget(parent),
    _splitter(new QSplitter(Qt::Horizontal, this)),
    _models(new QListWidget(_splitter)),
    _table(new NYXModelItemAnalysisTable(_splitter))
{
  _models->setObjectName("analysedModels");
  _models->setAccessibleName(tr("Models"));
  _models->setToolTip(tr("Model whose items are shown"));
  _table->setObjectName("modelItemAnalysisTable");
  _splitter->setObjectName("itemAnalysisWidgetSplitter");
  _splitter->setChildrenCollapsible(false);
  _splitter->setStretchFactor(1, 1);
  if (!_splitter->restoreState(QSettings().value(_splitter->objectName()).toByteArray()))
    _splitter->setSizes({fontMetrics().averageCharWidth() * 24, fontMetrics().averageCharWidth() * 90});
  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(_splitter);
  connect(_splitter, &QSplitter::splitterMoved, this,
          [this] { QSettings().setValue(_splitter->objectName(), _splitter->saveState()); });
  connect(_models, &QListWidget::currentRowChanged, this, &NYXModelItemAnalysisWidget::followChoice);
  connect(_table, &NYXAnalysisTable::opened, this, &NYXModelItemAnalysisWidget::opened);
}

void NYXModelItemAnalysisWidget::setMeasures(NYXMeasures& measures)
{
  _measures = &measures;
  _table->setMeasures(measures);
}

void NYXModelItemAnalysisWidget::showModels()
{
  const NYXStack* const stack = _measures->getStack();
  const int numModels = stack == nullptr ? 0 : stack->getNumModels();
  const int chosen = _measures->getItemModel() == nullptr ? 0 : stack->findModel(_measures->getItemModel());
  const QSignalBlocker blocker(_models);
  while (_models->count() > numModels) delete _models->takeItem(numModels);
  while (_models->count() < numModels) _models->addItem(QString());
  for (int i = 0; i < numModels; ++i)
  {
    const Model& model = *stack->getModel(i);
    _models->item(i)->setText(QString::fromStdString(model.getName()));
    _models->item(i)->setIcon(colorIcon(model, fontMetrics().height()));
  }
  _models->setCurrentRow(qMax(0, chosen));
  followChoice();
}

void NYXModelItemAnalysisWidget::chooseModel(int model)
{
  _models->setCurrentRow(model);
}

void NYXModelItemAnalysisWidget::followChoice()
{
  const NYXStack* const stack = _measures->getStack();
  const int row = _models->currentRow();
  _measures->setItemModel(stack == nullptr || row < 0 ? nullptr : stack->getModel(row));
}

void NYXModelItemAnalysisWidget::showItems()
{
  _table->setModel(_measures->getItemModel());
}
