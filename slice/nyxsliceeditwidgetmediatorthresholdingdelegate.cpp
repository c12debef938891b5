#include "slice/nyxsliceeditwidgetmediatorthresholdingdelegate.h"

#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "geometry/curveprocessing/curvedecimation.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "slice/image/nyximageproxy.h"
#include "slice/nyxroicontour.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QPainter>

namespace
{
constexpr auto resultTitle = "Automatic thresholding result";
constexpr double pixelsPerLevel = 0.1; // tolerance of a level of decimation
} // namespace

NYXSliceEditWidgetMediatorThresholdingDelegate::NYXSliceEditWidgetMediatorThresholdingDelegate(
    NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

void NYXSliceEditWidgetMediatorThresholdingDelegate::activate(const QString& modelName)
{
  const int i = editMediator().isEditable() ? stack().findModel(modelName.toStdString()) : -1;
  if (i < 0) return;
  _model = stack().getModel(i);
  _isDrawing = false;
  NYXSliceEditWidgetMediatorDelegate::activate();
  canvas().setCursor(Qt::CrossCursor);
}

void NYXSliceEditWidgetMediatorThresholdingDelegate::deactivate()
{
  _isDrawing = false;
  NYXSliceEditWidgetMediatorDelegate::deactivate();
}

void NYXSliceEditWidgetMediatorThresholdingDelegate::press(const NYXPointerEvent& event)
{
  if (event.button != Qt::LeftButton) return;
  _isDrawing = true;
  _from = _to = event.position;
}

void NYXSliceEditWidgetMediatorThresholdingDelegate::move(const NYXPointerEvent& event)
{
  if (!_isDrawing) return;
  _to = event.position;
  updateFeedback();
}

void NYXSliceEditWidgetMediatorThresholdingDelegate::release()
{
  if (!_isDrawing) return;
  _isDrawing = false;
  if ((_to - _from).manhattanLength() < QApplication::startDragDistance()) return canvas().update(); // a click
  const QRect rect = QRect(_from, _to).normalized();
  const Vector<int> first = pointOnImage(rect.topLeft());
  const Vector<int> last = pointOnImage(rect.bottomRight());
  const QString result = run(QRect(QPoint(first[0], first[1]), QPoint(last[0], last[1])));
  deactivate();
  if (!result.isEmpty()) QMessageBox::information(&editMediator().window(), resultTitle, result);
}

bool NYXSliceEditWidgetMediatorThresholdingDelegate::ask(const QString& label, int& level, int largest, int step) const
{
  bool isAccepted = false;
  const int answer = QInputDialog::getInt(&editMediator().window(), tr("Automatic thresholding"), label, level, 0,
                                          largest, step, &isAccepted);
  if (isAccepted) level = answer;
  return isAccepted && isActive(); // the model may have gone meanwhile
}

QString NYXSliceEditWidgetMediatorThresholdingDelegate::run(const QRect& roi)
{
  if (!canvas().getImageProxy().hasImage()) return missingImageText();
  if (!ask("Enter smoothing level:", _smoothing, 50, 1)) return {};
  const auto contour = contourInRoi(canvas().getImageProxy().getImage(), roi, _smoothing);
  if (!contour) return "No starting point found. Retry with another ROI.";
  if (!ask("Enter decimation level:", _decimation, 100, 5)) return {};
  Curve<int> decimated = *contour;
  if (_decimation > 0)
    CurveDecimation<int>(static_cast<Real<int>>(_decimation * pixelsPerLevel)).apply(*contour, decimated);
  if (decimated.getSize() < minNumVertices(MPrimitive::Polygon))
    return "The detected contour does not contain enough points\nHint: try using a smaller decimation level";
  create(decimated);
  return QString::asprintf("Curve created with %d vertices", decimated.getSize());
}

void NYXSliceEditWidgetMediatorThresholdingDelegate::create(const Vertices<int>& vertices)
{
  auto item = std::make_unique<ModelItem>(_model, &slice());
  item->setVertices(vertices);
  item->setClockwise(false);
  pushStep(std::make_unique<NYXItemCreationAction>(std::move(item)));
}

void NYXSliceEditWidgetMediatorThresholdingDelegate::paintFeedback(QPainter& painter)
{
  if (!_isDrawing) return;
  const QColor color = NYXPreferences::getSelectionColor();
  painter.setPen(QPen(color, 1));
  painter.setBrush(QColor(color.red(), color.green(), color.blue(), 40));
  painter.drawRect(QRect(_from, _to).normalized());
}

QRect NYXSliceEditWidgetMediatorThresholdingDelegate::feedbackRect() const
{
  return _isDrawing ? QRect(_from, _to).normalized().adjusted(-1, -1, 2, 2) : QRect();
}
