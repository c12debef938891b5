#include "analysis/nyxmodelanalysiswidget.h"

#include "analysis/nyxmeasures.h"
#include "analysis/nyxmodelanalysistable.h"
#include "app/core/nyxstack.h"
#include "model/model.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace
{
constexpr int mostRows = 20; // of one table, which beyond that scrolls by itself
}

NYXModelAnalysisWidget::NYXModelAnalysisWidget(QWidget* parent)
  : QScrollArea(parent), _emptyNote(new QLabel(tr("The stack has no models yet"))), _layout(nullptr)
{
  auto* const content = new QWidget;
  _layout = new QVBoxLayout(content);
  setWidget(content);
  setWidgetResizable(true);
  setFrameShape(NoFrame);
  _emptyNote->setAlignment(Qt::AlignCenter);
  _emptyNote->setObjectName("noModels");
  _layout->addWidget(_emptyNote);
  _sections = {createSection(MPrimitive::Polygon, tr("Closed contours")),
               createSection(MPrimitive::Polyline, tr("Open contours")),
               createSection(MPrimitive::Polypoint, tr("Points")), createSection(MPrimitive::Region, tr("Regions"))};
  _layout->addStretch(1);
}

NYXModelAnalysisWidget::Section NYXModelAnalysisWidget::createSection(MPrimitive geometry, const QString& heading)
{
  const Section section = {new QLabel("<b>" + heading + "</b>", this), new NYXModelAnalysisTable(this)};
  section.table->setModelGeometry(geometry);
  section.table->setObjectName("modelAnalysisTable" + QString::fromStdString(ModelProperties::toString(geometry)));
  section.table->setAccessibleName(heading);
  section.heading->setBuddy(section.table);
  _layout->addWidget(section.heading);
  _layout->addWidget(section.table);
  connect(section.table, &NYXAnalysisTable::opened, this, &NYXModelAnalysisWidget::opened);
  connect(section.table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          [this, table = section.table]
          {
            if (table->hasSelection()) keepSelectionIn(table);
          });
  return section;
}

void NYXModelAnalysisWidget::keepSelectionIn(const NYXModelAnalysisTable* table)
{
  for (const Section& section : _sections)
    if (section.table != table) section.table->clearSelection();
}

void NYXModelAnalysisWidget::setMeasures(const NYXMeasures& measures)
{
  _models = measures.models();
  _unit = measures.unit();
  _emptyNote->setVisible(_models.empty());
  for (const Section& section : _sections)
  {
    section.table->setModels(_models, _unit);
    section.table->measures().setStale(
        [&measures](int model)
        {
          const NYXStack* const shown = measures.getStack();
          return shown != nullptr && model < shown->getNumModels() && measures.isStale(*shown->getModel(model));
        });
    const int numRows = section.table->measures().rowCount();
    section.heading->setVisible(numRows > 0);
    section.table->setVisible(numRows > 0);
    section.table->showAllRows(mostRows);
  }
}

MeasureTable NYXModelAnalysisWidget::table() const
{
  return modelTable(_models, _unit);
}

NYXAnalysisTable* NYXModelAnalysisWidget::selectedTable() const
{
  for (const Section& section : _sections)
    if (section.table->hasSelection()) return section.table;
  return nullptr;
}
