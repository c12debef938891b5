#pragma once

#include <QStatusBar>

class QLabel;
class QProgressBar;

/// What can be done next, messages, the progress of automatic registration, and what is known of the image.
class NYXRegistrationStatusBar : public QStatusBar
{
  Q_OBJECT

public:
  explicit NYXRegistrationStatusBar(QWidget* parent = nullptr);

  /// Takes over the fields that tell of the image.
  void setImageFields(QWidget& fields);
  /// Stands where there is no message.
  void setHint(const QString& text);
  QString hint() const;

public slots:
  void subjectStarted(const QString& message);
  /// `step` of `ofSteps` steps are done.
  void subjectProgressed(int step, int ofSteps);
  void subjectFinished();

private:
  QLabel* _hint;
  QLabel* _count;
  QProgressBar* _progress;
};
