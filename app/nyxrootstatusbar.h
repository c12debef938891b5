#pragma once

#include <QElapsedTimer>
#include <QStatusBar>

class QLabel;
class QProgressBar;

/// Messages, the current stack and slice, and the progress of long computations.
class NYXRootStatusBar : public QStatusBar
{
  Q_OBJECT

public:
  explicit NYXRootStatusBar(QWidget* parent = nullptr);

  void setStackText(const QString& text);
  void setSliceText(const QString& text);

public slots:
  void subjectStarted();
  void subjectProgressed(int step, int numSteps);
  void subjectFinished();

private:
  QLabel* _stack;
  QLabel* _slice;
  QProgressBar* _progress;
  QElapsedTimer _sinceRefresh;
};
