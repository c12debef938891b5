#pragma once

#include <QStatusBar>

class NYXStatusField;
class QLabel;
class QProgressBar;

/// What can be done next, messages, and the progress of automatic registration.
class NYXRegistrationStatusBar : public QStatusBar
{
  Q_OBJECT

public:
  explicit NYXRegistrationStatusBar(QWidget* parent = nullptr);

  /// Stands where there is no message.
  void setHint(const QString& text);
  QString hint() const;

public slots:
  void subjectStarted(const QString& message);
  /// `step` of `ofSteps` steps are done.
  void subjectProgressed(int step, int ofSteps);
  void subjectFinished();

private:
  NYXStatusField* _hint;
  QLabel* _count;
  QProgressBar* _progress;
};
