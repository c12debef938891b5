#include "slice/nyxmodetoolbar.h"

#include "app/core/nyxstack.h"
#include "model/model.h"
#include "slice/image/nyxicons.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QMenu>
#include <QPainter>
#include <QToolButton>

namespace
{
constexpr int numNumberedModels = 9; // chosen by the number keys

QColor colorOf(const Model& model)
{
  const ModelItemProperties::Color color = model.getItemProperties().getColor();
  return QColor(color[0], color[1], color[2]);
}

/// A field of the model's colour, with its number when it has a key.
QIcon swatch(const Model& model, int place)
{
  constexpr int side = 40;
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor color = colorOf(model);
  painter.setPen(QPen(color.darker(150), 2));
  painter.setBrush(color);
  painter.drawRoundedRect(QRectF(3, 3, side - 6, side - 6), 6, 6);
  if (place < numNumberedModels)
  {
    QFont font = painter.font();
    font.setPixelSize(side * 5 / 8);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(qGray(color.rgb()) > 130 ? Qt::black : Qt::white);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, QString::number(place + 1));
  }
  return QIcon(pixmap);
}
} // namespace

NYXModeToolBar::NYXModeToolBar(NYXSliceEditWidgetMediator& mediator, QWidget* parent)
  : QToolBar(parent), _mediator(mediator), _model(new QToolButton(this)), _modelMenu(new QMenu(this))
{
  setObjectName("modeToolBar");
  _model->setObjectName("modelInUse");
  _model->setMenu(_modelMenu);
  _model->setPopupMode(QToolButton::InstantPopup);
  _modelMenu->setObjectName("modelInUseMenu");
  addWidget(_model);
  connect(this, &QToolBar::iconSizeChanged, _model, &QToolButton::setIconSize);
  for (QAction* action : mediator.toolActions()) action == nullptr ? void(addSeparator()) : addAction(action);
  connect(_modelMenu, &QMenu::aboutToShow, this, &NYXModeToolBar::fillModelMenu);
  connect(&mediator, &NYXSliceEditWidgetMediator::toolsChanged, this, &NYXModeToolBar::showModelInUse);
  showModelInUse();
}

void NYXModeToolBar::fillModelMenu()
{
  _modelMenu->clear();
  const QStringList models = _mediator.sliceCanvas().hasSlice() ? _mediator.buildStackModelList() : QStringList();
  for (int i = 0; i < models.size(); ++i)
  {
    const QString& name = models[i];
    QString text = QString(name).replace("&", "&&");
    if (i < numNumberedModels) text += QString("\t%1").arg(i + 1);
    QAction* const action = _modelMenu->addAction(swatch(*_mediator.stack().getModel(i), i), text, this,
                                                  [this, name] { _mediator.setModelInUse(name); });
    action->setObjectName(name);
    action->setToolTip(tr("Draw items of this model"));
    action->setStatusTip(action->toolTip());
  }
  if (_modelsAction == nullptr) return;
  _modelMenu->addSeparator()->setObjectName("modelsSeparator");
  _modelMenu->addAction(_modelsAction);
}

void NYXModeToolBar::showModelInUse()
{
  const QString name = _mediator.modelInUse();
  const bool hasSlice = _mediator.sliceCanvas().hasSlice();
  _model->setEnabled(hasSlice);
  if (name.isEmpty())
  {
    _model->setIcon(iconNamed("noModel"));
    _model->setToolTip(hasSlice ? tr("The stack has no models yet: make one to draw with") : tr("Model in use"));
    return;
  }
  const int place = _mediator.stack().findModel(name.toStdString());
  _model->setIcon(swatch(*_mediator.stack().getModel(place), place));
  _model->setToolTip(tr("Model in use: %1 (1 to 9 choose one)").arg(name.toHtmlEscaped()));
}
