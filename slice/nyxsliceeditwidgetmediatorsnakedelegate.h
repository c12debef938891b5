#pragma once

#include "geometry/vertices.h"
#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include <QPointer>

#include <memory>

class NYXSnakeDialog;
class NYXSnakeRun;
struct SnakeConfig;

/// Lets an active contour move from the selected closed contour to the edges around it, on the slice and, if wanted, on
/// those that follow. The parameters are kept with the model as long as the program runs.
///
/// The work runs in a thread of its own, behind a progress dialog, while the canvas shows the moving curve.
class NYXSliceEditWidgetMediatorSnakeDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorSnakeDelegate(NYXSliceEditWidgetMediator& mediator);
  ~NYXSliceEditWidgetMediatorSnakeDelegate() override;

  /// Asks for the parameters; nothing happens when no closed contour is selected.
  void activate() override;
  void deactivate() override;
  using NYXSliceEditWidgetMediatorDelegate::worksOn;
  bool worksOn(const ModelItem& item) const override { return _item == &item; }

public slots:
  /// Ends also a snake that is moving; its contour stays as it was.
  void cancel() override;
  /// Runs the snake with the parameters of the dialog and records what comes out as one step.
  void apply();

protected:
  QString editMode() const override { return "SNAKE"; }
  QString hint() const override { return tr("Choose the parameters, Return to run the snake, Escape to cancel"); }
  void keyPressEvent(QKeyEvent& event) override;

private:
  ModelItem* selectedContour() const;
  void closeDialog();
  void runSnake();
  /// \return whether it came to its end
  bool run(NYXSnakeRun& run);
  void showMoving(const Vertices<int>& vertices);
  void pushResults(const NYXSnakeRun& run);
  void tellResult(const NYXSnakeRun& run);

  ModelItem* _item = nullptr;
  QPointer<NYXSnakeDialog> _dialog;
  NYXSnakeRun* _run = nullptr; // while it runs
  std::unique_ptr<ModelItem> _moving;
};
