#pragma once

#include "app/core/nyxgeometryclient.h"
#include "numeric/lengthunit.h"
#include "viewer/nyxreconstructionrun.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>
#include <set>

class NYXStack;
class ViewerCanvasGL;

/// Keeps the painters of a stack's models in step with the stack: what the event bus tells of makes a model stale, and
/// stale models are reconstructed in a thread of their own. The others keep their painters.
class NYXSceneModels : public QObject, public NYXGeometryClient
{
  Q_OBJECT

public:
  /// The stack and the canvas are borrowed; the canvas goes last.
  NYXSceneModels(NYXStack& stack, ViewerCanvasGL& canvas, QObject* parent);
  ~NYXSceneModels() override;

  NYXStack& getStack() const { return _stack; }
  /// Shows or hides a model, or an item that its properties or an earlier call show otherwise. Not a change of the
  /// stack.
  void showModel(const Model& model, bool isShown);
  bool isShown(const Model& model) const { return !_hiddenModels.contains(&model); }
  void showItem(const ModelItem& item, bool isShown);
  bool isShown(const ModelItem& item) const;
  std::vector<const Model*> shownModels() const;
  /// Why a model is not drawn, or otherwise than it should be; empty otherwise.
  QString problemOf(const Model& model) const;

  /// The unit of length of what is shown, which may be that from before a reconstruction.
  QString unit() const { return QString::fromStdString(_shownScale.unit.symbol()); }

  bool isRunning() const { return _run.isRunning(); }
  /// Whether there are models whose painters do not show them as they are.
  bool isStale() const { return !_staleModels.empty() || !_cancelledModels.empty(); }

public slots:
  /// Makes all models anew.
  void rebuild();
  /// Ends the reconstruction that is at work; its models stay as they are shown until they change or rebuild() is
  /// called.
  void cancel();

signals:
  /// Models came, went, were renamed, shown or hidden, or their items did.
  void modelsChanged();
  /// The painters are as they should be, or could not be made: a text says why.
  void updated(const QString& error);
  /// What is shown has another unit now. \param factor  by which its lengths have grown; 1 when they stayed the same
  void unitChanged(double factor);
  void progressChanged(double share);
  void runningChanged(bool isRunning);

protected:
  void noteStackChange(const Stack& stack) override;
  void noteItemChange(const Model& model, const ModelItem& item) override;
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override;
  void sliceNameEvent(const NYXSliceNameEvent& event) override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override;
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override;
  void modelItemAttributeEvent(const NYXModelItemAttributeEvent& event) override;
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override;
  void processSliceAction(NYXSliceAction& action) override;
  void atEventBatchEnd() override;

private:
  /// The unit, and a length in it that tells whether lengths are converted with it.
  struct LengthScale
  {
    LengthUnit unit;
    float pixelWidth = 0;
  };

  LengthScale lengthScale() const;
  void showScale(const LengthScale& scale);
  void markModel(const Model& model);
  void markAll();
  void schedule();
  void start();
  void takeResults(bool isDone);
  void drop(const Model* model);
  void forgetDeletedItems();
  void tellOfItems(const NYXModelItemEvent& event);
  bool isBeingMade(const Model& model) const;

  NYXStack& _stack;
  ViewerCanvasGL& _canvas;
  std::map<const Model*, PaintedModel> _painted;
  std::set<const Model*> _staleModels;
  std::set<const Model*> _cancelledModels; // stale ones that are not made anew by themselves
  std::set<const Model*> _hiddenModels;
  std::map<const ModelItem*, bool> _itemVisibilities; // those that differ from the properties
  LengthScale _shownScale;
  LengthScale _runScale;
  NYXReconstructionRun _run;
  QTimer _delay;
};
