#include "slice/nyxvertexeditiontoolbar.h"

#include "slice/image/nyxicons.h"

#include <QActionGroup>
#include <QMenu>

NYXVertexEditionToolBar::NYXVertexEditionToolBar(QWidget* parent) : QToolBar(parent)
{
  setObjectName("vertexEditionToolBar");
  setWindowTitle(tr("Edit points"));
  toggleViewAction()->setText({});                         // it is the tool that shows and hides the bar
  setWindowFlags(Qt::Tool | Qt::WindowDoesNotAcceptFocus); // also when it is clicked
  setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  setAttribute(Qt::WA_ShowWithoutActivating); // the keys stay with the slice
  auto* group = new QActionGroup(this);
  _move = addMode(tr("Move points"), tr("Drag points to other places"), "movePoints", VertexEditionMode::Move);
  _insert = addMode(tr("Insert points"), tr("Press near the contour and drag to insert points"), "insertPoints",
                    VertexEditionMode::Insert);
  _delete = addMode(tr("Delete points"), tr("Press or drag over points to delete them"), "deletePoints",
                    VertexEditionMode::Delete);
  for (QAction* action : {_move, _insert, _delete}) group->addAction(action);
  addSeparator();
  _end = addAction(tr("End edition"), this, &NYXVertexEditionToolBar::endChosen);
  _end->setObjectName("endEdition");
  _end->setIcon(iconNamed("endEdition"));
  _end->setToolTip(tr("Leave the edition of points (Escape)"));
  _end->setStatusTip(tr("Leave the edition of points"));
  for (QAction* action : {_move, _insert, _delete, _end}) action->setEnabled(false); // until it is shown
}

QAction* NYXVertexEditionToolBar::addMode(const QString& text, const QString& toolTip, const QString& name,
                                          VertexEditionMode mode)
{
  QAction* action = addAction(text, this, [this, mode] { emit modeChosen(mode); });
  action->setObjectName(name);
  action->setIcon(iconNamed(name));
  action->setToolTip(toolTip);
  action->setStatusTip(toolTip);
  action->setCheckable(true);
  return action;
}

void NYXVertexEditionToolBar::hideEvent(QHideEvent* event)
{
  QToolBar::hideEvent(event);
  for (QAction* action : {_move, _insert, _delete, _end}) action->setEnabled(false);
}

void NYXVertexEditionToolBar::setModesEnabled(bool isEnabled)
{
  _delete->setEnabled(true);
  _end->setEnabled(true);
  _move->setEnabled(isEnabled);
  _insert->setEnabled(isEnabled);
}

void NYXVertexEditionToolBar::setMode(VertexEditionMode mode)
{
  (mode == VertexEditionMode::Move ? _move : mode == VertexEditionMode::Insert ? _insert : _delete)->setChecked(true);
}

void NYXVertexEditionToolBar::fill(QMenu& menu) const
{
  menu.addActions({_move, _insert, _delete});
  menu.addSeparator();
  menu.addAction(_end);
}
