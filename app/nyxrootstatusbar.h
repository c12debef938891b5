#pragma once

#include "numeric/progresssubject.h"

#include <QElapsedTimer>
#include <QStatusBar>

class NYXStatusField;
class QProgressBar;

/// Messages, the progress of long computations, what is known of the image that is shown, the current stack and slice.
class NYXRootStatusBar : public QStatusBar, public ProgressObserver
{
  Q_OBJECT

public:
  explicit NYXRootStatusBar(QWidget* parent = nullptr);

  /// Takes over the fields that tell of the image.
  void setImageFields(QWidget& fields);
  void setStackText(const QString& text);
  void setSliceText(const QString& text);

  void started(const std::string& message) override;
  void progressed(double share) override;
  void finished() override;

public slots:
  void subjectStarted();
  void subjectProgressed(int step, int ofSteps);
  void subjectFinished();

protected:
  /// A message may use the place of fields that say nothing.
  void paintEvent(QPaintEvent* event) override;

private:
  int freeWidth() const;
  NYXStatusField* _stack;
  NYXStatusField* _slice;
  QProgressBar* _progress;
  QElapsedTimer _sinceRefresh;
  QString _stepMessage; // shown while a step runs; empty when another message was there first
};
